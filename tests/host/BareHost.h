#pragma once

#include <array>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "host/Identifiers.h"
#include "host/ScriptInstance.h"

namespace krl::host::test {

/// A minimal host: it registers the plug-in and creates instances, can lack any service or run out of
/// memory, and records all requests. It has no values and no images.
class BareHost {
public:
    BareHost() {
        set<unknown::QueryInterface>(queryInterface);
        set<unknown::AddRef>(addReference);
        set<unknown::Release>(release);
        set<callback::CreateInstance>(provider_, createInstance);
        set<allocator::Allocate>(memory_, allocate);
        set<allocator::Free>(memory_, freeBlock);
        set<registry::GetApplicationItem>(application_, applicationItem);
        set<registry::AddEntry>(cache_, addEntry);
        set<registry::PutEntry>(dictionary_, putEntry);
    }

    std::string name = "Director";
    std::string version = "10.1";
    /// Services that are unavailable.
    std::vector<Identifier> missing;
    /// Allocations still granted; negative means no limit.
    int blocksLeft = -1;
    /// The entry whose addition fails.
    const Identifier* failingEntry = nullptr;

    int references = 0;                          ///< on all services and instances together
    int blocks = 0;                              ///< allocated and not yet freed
    std::vector<std::string> asked;              ///< requested services, in order
    std::map<std::string, std::string> entries;  ///< dictionary entries
    int entriesAdded = 0;

    HostInterface* provider() { return face(provider_); }
    HostInterface* memory() { return face(memory_); }
    HostInterface* cache() { return face(cache_); }

    /// A zeroed instance record whose head belongs to this host.
    template <class Record>
    Record record() {
        Record made{};
        made.operations = provider_.operations.data();
        made.hostWords[0] = this;
        made.callback = provider();
        made.allocator = memory();
        return made;
    }

private:
    /// An interface of this host: its table first, as every interface has it.
    struct Service {
        HostInterface door;
        BareHost* host;
        std::array<void*, slots::kTableSize> operations{};
    };

    HostInterface* face(Service& service) { return &service.door; }

    // An instance's head has the same layout as a service: a table, then this host.
    static BareHost& hostOf(HostInterface* self) { return *reinterpret_cast<Service*>(self)->host; }

    template <class Op>
    void set(typename Op::Function function) {
        for (Service* service : all()) set<Op>(*service, function);
    }

    template <class Op>
    void set(Service& service, typename Op::Function function) {
        service.host = this;
        service.door.operations = service.operations.data();
        service.operations[Op::slot] = reinterpret_cast<void*>(function);
    }

    std::array<Service*, 6> all() {
        return {&provider_, &memory_, &application_, &cache_, &dictionary_, &other_};
    }

    static HostStatus KRL_HOST_CALL queryInterface(HostInterface* self, const Identifier* id, void** out) {
        BareHost& host = hostOf(self);
        host.asked.push_back(text(*id));
        for (const Identifier& lacking : host.missing)
            if (lacking == *id) return kHostNoInterface;
        ++host.references;
        *out = *id == ids::kAppInfo ? &host.application_.door : &host.other_.door;
        return kHostOk;
    }

    static HostStatus KRL_HOST_CALL createInstance(HostInterface* self, const Identifier*,
                                                   const Identifier* interfaceId, void** out) {
        return queryInterface(self, interfaceId, out);
    }

    static uint32_t KRL_HOST_CALL addReference(HostInterface* self) {
        return static_cast<uint32_t>(++hostOf(self).references);
    }

    static uint32_t KRL_HOST_CALL release(HostInterface* self) {
        return static_cast<uint32_t>(--hostOf(self).references);
    }

    static void* KRL_HOST_CALL allocate(HostInterface* self, uint32_t bytes) {
        BareHost& host = hostOf(self);
        if (host.blocksLeft == 0) return nullptr;
        if (host.blocksLeft > 0) --host.blocksLeft;
        ++host.blocks;
        return std::malloc(bytes);
    }

    static void KRL_HOST_CALL freeBlock(HostInterface* self, void* block) {
        --hostOf(self).blocks;
        std::free(block);
    }

    static HostStatus KRL_HOST_CALL applicationItem(HostInterface* self, int32_t item, char* buffer,
                                                    int32_t bufferBytes) {
        const std::string& answer = item == 5 ? hostOf(self).name : hostOf(self).version;
        std::strncpy(buffer, answer.c_str(), static_cast<size_t>(bufferBytes));
        return kHostOk;
    }

    static HostStatus KRL_HOST_CALL addEntry(HostInterface* self, HostInterface*, const Identifier*,
                                             const Identifier* interfaceId, HostInterface** dictionary) {
        BareHost& host = hostOf(self);
        if (host.failingEntry && *host.failingEntry == *interfaceId) return kHostOutOfMemory;
        ++host.entriesAdded;
        *dictionary = &host.dictionary_.door;
        return kHostOk;
    }

    static HostStatus KRL_HOST_CALL putEntry(HostInterface* self, int32_t type, const void* value,
                                             int32_t size, const char* key) {
        const bool integer = type == kEntryInteger;
        std::string shown = integer ? std::to_string(*static_cast<const int32_t*>(value))
                                    : std::string(static_cast<const char*>(value));
        hostOf(self).entries[key] = std::to_string(type) + '/' + std::to_string(size) + '/' + shown;
        return kHostOk;
    }

    static std::string text(const Identifier& id) {
        char buffer[16];
        std::snprintf(buffer, sizeof(buffer), "%08X", static_cast<unsigned>(id.data1));
        return buffer;
    }

    Service provider_{}, memory_{}, application_{}, cache_{}, dictionary_{}, other_{};
};

}  // namespace krl::host::test
