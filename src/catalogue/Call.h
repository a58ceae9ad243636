#pragma once

#include <span>
#include <vector>

#include "catalogue/Caller.h"
#include "catalogue/Method.h"
#include "catalogue/PictureLock.h"

namespace krl {

/// A value that the caller gave, released at the end of its scope.
class HeldValue {
public:
    explicit HeldValue(Caller& caller) : caller_(caller) {}
    ~HeldValue() { reset(); }
    HeldValue(const HeldValue&) = delete;
    HeldValue& operator=(const HeldValue&) = delete;

    /// Takes over the reference that came with `value`.
    void take(const ValueHandle& value) {
        reset();
        value_ = value;
        held_ = true;
    }
    const ValueHandle& operator*() const { return value_; }
    /// Gives the value up to whoever takes it over.
    ValueHandle release() {
        held_ = false;
        return value_;
    }

private:
    void reset() {
        if (held_) caller_.release(value_);
        held_ = false;
    }

    Caller& caller_;
    ValueHandle value_;
    bool held_ = false;
};

/// One call of one method: reads and tests the arguments in the order that the entry declares, locks second
/// pictures, runs the body and lets the pictures go. What the body sees is this object.
class Call {
public:
    /// `engine` may be null; only methods that work without one then run.
    Call(Caller& caller, const Method& method, ImageEngine* engine)
        : caller_(caller), method_(method), engine_(engine) {}
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

    /// From the engine test to the end of the body. Nothing is thrown: what runs out of memory or is
    /// cancelled ends with the failed text and `kCallOutOfMemory` or `kCallCancelled`.
    Outcome run();

    Caller& caller() const { return caller_; }
    const Method& method() const { return method_; }
    ImageEngine* engine() const { return engine_; }

    std::span<const ArgumentValue> arguments() const { return arguments_; }
    /// Argument `index`, from 0, as a plain type: `call.get<int32_t>(0)`.
    template <class Plain>
    Plain get(size_t index) const {
        return arguments_[index].template as<Plain>();
    }
    /// Argument `index`, from 0, as the caller passed it.
    ValueHandle raw(size_t index) const { return caller_.argument(index); }

    // Readers, for bodies that walk lists of their own. Each gives the caller's code.
    template <class Plain>
    CallCode read(const ValueHandle& value, Plain& out) const {
        return caller_.read(value, out);
    }
    CallCode read(const ValueHandle& value, float& out) const;
    CallCode readSymbol(const ValueHandle& value, SymbolId& out) const {
        return caller_.readSymbol(value, out);
    }
    int32_t countElements(const ValueHandle& list) const { return caller_.countElements(list); }
    CallCode element(const ValueHandle& list, int32_t index, HeldValue& out) const;
    CallCode propertyAt(const ValueHandle& list, int32_t index, ValueHandle& out) const {
        return caller_.propertyAt(list, index, out);
    }
    CallCode elementUnder(const ValueHandle& list, const char* key, HeldValue& out) const;
    /// Colours under numbers, as `CurveKey`s; stops at the first entry that cannot be read.
    CallCode readColourList(const ValueHandle& list, ListKeys rule, std::vector<CurveKey>& out) const;
    bool is(SymbolId symbol, const char* name) const { return symbol == caller_.symbol(name); }

private:
    Outcome perform();
    Outcome readArguments();
    Outcome readArgument(size_t index);
    Outcome compare(size_t first, size_t last);
    Outcome lockSecondImages();

    Caller& caller_;
    const Method& method_;
    ImageEngine* engine_;
    std::vector<ArgumentValue> arguments_;
    std::vector<PictureLock> locks_;  ///< of second images
};

}  // namespace krl
