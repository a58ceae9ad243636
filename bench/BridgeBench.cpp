#include <dlfcn.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "common/Handles.h"
#include "common/Roles.h"
#include "frei0r/Frei0r.h"

/// What a frei0r module costs beside its effect. In turns on the same frame: the bare call of the C interface
/// in place; a copy of the frame, which frei0r asks for, as a module must leave the frame it is given; and
/// the module. `bridge` is the rest, in percent of the bare call.
///     krl_bridge_bench FOLDER WIDTHxHEIGHT [METHOD]...
namespace {

using namespace krl::bindings;

using Frame = std::vector<uint32_t>;

[[noreturn]] void fail(const std::string& problem) {
    std::fprintf(stderr, "krl_bridge_bench: %s\n", problem.c_str());
    std::exit(2);
}

template <class Work>
double milliseconds(Work&& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

/// A slope of colours with noise over it.
Frame testFrame(int32_t width, int32_t height) {
    Frame frame;
    frame.reserve(size_t(width) * size_t(height));
    uint32_t random = 1;
    for (int32_t y = 0; y < height; ++y)
        for (int32_t x = 0; x < width; ++x) {
            random = random * 1664525 + 1013904223;
            const auto red = uint32_t(x * 239 / width), green = uint32_t(y * 239 / height);
            frame.push_back(0xFF000000u + ((red << 16) + (green << 8) + 0x40u) + (random >> 28) * 0x010101u);
        }
    return frame;
}

/// A module and an instance of it with all defaults.
class Module {
public:
    Module(const std::string& file, int32_t width, int32_t height)
        : handle_(dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL)) {
        if (!handle_) fail(dlerror());
        find("f0r_update2", update_);
        find("f0r_destruct", destruct_);
        decltype(&f0r_construct) construct = nullptr;
        find("f0r_construct", construct);
        instance_ = construct(unsigned(width), unsigned(height));
        if (!instance_) fail("no instance of " + file);
    }
    ~Module() {
        destruct_(instance_);
        dlclose(handle_);
    }
    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;

    void update(const Frame& first, const Frame& second, Frame& out) {
        update_(instance_, 0, first.data(), second.data(), nullptr, out.data());
    }

private:
    template <class Function>
    void find(const char* name, Function& function) {
        function = reinterpret_cast<Function>(dlsym(handle_, name));
        if (!function) fail(dlerror());
    }

    void* handle_;
    void* instance_ = nullptr;
    decltype(&f0r_update2) update_ = nullptr;
    decltype(&f0r_destruct) destruct_ = nullptr;
};

/// The call of a method on frames of one size, in place.
class BareCall {
public:
    BareCall(const krl_method_info& method, int32_t width, int32_t height)
        : method_(method), width_(width), height_(height) {
        krl_engine_keep_memory(engine_.get(), 1);
    }

    void run(Frame& frame, Frame& second) {
        const bool isLoaded = method_.flags & KRL_REWRITES_PICTURE;
        const krl_picture picture = pictureOver(frame.data(), width_, height_);
        const krl_picture beside = pictureOver(second.data(), width_, height_);
        const krl_picture* next = isLoaded ? &beside : &picture;
        std::vector<Value> pictures;
        std::vector<krl_argument> arguments;
        for (size_t i = 0; i < method_.argument_count; ++i) {
            if (method_.arguments[i]->kind != KRL_KIND_PICTURE) continue;
            pictures.emplace_back(krl_picture_value(next));
            arguments.push_back({method_.arguments[i]->name, pictures.back().get()});
            next = &beside;
        }
        const krl_code code = krl_call(engine_.get(), isLoaded ? &picture : nullptr, method_.name,
                                       arguments.data(), arguments.size(), nullptr);
        if (code != KRL_OK) fail(std::string(method_.name) + ": " + krl_code_text(code));
    }

private:
    const krl_method_info& method_;
    int32_t width_, height_;
    Engine engine_{krl_engine_new(0)};
};

/// The least times of some rounds, in milliseconds.
struct Times {
    double bare = 1e9, copy = 1e9, module = 1e9;
};

Times measure(const krl_method_info& method, const std::string& folder, int32_t width, int32_t height) {
    const Frame first = testFrame(width, height);
    Frame second = first, inPlace = first, out = first;
    std::reverse(second.begin(), second.end());
    BareCall bare(method, width, height);
    Module module(folder + "/krl_" + method.name + ".so", width, height);
    Times times;
    double spent = 0;
    for (int round = 0; round < 40 && (round < 5 || spent < 1500); ++round) {
        const double copy =
            milliseconds([&] { std::memcpy(inPlace.data(), first.data(), first.size() * 4); });
        const double call = milliseconds([&] { bare.run(inPlace, second); });
        const double whole = milliseconds([&] { module.update(first, second, out); });
        if (out != inPlace) fail(std::string(method.name) + ": the module gives other bytes");
        times = {std::min(times.bare, call), std::min(times.copy, copy), std::min(times.module, whole)};
        spent += copy + call + whole;
    }
    return times;
}

}  // namespace

int main(int count, char** words) {
    int32_t width = 0, height = 0;
    if (count < 3 || std::sscanf(words[2], "%dx%d", &width, &height) != 2)
        fail("expected a folder of modules and WIDTHxHEIGHT");
    std::printf("%-10s %-26s %9s %9s %9s %9s\n", "size", "effect", "bare ms", "copy ms", "module ms",
                "bridge");
    forEachWithRole([&](const krl_method_info& method, Role role) {
        const bool isNamed = std::find(words + 3, words + count, std::string(method.name)) != words + count;
        if (role == Role::Source || (count > 3 && !isNamed)) return;
        const Times times = measure(method, words[1], width, height);
        std::printf("%-10s %-26s %9.2f %9.2f %9.2f %8.1f%%\n", words[2], method.name, times.bare, times.copy,
                    times.module, 100 * (times.module - times.copy - times.bare) / times.bare);
        std::fflush(stdout);
    });
    return 0;
}
