#include "player/host/EmbeddedHost.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <utility>

namespace krl::player {

using namespace host;

namespace {

HostStatus KRL_HOST_CALL queryInterface(HostInterface* self, const Identifier* id, void** out) {
    return guarded([&]() -> HostStatus {
        *out = hostOf(self).service(*id);
        return *out ? kHostOk : kHostNoInterface;
    });
}

uint32_t KRL_HOST_CALL addReference(HostInterface* self) {
    return static_cast<uint32_t>(++Service::of(self).references);
}

uint32_t KRL_HOST_CALL release(HostInterface* self) {
    return static_cast<uint32_t>(--Service::of(self).references);
}

/// The only class that the host instantiates for the plug-in is served like the other services.
HostStatus KRL_HOST_CALL createInstance(HostInterface* self, const Identifier* classId,
                                        const Identifier* interfaceId, void** out) {
    *out = nullptr;
    return *classId == ids::kServiceBClass ? queryInterface(self, interfaceId, out) : kHostNoClass;
}

void* KRL_HOST_CALL allocate(HostInterface* self, uint32_t bytes) { return hostOf(self).allocate(bytes); }
void KRL_HOST_CALL freeBlock(HostInterface* self, void* block) { hostOf(self).free(block); }

HostStatus KRL_HOST_CALL givePlayer(HostInterface* self, HostInterface** out) {
    *out = &hostOf(self).player.face;
    addReference(*out);
    return kHostOk;
}

HostStatus KRL_HOST_CALL givePlayerSub(HostInterface* self, HostInterface** out) {
    *out = &hostOf(self).playerSub.face;
    addReference(*out);
    return kHostOk;
}

/// Plug-ins never release the result, so there is none.
HostStatus KRL_HOST_CALL givePlayerItem(HostInterface*, int32_t, HostInterface** out) {
    *out = nullptr;
    return kHostNoInterface;
}

HostStatus KRL_HOST_CALL_VARIADIC printMessage(HostInterface* self, const char* format, ...) {
    char text[1024];
    va_list arguments;
    va_start(arguments, format);
    const int length = std::vsnprintf(text, sizeof(text), format, arguments);
    va_end(arguments);
    if (length < 0) return kWrongKind;
    return guardedAnswer(self, [&] {
        if (hostOf(self).onMessage) hostOf(self).onMessage(text);
        return kHostOk;
    });
}

}  // namespace

EmbeddedHost::EmbeddedHost(uint64_t memoryLimitBytes) : heap(memoryLimitBytes) {
    for (Service* service : {&provider_, &allocator_, &cache_, &player, &playerSub}) found(*service);
    provider_.set<callback::CreateInstance>(createInstance);
    allocator_.set<allocator::Allocate>(krl::player::allocate).set<allocator::Free>(freeBlock);
    player.set<players::GetSub>(givePlayerSub).set<players::GetItem>(givePlayerItem);
    for (const Identifier& id :
         {ids::kServiceA, ids::kServiceB, ids::kServiceC, ids::kServiceD, ids::kServiceE})
        offer(id);
    offer(ids::kPlayerSource).set<players::GetPlayer>(givePlayer);
    offer(ids::kUtils).set<utils::PrintMessage>(printMessage);
    fillRegistryOperations(offer(ids::kAppInfo), cache_);
    fillValueOperations(offer(ids::kValues), offer(ids::kColours));
    fillListOperations(offer(ids::kLists));
    fillImageOperations(offer(ids::kImages));
}

/// Adds the operations that every interface has.
void EmbeddedHost::found(Service& service) {
    service.host = this;
    service.face.operations = service.operations.data();
    service.set<unknown::QueryInterface>(queryInterface)
        .set<unknown::AddRef>(addReference)
        .set<unknown::Release>(release);
}

Service& EmbeddedHost::offer(const Identifier& id) {
    Offer& made = offers_.emplace_back();
    made.id = id;
    found(made.service);
    return made.service;
}

HostInterface* EmbeddedHost::service(const Identifier& id) {
    for (Offer& offered : offers_)
        if (offered.id == id) {
            ++offered.service.references;
            return &offered.service.face;
        }
    return nullptr;
}

RegistryDictionary& EmbeddedHost::addDictionary(const Identifier& classId, const Identifier& interfaceId) {
    RegistryDictionary& made = dictionaries_.emplace_back();
    found(made);
    made.classId = classId;
    made.interfaceId = interfaceId;
    return made;
}

const RegistryDictionary* EmbeddedHost::dictionary(const Identifier& classId,
                                                   const Identifier& interfaceId) const {
    for (const RegistryDictionary& entry : dictionaries_)
        if (entry.classId == classId && entry.interfaceId == interfaceId) return &entry;
    return nullptr;
}

void EmbeddedHost::rethrowFailure() {
    if (failure_) std::rethrow_exception(std::exchange(failure_, nullptr));
}

void keepFailure(EmbeddedHost& host) noexcept { host.failure_ = std::current_exception(); }

void* EmbeddedHost::allocate(uint32_t bytes) {
    void* block = std::calloc(1, bytes == 0 ? 1 : bytes);
    if (block) ++blocks_;
    return block;
}

void EmbeddedHost::free(void* block) {
    if (!block) return;
    --blocks_;
    std::free(block);
}

int64_t EmbeddedHost::references() const {
    int64_t all = player.references + playerSub.references;
    for (const Offer& offered : offers_) all += offered.service.references;
    return all;
}

}  // namespace krl::player
