#pragma once

#include "host/HostInterfaces.h"

#if defined(_WIN32)
#define KRL_EXPORT extern "C"
#else
#define KRL_EXPORT extern "C" __attribute__((visibility("default")))
#endif

/// The exports of the library and the records that pass through them.
namespace krl::host {

/// The head of every instance record, filled by the host's class machinery. An instance is itself
/// a host interface: `operations` begins with `QueryInterface`, `AddRef`, `Release`.
struct InstanceHead {
    void* const* operations = nullptr;
    void* hostWords[3] = {};
    HostInterface* callback = nullptr;   ///< the host's service provider
    HostInterface* allocator = nullptr;  ///< the host's memory service
};

using CreateInstanceFunction = HostStatus(KRL_HOST_CALL*)(InstanceHead*);
using DestroyInstanceFunction = void(KRL_HOST_CALL*)(InstanceHead*);

/// One class information record, in the host's fixed format.
struct ClassInfoRecord {
    Identifier classId;
    uint32_t classVersion;
    Identifier interfaceId;
    uint32_t interfaceVersion;
};
static_assert(sizeof(ClassInfoRecord) == 40);

/// The interface object returned by `DllGetInterface`: its table of operations, the instance that owns
/// it, and a reference count.
struct InterfaceObject {
    void* const* operations = nullptr;
    InstanceHead* owner = nullptr;
    uint32_t references = 0;

    HostInterface* asInterface() { return reinterpret_cast<HostInterface*>(this); }
};

/// The operations of the two interfaces after the first three.
using RegisterOperation = Operation<3, HostStatus(HostInterface* cache, HostInterface* entry)>;
using CallOperation = Operation<3, HostStatus(CallInfo*)>;

inline constexpr uint32_t kClassVersion = 0x1000040;
/// Types of dictionary entries in registration.
inline constexpr int32_t kEntryInteger = 3;
inline constexpr int32_t kEntryText = 9;

using CanUnloadNowFunction = HostStatus(KRL_HOST_CALL*)();
using GetClassFormFunction = HostStatus(KRL_HOST_CALL*)(const Identifier* classId, int32_t* instanceBytes,
                                                        CreateInstanceFunction*, DestroyInstanceFunction*);
using GetClassInfoFunction = HostStatus(KRL_HOST_CALL*)(HostInterface* allocator, ClassInfoRecord**);
using GetClassObjectFunction = HostStatus(KRL_HOST_CALL*)(const Identifier* classId,
                                                          const Identifier* interfaceId, void**);
using GetInterfaceFunction = HostStatus(KRL_HOST_CALL*)(InstanceHead*, const Identifier* classId,
                                                        const Identifier* interfaceId, void**);

}  // namespace krl::host

/// 0 if no interface object is alive, otherwise `0x80040003`.
KRL_EXPORT krl::host::HostStatus KRL_HOST_CALL DllCanUnloadNow();
/// Size, creation and destruction of a class's instances; `0x80040005` for no such class.
KRL_EXPORT krl::host::HostStatus KRL_HOST_CALL DllGetClassForm(const krl::host::Identifier* classId,
                                                               int32_t* instanceBytes,
                                                               krl::host::CreateInstanceFunction* create,
                                                               krl::host::DestroyInstanceFunction* destroy);
/// An array of class information records from the host's allocator, terminated by a zeroed record.
KRL_EXPORT krl::host::HostStatus KRL_HOST_CALL DllGetClassInfo(krl::host::HostInterface* allocator,
                                                               krl::host::ClassInfoRecord** records);
/// Always `0x80040005`: hosts do not obtain objects this way.
KRL_EXPORT krl::host::HostStatus KRL_HOST_CALL DllGetClassObject(const krl::host::Identifier* classId,
                                                                 const krl::host::Identifier* interfaceId,
                                                                 void** object);
/// An interface object of `instance`; `0x80040004` for no such class or interface.
KRL_EXPORT krl::host::HostStatus KRL_HOST_CALL DllGetInterface(krl::host::InstanceHead* instance,
                                                               const krl::host::Identifier* classId,
                                                               const krl::host::Identifier* interfaceId,
                                                               void** object);
