#pragma once

#include <deque>
#include <exception>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "host/Identifiers.h"
#include "player/host/Heap.h"
#include "player/host/Service.h"
#include "player/host/SymbolTable.h"

namespace krl::player {

/// Status codes of operations, besides success.
inline constexpr host::HostStatus kWrongKind = static_cast<host::HostStatus>(0x80041001u);
inline constexpr host::HostStatus kStaleValue = static_cast<host::HostStatus>(0x80041002u);
inline constexpr host::HostStatus kNoSuchElement = static_cast<host::HostStatus>(0x80041003u);
inline constexpr host::HostStatus kNotLocked = static_cast<host::HostStatus>(0x80041004u);

/// What a plug-in registered for one class and interface. It is an interface itself, handed out without a
/// reference.
struct RegistryDictionary : Service {
    host::Identifier classId{}, interfaceId{};
    std::map<std::string, std::string> texts;
    std::map<std::string, int32_t> integers;
};

/// A host for the plug-in, in memory: symbols, values, lists, colours, images, messages, a counting
/// allocator, a registry, and the services whose presence the plug-in checks. It counts what
/// it hands out and reports what was not released.
class EmbeddedHost {
public:
    explicit EmbeddedHost(uint64_t memoryLimitBytes);
    EmbeddedHost(const EmbeddedHost&) = delete;
    EmbeddedHost& operator=(const EmbeddedHost&) = delete;

    SymbolTable symbols;
    Heap heap;
    /// Receives the message output.
    std::function<void(std::string_view)> onMessage;

    /// Returned by `appInfo`.
    std::string applicationName = "Director";
    std::string applicationVersion = "10.1";

    host::HostInterface* provider() { return &provider_.face; }
    host::HostInterface* allocator() { return &allocator_.face; }
    host::HostInterface* registryCache() { return &cache_.face; }
    /// The service with that identifier and an added reference, or null.
    host::HostInterface* service(const host::Identifier& id);

    RegistryDictionary& addDictionary(const host::Identifier& classId, const host::Identifier& interfaceId);
    /// What was registered, or null.
    const RegistryDictionary* dictionary(const host::Identifier& classId,
                                         const host::Identifier& interfaceId) const;

    /// Rethrows the exception of an operation that builds results, once.
    void rethrowFailure();

    /// A zeroed block, counted until it is freed, or null.
    void* allocate(uint32_t bytes);
    void free(void* block);

    // Objects not yet released.
    int64_t blocks() const { return blocks_; }
    int64_t locks() const { return locks_; }
    int64_t references() const;
    void countLock(int change) { locks_ += change; }

    // The objects that `playerSource` and `player` provide during one call.
    Service player, playerSub;

private:
    friend void keepFailure(EmbeddedHost& host) noexcept;

    struct Offer {
        host::Identifier id;
        Service service;
    };

    void found(Service& service);
    Service& offer(const host::Identifier& id);

    Service provider_, allocator_, cache_;
    std::deque<Offer> offers_;
    std::deque<RegistryDictionary> dictionaries_;
    int64_t blocks_ = 0;
    int64_t locks_ = 0;
    std::exception_ptr failure_;
};

}  // namespace krl::player
