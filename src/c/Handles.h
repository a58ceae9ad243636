#pragma once

#include <memory>
#include <string>
#include <utility>

#include "catalogue/Value.h"
#include "core/Scratch.h"
#include "krlimage.h"

/// What the handles of the C interface are, and the wall that no exception passes.
struct krl_engine {
    krl::ImageEngine engine;
    int32_t bands = 0;  ///< 0 is automatic
    bool keepsMemory = false;
    krl::ScratchAllowance keptMemory;  ///< beside that of the engine, which ends with a call
};

struct krl_result {
    krl_code code = KRL_OK;
    std::string message;  ///< for people
    std::string error;    ///< for scripts
    krl::Value value = krl::PropertyListValue();
};

namespace krl::c {

/// A `krl_value` is a `Value`, under a name that C has for it.
inline Value* valueOf(krl_value* value) { return reinterpret_cast<Value*>(value); }
inline const Value* valueOf(const krl_value* value) { return reinterpret_cast<const Value*>(value); }
inline krl_value* handleOf(Value* value) { return reinterpret_cast<krl_value*>(value); }
inline const krl_value* handleOf(const Value* value) { return reinterpret_cast<const krl_value*>(value); }

/// The content of `value` if it is a `Kind`, or null.
template <class Kind>
const Kind* contentOf(const krl_value* value) {
    return value ? valueOf(value)->as<Kind>() : nullptr;
}

/// What `work` gives, or `otherwise` where it throws: inside these functions only memory runs out.
template <class Given, class Work>
Given guarded(Given otherwise, Work&& work) noexcept {
    try {
        return std::forward<Work>(work)();
    } catch (...) {
        return otherwise;
    }
}

/// A value to hand out, or null without memory.
template <class Make>
krl_value* newValue(Make&& make) noexcept {
    return guarded<krl_value*>(nullptr, [&] { return handleOf(new Value(make())); });
}

/// Copies `text` into a caller's buffer as far as it fits, with a zero at the end.
void copyText(const std::string& text, char* buffer, size_t size);

}  // namespace krl::c
