#pragma once

#include <span>
#include <vector>

#include "host/HostInterfaces.h"
#include "host/Method.h"
#include "host/ScriptInstance.h"

namespace krl::host {

/// A value that the host gave, released at the end of its scope.
class OwnedValue {
public:
    explicit OwnedValue(HostInterface* values) : values_(values) {}
    ~OwnedValue() { reset(); }
    OwnedValue(const OwnedValue&) = delete;
    OwnedValue& operator=(const OwnedValue&) = delete;

    /// Where a host operation writes the value.
    ScriptValue* out() {
        reset();
        held_ = true;
        return &value_;
    }
    const ScriptValue* get() const { return &value_; }
    const ScriptValue& operator*() const { return value_; }
    /// Gives the value up to whoever takes it over.
    ScriptValue release() {
        held_ = false;
        return value_;
    }

private:
    void reset() {
        if (held_) values::ReleaseValue::call(values_, &value_);
        held_ = false;
    }

    HostInterface* values_;
    ScriptValue value_;
    bool held_ = false;
};

/// One call of one method, as its body sees it: the converted arguments, the engine, the host's
/// services, and the result under construction.
class MethodCall {
public:
    MethodCall(ScriptInstance& instance, CallInfo& info, const Method& method)
        : instance_(instance), info_(info), method_(method) {}

    /// Null before `krlImageCreateLookupTables`, and then only seen by methods that work without.
    ImageEngine* engine() const { return instance_.engine; }
    ScriptInstance& instance() const { return instance_; }
    const Method& method() const { return method_; }

    std::span<const ArgumentValue> arguments() const { return arguments_; }
    /// Argument `index`, from 0, as a plain type: `call.get<int32_t>(0)`.
    template <class Plain>
    Plain get(size_t index) const {
        return arguments_[index].template as<Plain>();
    }
    /// The words that the script passed for argument `index`, from 0.
    ScriptValue raw(size_t index) const {
        return info_.arguments ? info_.arguments[index + 1] : ScriptValue{};
    }

    // Readers, for bodies that walk lists of their own. Each gives the host's status.
    HostStatus read(const ScriptValue& value, int32_t& out) const;
    HostStatus read(const ScriptValue& value, double& out) const;
    HostStatus read(const ScriptValue& value, float& out) const;
    HostStatus read(const ScriptValue& value, Point& out) const;
    HostStatus read(const ScriptValue& value, Colour& out) const;
    HostStatus readSymbol(const ScriptValue& value, SymbolId& out) const;
    /// Entries of a list, negative for a value that is no list.
    int32_t countElements(const ScriptValue& list) const;
    /// Element `index`, from 1.
    HostStatus element(const ScriptValue& list, int32_t index, OwnedValue& out) const;
    /// The property that stands at `index`, from 1; borrowed from the list.
    HostStatus propertyAt(const ScriptValue& list, int32_t index, ScriptValue& out) const;
    /// The value under the symbol `key`; a status that is not 0 where there is none.
    HostStatus elementUnder(const ScriptValue& list, const char* key, OwnedValue& out) const;
    /// Colours under numbers, as `CurveKey`s; stops at the first entry that cannot be read.
    HostStatus readColourList(const ScriptValue& list, ListKeys rule, std::vector<CurveKey>& out) const;

    SymbolId intern(const char* name) const;
    bool is(SymbolId symbol, const char* name) const { return symbol == intern(name); }
    HostInterface* values() const { return instance_.values; }
    HostInterface* lists() const { return instance_.lists; }
    HostInterface* images() const { return instance_.images; }
    HostInterface* colours() const { return instance_.colours; }

    // The result.
    /// Adds an entry after `error`, or releases `value` if the call fails; takes the reference over.
    void addResult(const char* key, const ScriptValue& value);
    /// A success without the `error` entry.
    void leaveOutError() { withError_ = false; }
    /// Puts `value` in the place of the result list; the script gets the reference.
    void answerWith(ScriptValue value);

    /// Runs the method from the engine test to the stored result; what the host gets back.
    HostStatus run();

private:
    Outcome perform();
    Outcome readArguments();
    Outcome readArgument(size_t index);
    Outcome compare(size_t first, size_t last);
    Outcome lockSecondImages();
    void unlockSecondImages() const;
    HostStatus finish(const Outcome& outcome);
    void appendError(const Outcome& outcome);

    ScriptInstance& instance_;
    CallInfo& info_;
    const Method& method_;
    std::vector<ArgumentValue> arguments_;
    std::vector<ScriptValue> locked_;  ///< second images
    ScriptValue result_, errorKey_;
    std::vector<std::pair<const char*, ScriptValue>> entries_;
    bool withError_ = true;
    bool replaced_ = false;
};

}  // namespace krl::host
