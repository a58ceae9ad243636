#include <cstring>

#include "host/Door.h"
#include "player/host/EmbeddedHost.h"

/// The registration services: the application's name and version, a cache of entries, and their
/// dictionaries.
namespace krl::player {

using namespace host;

namespace {

constexpr int32_t kItemName = 5;
constexpr int32_t kItemVersion = 6;

HostStatus KRL_HOST_CALL applicationItem(HostInterface* self, int32_t item, char* buffer, int32_t bytes) {
    const EmbeddedHost& owner = hostOf(self);
    if (item != kItemName && item != kItemVersion) return kNoSuchElement;
    const std::string& text = item == kItemName ? owner.applicationName : owner.applicationVersion;
    if (bytes < 0 || text.size() + 1 > static_cast<size_t>(bytes)) return kHostOutOfMemory;
    std::memcpy(buffer, text.c_str(), text.size() + 1);
    return kHostOk;
}

HostStatus KRL_HOST_CALL putEntry(HostInterface* self, int32_t type, const void* value, int32_t,
                                  const char* key) {
    return guarded([&]() -> HostStatus {
        auto& dictionary = static_cast<RegistryDictionary&>(Service::of(self));
        if (type == kEntryInteger)
            std::memcpy(&dictionary.integers[key], value, sizeof(int32_t));
        else if (type == kEntryText)
            dictionary.texts[key] = static_cast<const char*>(value);
        else
            return kWrongKind;
        return kHostOk;
    });
}

HostStatus KRL_HOST_CALL addEntry(HostInterface* self, HostInterface*, const Identifier* classId,
                                  const Identifier* interfaceId, HostInterface** dictionary) {
    return guarded([&] {
        RegistryDictionary& made = hostOf(self).addDictionary(*classId, *interfaceId);
        made.set<registry::PutEntry>(putEntry);
        *dictionary = &made.face;
        return kHostOk;
    });
}

}  // namespace

void fillRegistryOperations(Service& application, Service& cache) {
    application.set<registry::GetApplicationItem>(applicationItem);
    cache.set<registry::AddEntry>(addEntry);
}

}  // namespace krl::player
