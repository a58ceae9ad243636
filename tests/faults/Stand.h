#pragma once

#include <ostream>

#include "catalogue/Method.h"
#include "faults/FaultHost.h"

namespace krl::test {

/// What the host and the script see of one call.
struct Seen {
    host::HostStatus status = 0;
    HostString result{};                ///< as text
    HostString message{};               ///< under `error`; empty for 0 or no entry
    uint64_t picture = 0, seconds = 0;  ///< contents afterwards
    bool untouched = false;             ///< the loaded picture is as it was
    int64_t valuesKept = 0, blocksKept = 0, interfacesKept = 0;

    /// The same for host and script.
    bool operator==(const Seen& other) const;
};
std::ostream& operator<<(std::ostream& out, const Seen& seen);

/// The plug-in in a `FaultHost`, brought in by its exports, with one method and its example arguments.
class Stand {
public:
    static constexpr int32_t kWidth = 12, kHeight = 10;

    Stand(const Method& method, int32_t bands);
    ~Stand();

    FaultHost host;

    const Method& method() const { return method_; }
    host::ScriptInstance& instance() { return *instance_; }
    const host::ScriptValue& loaded() const { return loaded_; }
    host::ScriptValue& argument(size_t index) { return arguments_[index + 1]; }

    /// Puts engine, picture and arguments into the state in which the method is tried.
    void prepare();
    /// Calls the method as the host does and lets go of its result.
    Seen call();
    /// Calls any other method with this one's `me` alone, or with one argument.
    Seen call(const char* name, host::ScriptValue argument = {});
    /// Locks on the loaded picture and on the others.
    int64_t loadedLocks();
    int64_t otherLocks() { return host.locks() - loadedLocks(); }
    /// Whether the engine holds a picture.
    bool engineHoldsPicture() const;
    /// Unlocks what the method leaves locked, and the loaded picture where the engine has gone.
    void forgetLocks();
    /// Blocks that the process keeps from here on are not a leak.
    void keepsBlocks() { countsBlocks_ = false; }
    /// Lets the instance go; false if something of the host's or of the process's is still held.
    bool leavesNothing();

private:
    Seen send(const Method& method, host::ScriptValue* arguments);
    host::ScriptValue example(const Argument& argument);

    const Method& method_;
    int32_t bands_;
    int64_t blocksBefore_;
    bool countsBlocks_ = true;
    host::ScriptInstance* instance_ = nullptr;
    host::HostInterface* script_ = nullptr;
    host::ScriptValue loaded_;
    HostVector<host::ScriptValue> arguments_;
};

}  // namespace krl::test
