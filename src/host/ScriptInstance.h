#pragma once

#include "host/Door.h"

namespace krl::host {

/// The record behind one script object, `CKRLImageXtraScript_IMoaMmXScript`'s owner. The host
/// allocates it and fills the head; `createScriptInstance` fills the services.
struct ScriptInstance : InstanceHead {
    HostInterface* serviceA;
    HostInterface* appInfo;
    HostInterface* serviceB;
    HostInterface* values;
    HostInterface* serviceC;
    HostInterface* utils;
    HostInterface* lists;
    HostInterface* serviceD;
    HostInterface* playerSource;
    HostInterface* player;      ///< per call, null between calls
    HostInterface* playerItem;  ///< written by the host query, never read
    HostInterface* playerSub;   ///< per call, null between calls
    HostInterface* serviceE;
    HostInterface* images;
    HostInterface* colours;
    ScriptValue imageValue;  ///< the loaded image's value, without a reference
    ImageEngine* engine;     ///< null until `krlImageCreateLookupTables`
    uint32_t timerStart;
    void* reserved[5];
};
#if UINTPTR_MAX == UINT32_MAX
static_assert(sizeof(InstanceHead) == 24);
static_assert(sizeof(ScriptInstance) == 120);
static_assert(sizeof(InterfaceObject) == 12);
#endif

/// Acquires the host's services; `0x80040004` if a required one is missing.
HostStatus KRL_HOST_CALL createScriptInstance(InstanceHead* head);
/// Releases the services and frees the engine. An image that is still loaded stays locked.
void KRL_HOST_CALL destroyScriptInstance(InstanceHead* head);

/// `CKRLImageXtraScript_IMoaMmXScript`: `QueryInterface`, `AddRef`, `Release`, `Call` and the 112
/// method operations in the order of their selectors.
HostStatus createScriptInterface(InstanceHead* owner, void** out);
/// `CKRLImageXtraRegister_IMoaRegister`: the first three and `Register`.
HostStatus createRegistrationInterface(InstanceHead* owner, void** out);

}  // namespace krl::host
