#include "host/ScriptInstance.h"

#include <array>
#include <new>
#include <utility>

#include "core/DefinedFloats.h"
#include "host/HostCall.h"
#include "host/Identifiers.h"
#include "host/InterfaceObject.h"
#include "host/MessageTable.h"
#include "host/MessageTableText.h"
#include "host/MethodRegistry.h"

namespace krl::host {

namespace {

HostInterface* asked(HostInterface* callbackService, const Identifier& interfaceId) {
    void* found = nullptr;
    unknown::QueryInterface::call(callbackService, &interfaceId, &found);
    return static_cast<HostInterface*>(found);
}

void releaseAndClear(HostInterface*& service) {
    if (service) unknown::Release::call(service);
    service = nullptr;
}

/// One method on one script object: what the operations table and `Call` come down to.
HostStatus invoke(ScriptInstance& instance, CallInfo& info, int32_t selector) {
    const DefinedFloats floats;
    try {
        if (selector < 1 || static_cast<size_t>(selector) > methods().size()) return kHostOk;
        const Method* method = methods()[static_cast<size_t>(selector - 1)];
        return method ? HostCall(instance, info, *method).run() : kHostOk;
    } catch (...) {
        return kHostOutOfMemory;
    }
}

template <int32_t Selector>
HostStatus KRL_HOST_CALL methodOperation(HostInterface* self, CallInfo* info) {
    return invoke(static_cast<ScriptInstance&>(*objectOf(self).owner), *info, Selector);
}

HostStatus dispatch(ScriptInstance& instance, CallInfo& info) {
    if (HostStatus status = players::GetPlayer::call(instance.playerSource, &instance.player)) return status;
    if (HostStatus status = players::GetSub::call(instance.player, &instance.playerSub)) return status;
    return invoke(instance, info, info.selector);
}

HostStatus KRL_HOST_CALL callMethod(HostInterface* self, CallInfo* info) {
    auto& instance = static_cast<ScriptInstance&>(*objectOf(self).owner);
    const HostStatus status = dispatch(instance, *info);
    releaseAndClear(instance.player);
    releaseAndClear(instance.playerSub);
    return status;
}

constexpr size_t kFirstMethodSlot = 4;
using ScriptOperations = std::array<void*, kFirstMethodSlot + kMethodCount>;

template <size_t... Index>
ScriptOperations scriptOperations(std::index_sequence<Index...>) {
    return {reinterpret_cast<void*>(&queryInterface), reinterpret_cast<void*>(&addReference),
            reinterpret_cast<void*>(&releaseReference), reinterpret_cast<void*>(&callMethod),
            reinterpret_cast<void*>(&methodOperation<static_cast<int32_t>(Index) + 1>)...};
}

}  // namespace

HostStatus KRL_HOST_CALL createScriptInstance(InstanceHead* head) {
    auto& instance = static_cast<ScriptInstance&>(*head);
    HostInterface* const host = head->callback;
    instance.engine = nullptr;
    instance.playerSource = instance.serviceE = nullptr;
    instance.serviceA = asked(host, ids::kServiceA);
    instance.appInfo = asked(host, ids::kAppInfo);
    void* serviceB = nullptr;
    callback::CreateInstance::call(host, &ids::kServiceBClass, &ids::kServiceB, &serviceB);
    instance.serviceB = static_cast<HostInterface*>(serviceB);
    instance.values = asked(host, ids::kValues);
    instance.serviceC = asked(host, ids::kServiceC);
    instance.utils = asked(host, ids::kUtils);
    instance.lists = asked(host, ids::kLists);
    instance.images = asked(host, ids::kImages);
    instance.colours = asked(host, ids::kColours);
    instance.serviceD = asked(host, ids::kServiceD);
    if (!instance.serviceD) return kHostNoInterface;
    instance.playerSource = asked(host, ids::kPlayerSource);
    instance.serviceE = asked(host, ids::kServiceE);
    for (HostInterface* required : {instance.serviceA, instance.appInfo, instance.serviceB, instance.values,
                                    instance.utils, instance.lists, instance.playerSource, instance.serviceE})
        if (!required) return kHostNoInterface;
    instance.player = instance.playerItem = instance.playerSub = nullptr;
    for (void*& word : instance.reserved) word = nullptr;
    // Made before the first call, so that no call fails for want of it.
    return messageTableOrNull() ? kHostOk : kHostOutOfMemory;
}

void KRL_HOST_CALL destroyScriptInstance(InstanceHead* head) {
    auto& instance = static_cast<ScriptInstance&>(*head);
    for (HostInterface** service :
         {&instance.serviceA, &instance.appInfo, &instance.serviceB, &instance.values, &instance.serviceC,
          &instance.utils, &instance.lists, &instance.images, &instance.colours, &instance.serviceD,
          &instance.playerSource, &instance.serviceE})
        releaseAndClear(*service);
    delete std::exchange(instance.engine, nullptr);
}

HostStatus createScriptInterface(InstanceHead* owner, void** out) {
    static const ScriptOperations operations = scriptOperations(std::make_index_sequence<kMethodCount>());
    return createInterfaceObject(owner, operations.data(), out);
}

}  // namespace krl::host
