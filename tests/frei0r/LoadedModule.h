#pragma once

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "frei0r/Frei0r.h"

namespace krl::test {

/// A frei0r module as a host loads it: by its exports alone.
class LoadedModule {
public:
    explicit LoadedModule(const std::string& method)
        : handle_(dlopen((KRL_FREI0R_MODULES "/krl_" + method + ".so").c_str(), RTLD_NOW | RTLD_LOCAL)) {
        if (!handle_) {
            ADD_FAILURE() << dlerror();
            return;
        }
        find("f0r_init", init);
        find("f0r_deinit", deinit);
        find("f0r_get_plugin_info", getInfo);
        find("f0r_get_param_info", getParameterInfo);
        find("f0r_construct", construct);
        find("f0r_destruct", destruct);
        find("f0r_set_param_value", setParameter);
        find("f0r_get_param_value", getParameter);
        find("f0r_update", update);
        find("f0r_update2", update2);
        EXPECT_GE(init(), 0);
        getInfo(&info);
        parameters.resize(size_t(info.num_params));
        for (size_t i = 0; i < parameters.size(); ++i) getParameterInfo(&parameters[i], int(i));
    }
    ~LoadedModule() {
        if (!handle_) return;
        deinit();
        dlclose(handle_);
    }
    LoadedModule(const LoadedModule&) = delete;
    LoadedModule& operator=(const LoadedModule&) = delete;

    explicit operator bool() const { return handle_ != nullptr; }

    decltype(&f0r_init) init = nullptr;
    decltype(&f0r_deinit) deinit = nullptr;
    decltype(&f0r_get_plugin_info) getInfo = nullptr;
    decltype(&f0r_get_param_info) getParameterInfo = nullptr;
    decltype(&f0r_construct) construct = nullptr;
    decltype(&f0r_destruct) destruct = nullptr;
    decltype(&f0r_set_param_value) setParameter = nullptr;
    decltype(&f0r_get_param_value) getParameter = nullptr;
    decltype(&f0r_update) update = nullptr;
    decltype(&f0r_update2) update2 = nullptr;

    f0r_plugin_info_t info = {};
    std::vector<f0r_param_info_t> parameters;

private:
    template <class Function>
    void find(const char* name, Function& function) {
        function = reinterpret_cast<Function>(dlsym(handle_, name));
        EXPECT_NE(function, nullptr) << name;
    }

    void* handle_;
};

using Frame = std::vector<uint32_t>;

/// An instance of a module for frames of one size.
class Player {
public:
    Player(const LoadedModule& module, int32_t width, int32_t height)
        : module_(module),
          frameSize_(size_t(width) * size_t(height)),
          instance_(module.construct(unsigned(width), unsigned(height))) {
        EXPECT_NE(instance_, nullptr);
    }
    ~Player() { module_.destruct(instance_); }
    Player(const Player&) = delete;
    Player& operator=(const Player&) = delete;

    template <class Kind>
    void set(size_t parameter, Kind value) {
        module_.setParameter(instance_, &value, int(parameter));
    }
    template <class Kind>
    Kind get(size_t parameter) const {
        Kind value = {};
        module_.getParameter(instance_, &value, int(parameter));
        return value;
    }

    Frame play(const Frame& first, const Frame& second) {
        Frame out(frameSize_, 0xA5A5A5A5u);
        playInto(first, second, out);
        return out;
    }
    void playInto(const Frame& first, const Frame& second, Frame& out) {
        if (module_.info.plugin_type == kFrei0rMixer2)
            module_.update2(instance_, 0, first.data(), second.data(), nullptr, out.data());
        else
            module_.update(instance_, 0, first.data(), out.data());
    }

private:
    const LoadedModule& module_;
    size_t frameSize_;
    void* instance_;
};

}  // namespace krl::test
