#pragma once

#include <map>
#include <memory>
#include <string>
#include <utility>

#include "catalogue/Arguments.h"
#include "catalogue/Notation.h"
#include "core/Scratch.h"
#include "krlimage.h"
#include "look/Look.h"

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
    int32_t line = 0;     ///< of a look
    krl::Value value = krl::PropertyListValue();
};

struct krl_look {
    krl::Look look;
    std::map<std::string, krl::Picture> pictures;
    std::vector<std::string> pictureNames;
};

namespace krl::c {

/// Ends a call with a code and words for people.
struct Problem {
    krl_code code;
    std::string message;
};

krl_code codeOf(ArgumentFault fault);
/// What the failure of a call is called here.
krl_code codeOf(CallCode failure);

/// Carries out `work(result)`; what it throws becomes the result's code and message.
template <class Work>
void collect(krl_result& result, Work&& work) {
    const auto fill = [&](krl_code code, const std::string& message) {
        result.code = code;
        result.message = message;
    };
    try {
        work(result);
    } catch (const Problem& problem) {
        fill(problem.code, problem.message);
    } catch (const ArgumentError& error) {
        fill(codeOf(error.fault()), error.what());
    } catch (const NotationError& error) {
        fill(KRL_BAD_TEXT, error.what());
    } catch (const LookError& error) {
        fill(error.scriptError().empty() ? KRL_BAD_LOOK : codeOf(error.code()), error.what());
        if (result.code != KRL_CANCELLED) result.error = error.scriptError();
        result.line = error.line();
    }
}

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

/// The same as `collect` for a caller, who may not care for the result.
template <class Work>
krl_code answer(krl_result** out, Work&& work) noexcept {
    if (out) *out = nullptr;
    return guarded<krl_code>(KRL_OUT_OF_MEMORY, [&] {
        auto result = std::make_unique<krl_result>();
        collect(*result, work);
        const krl_code code = result->code;
        if (out) *out = result.release();
        return code;
    });
}

/// The picture's pixels or their bytes in another order.
void giveOrder(Value& value, PixelOrder order);

/// The catalogue's description of an argument; null without memory.
const krl_argument_info* infoOf(const Argument* argument) noexcept;

/// A value to hand out, or null without memory.
template <class Make>
krl_value* newValue(Make&& make) noexcept {
    return guarded<krl_value*>(nullptr, [&] { return handleOf(new Value(make())); });
}

/// Copies `text` into a caller's buffer as far as it fits, with a zero at the end.
void copyText(const std::string& text, char* buffer, size_t size);

}  // namespace krl::c
