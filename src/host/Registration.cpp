#include <cstdio>
#include <cstring>

#include "host/Identifiers.h"
#include "host/InterfaceObject.h"
#include "host/MessageTable.h"
#include "host/ScriptInstance.h"

/// What the registration class tells a host, once, when it builds its registry.
namespace krl::host {

namespace {

constexpr int32_t kItemName = 5;
constexpr int32_t kItemVersion = 6;

/// Whether a version text is new enough: from 6 on, which "10.1" shows by its second digit.
bool passes(const char* version) { return version[0] >= '6' || (version[1] != '\0' && version[1] != '.'); }

/// Whether the application may have the plug-in.
HostStatus testApplication(HostInterface* appInfo) {
    char text[64] = {};
    if (HostStatus status = registry::GetApplicationItem::call(appInfo, kItemName, text, sizeof(text)))
        return status;
    if (std::memcmp(text, "Director", sizeof("Director")) != 0) return kHostNoInterface;
    if (HostStatus status = registry::GetApplicationItem::call(appInfo, kItemVersion, text, sizeof(text)))
        return status;
    return passes(text) ? kHostOk : kHostTooOld;
}

HostStatus registerMessageTable(HostInterface* allocatorService, HostInterface* dictionary) {
    const MessageTable* table = messageTableOrNull();
    void* block = table ? allocator::Allocate::call(allocatorService, table->bytes()) : nullptr;
    if (!block) return kHostOutOfMemory;
    char* text = static_cast<char*>(block);
    std::snprintf(text, table->bytes(), "%s%s", table->head().data(), table->body().c_str());
    const HostStatus status = registry::PutEntry::call(dictionary, kEntryText, text, 0, "msgTable");
    allocator::Free::call(allocatorService, block);
    return status;
}

HostStatus registerScriptClass(InstanceHead& owner, HostInterface* cache, HostInterface* entry) {
    HostInterface* dictionary = nullptr;
    registry::AddEntry::call(cache, entry, &ids::kScriptClass, &ids::kLoadControl, &dictionary);
    const int32_t loadOptions = 3;
    registry::PutEntry::call(dictionary, kEntryInteger, &loadOptions, 0, "XtraLoadControlOptions");
    dictionary = nullptr;
    if (HostStatus status =
            registry::AddEntry::call(cache, entry, &ids::kScriptClass, &ids::kIMoaMmXScript, &dictionary))
        return status;
    return registerMessageTable(owner.allocator, dictionary);
}

HostStatus KRL_HOST_CALL registerWith(HostInterface* self, HostInterface* cache, HostInterface* entry) {
    InstanceHead& owner = *objectOf(self).owner;
    void* found = nullptr;
    if (HostStatus status = unknown::QueryInterface::call(owner.callback, &ids::kAppInfo, &found))
        return status;
    auto* appInfo = static_cast<HostInterface*>(found);
    HostStatus status = testApplication(appInfo);
    if (status == kHostOk) status = registerScriptClass(owner, cache, entry);
    unknown::Release::call(appInfo);
    return status;
}

}  // namespace

HostStatus createRegistrationInterface(InstanceHead* owner, void** out) {
    static void* const operations[] = {
        reinterpret_cast<void*>(&queryInterface), reinterpret_cast<void*>(&addReference),
        reinterpret_cast<void*>(&releaseReference), reinterpret_cast<void*>(&registerWith)};
    return createInterfaceObject(owner, operations, out);
}

}  // namespace krl::host
