#pragma once

#include <array>

#include "catalogue/Call.h"
#include "host/HostInterfaces.h"
#include "host/ScriptInstance.h"

namespace krl::host {

/// One call of a method by a script: gives the catalogue access to the host's values, pictures and symbols,
/// and builds the script's result. Only this adapter handles reference counts and locks.
class HostCall : public Caller {
public:
    HostCall(ScriptInstance& instance, CallInfo& info, const Method& method)
        : instance_(instance), info_(info), method_(method) {}

    /// Runs the method, stores its result and returns the status for the host.
    HostStatus run();

    ScriptInstance& instance() const { return instance_; }
    ImageEngine* engine() const { return instance_.engine; }
    const Method& method() const { return method_; }
    /// The script's value for argument `index`, from 0.
    ScriptValue raw(size_t index) const {
        return info_.arguments ? info_.arguments[index + 1] : ScriptValue{};
    }
    /// Choice `index` of a method that reads its arguments itself: its symbols are ready before all else.
    SymbolId choice(size_t index) const { return choices_[index]; }
    HostInterface* values() const { return instance_.values; }
    HostInterface* images() const { return instance_.images; }

    ValueHandle argument(size_t index) override;
    CallCode read(const ValueHandle& value, int32_t& out) override;
    CallCode read(const ValueHandle& value, double& out) override;
    CallCode read(const ValueHandle& value, Point& out) override;
    CallCode read(const ValueHandle& value, Colour& out) override;
    CallCode readSymbol(const ValueHandle& value, SymbolId& out) override;
    SymbolId symbol(const char* name) override;
    int32_t countElements(const ValueHandle& list) override;
    CallCode element(const ValueHandle& list, int32_t index, ValueHandle& out) override;
    CallCode propertyAt(const ValueHandle& list, int32_t index, ValueHandle& out) override;
    CallCode elementUnder(const ValueHandle& list, const char* key, ValueHandle& out) override;
    CallCode release(const ValueHandle& value) override;

    CallCode describePicture(const ValueHandle& picture, ImageInfo& out) override;
    CallCode lockPicture(const ValueHandle& picture, uint8_t*& out) override;
    CallCode unlockPicture(const ValueHandle& picture) override;
    CallCode makePicture(int32_t width, int32_t height, ValueHandle& out) override;

    void give(const char* key, double number) override;
    void give(const char* key, Colour colour) override;
    void giveSymbol(const char* key, const char* name) override;
    void givePicture(const char* key, const ValueHandle& picture) override;
    CallCode answerWithPicture(const char* key, const ValueHandle& picture) override;
    void beginPictureList() override;
    void addToPictureList(const ValueHandle& picture) override;
    void leaveOutError() override { withError_ = false; }

private:
    void internChoices();
    HostStatus finish(const Outcome& outcome);
    void appendError(const Outcome& outcome);
    void addEntry(const char* key, const ScriptValue& value);
    void append(const ScriptValue& list, const char* key, const ScriptValue& value);
    /// Replaces the result list by `value` and passes its reference to the script.
    void answerWith(const ScriptValue& value);

    ScriptInstance& instance_;
    CallInfo& info_;
    const Method& method_;
    ScriptValue result_, errorKey_;
    struct Entry {
        const char* key;
        ScriptValue value;
    };
    /// The most that any method returns; storing a created value must not fail.
    static constexpr size_t kMostEntries = 4;
    std::array<Entry, kMostEntries> entries_;
    size_t entryCount_ = 0;
    std::array<SymbolId, 2> choices_{};
    bool withError_ = true;
    bool replaced_ = false;
};

/// The implementation of a method that manages the engine, by its name.
using EngineBody = Outcome (*)(HostCall&);
EngineBody engineBody(const Method& method);

}  // namespace krl::host
