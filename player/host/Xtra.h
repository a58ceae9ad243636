#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string>

#include "player/host/EmbeddedHost.h"
#include "player/host/MessageTableReader.h"
#include "player/host/PlugInLibrary.h"

namespace krl::player {

/// A loaded plug-in: its classes are read from the exports, it is registered, and its message table
/// lists the methods. Plug-ins count their objects without locks, so only one thread at a time creates or
/// frees them.
class Xtra {
public:
    /// Reads the classes and registers. Throws `HostError` for a plug-in that refuses.
    Xtra(EmbeddedHost& host, PlugInLibrary library);
    Xtra(const Xtra&) = delete;
    Xtra& operator=(const Xtra&) = delete;

    const std::string& name() const { return table_->xtraName(); }
    const std::vector<MethodSignature>& methods() const { return table_->methods(); }
    /// Selector of a method by name, ignoring case; negative if there is none.
    int32_t selector(SymbolId name) const { return table_->selector(host_.symbols.spelling(name)); }

    /// Creates an instance of the scripting class, as `new` does.
    Value newInstance();
    /// Sends a message. Arguments are padded with VOID up to the method's count; the result is VOID
    /// if the method writes none.
    Value call(const Value& instance, int32_t selector, std::span<const Value> arguments);

    /// The number of live interfaces of the plug-in.
    int64_t instances() const { return instances_; }

private:
    friend struct XtraInstanceObject;

    void findClasses();
    void registerClass();
    host::InstanceHead* makeRecord(const host::Identifier& classId);
    host::HostInterface* makeInterface(const host::Identifier& classId, const host::Identifier& interfaceId);
    void letGo(host::HostInterface* object);
    static host::HostStatus KRL_HOST_CALL queryInstance(host::HostInterface* self, const host::Identifier* id,
                                                        void** out);
    static uint32_t KRL_HOST_CALL addInstanceReference(host::HostInterface* self);
    static uint32_t KRL_HOST_CALL releaseInstance(host::HostInterface* self);

    EmbeddedHost& host_;
    PlugInLibrary library_;
    std::optional<MessageTable> table_;
    host::Identifier scriptClass_{}, registrationClass_{};
    int64_t instances_ = 0;
};

/// `xtra "Name"`, the class of instances.
struct XtraObject : Object {
    static constexpr Kind kKind = Kind::Xtra;
    explicit XtraObject(Xtra& library) : xtra(library) {}
    size_t bytes() const override { return sizeof(*this); }

    Xtra& xtra;
};

/// An instance held by a script; it owns the plug-in's object.
struct XtraInstanceObject : Object {
    static constexpr Kind kKind = Kind::XtraInstance;
    explicit XtraInstanceObject(Xtra& maker) : xtra(maker) {}
    ~XtraInstanceObject() override {
        if (script) xtra.letGo(script);
    }
    size_t bytes() const override { return sizeof(*this); }

    Xtra& xtra;
    host::HostInterface* script = nullptr;  ///< null until created
};

}  // namespace krl::player
