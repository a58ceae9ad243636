#include <cstdio>
#include <memory>
#include <new>

#include "frei0r/Instance.h"

/// The functions by which a host uses a module. Every module is made of these and of the name of its method.
extern const char krl_frei0r_method[];

namespace krl::frei0r {

namespace {

/// The effect of this module; made on first use and read only from then on. Null if the library has no such
/// method.
const Effect* effect() {
    static const std::unique_ptr<const Effect> made = [] {
        const krl_method_info* method = krl_find_method(krl_frei0r_method);
        return method ? std::make_unique<const Effect>(*method) : nullptr;
    }();
    return made.get();
}

/// Carries out `work`; hosts know no exceptions, and without memory what they asked for stays as it was.
template <class Work>
void guarded(Work&& work) noexcept {
    try {
        work();
    } catch (const std::bad_alloc&) {
        std::fprintf(stderr, "krl_%s: out of memory\n", krl_frei0r_method);
    }
}

int typeOf(bindings::Role role) {
    switch (role) {
        case bindings::Role::Mixer:
            return kFrei0rMixer2;
        case bindings::Role::Source:
            return kFrei0rSource;
        default:
            return kFrei0rFilter;
    }
}

bool hasParameter(int index) { return index >= 0 && size_t(index) < effect()->parameters.size(); }

}  // namespace

}  // namespace krl::frei0r

using krl::frei0r::effect;
using krl::frei0r::Instance;

int f0r_init() {
    bool isReady = false;
    krl::frei0r::guarded([&] { isReady = effect() != nullptr; });
    if (isReady) return 1;
    std::fprintf(stderr, "krl_%s: libkrlimage %s has no method of that name\n", krl_frei0r_method,
                 krl_release());
    return -1;
}

void f0r_deinit() {}

void f0r_get_plugin_info(f0r_plugin_info_t* info) {
    *info = {effect()->name.c_str(),
             "KRLImageXtra",
             krl::frei0r::typeOf(effect()->role),
             kFrei0rBgra8888,
             kFrei0rVersion,
             0,
             0,
             static_cast<int>(effect()->parameters.size()),
             effect()->method.summary};
    std::sscanf(krl_release(), "%d.%d", &info->major_version, &info->minor_version);
}

void f0r_get_param_info(f0r_param_info_t* info, int index) {
    if (!krl::frei0r::hasParameter(index)) return;
    const krl::frei0r::Parameter& parameter = effect()->parameters[size_t(index)];
    *info = {parameter.name.c_str(), parameter.type(), parameter.explanation.c_str()};
}

void* f0r_construct(unsigned int width, unsigned int height) {
    void* made = nullptr;
    krl::frei0r::guarded([&] {
        const uint64_t pixels = uint64_t{width} * height;
        if (pixels > 0 && pixels <= INT32_MAX / 4)
            made = new Instance(*effect(), static_cast<int32_t>(width), static_cast<int32_t>(height));
        else
            std::fprintf(stderr, "krl_%s: no picture can be %u by %u\n", krl_frei0r_method, width, height);
    });
    return made;
}

void f0r_destruct(void* instance) { delete static_cast<Instance*>(instance); }

void f0r_set_param_value(void* instance, void* param, int index) {
    if (instance && param && krl::frei0r::hasParameter(index))
        krl::frei0r::guarded([&] { static_cast<Instance*>(instance)->set(size_t(index), param); });
}

void f0r_get_param_value(void* instance, void* param, int index) {
    if (instance && param && krl::frei0r::hasParameter(index))
        static_cast<const Instance*>(instance)->get(size_t(index), param);
}

void f0r_update(void* instance, double time, const uint32_t* inframe, uint32_t* outframe) {
    f0r_update2(instance, time, inframe, nullptr, nullptr, outframe);
}

void f0r_update2(void* instance, double, const uint32_t* inframe1, const uint32_t* inframe2, const uint32_t*,
                 uint32_t* outframe) {
    krl::frei0r::guarded([&] { static_cast<Instance*>(instance)->update(inframe1, inframe2, outframe); });
}
