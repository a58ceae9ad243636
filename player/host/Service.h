#pragma once

#include <array>

#include "host/HostInterfaces.h"

namespace krl::player {

class EmbeddedHost;

/// One interface of the embedded host: its table of operations, the host, and a reference count.
struct Service {
    host::HostInterface face{};
    EmbeddedHost* host = nullptr;
    int64_t references = 0;
    std::array<void*, host::slots::kTableSize> operations{};

    /// Puts `function` into the slot of `Op`: `service.set<values::InternSymbol>(internSymbol)`.
    template <class Op>
    Service& set(typename Op::Function function) {
        static_assert(Op::slot >= 0 && Op::slot < host::slots::kTableSize);
        operations[Op::slot] = reinterpret_cast<void*>(function);
        return *this;
    }

    static Service& of(host::HostInterface* self) { return *reinterpret_cast<Service*>(self); }
};

/// The host that an interface belongs to.
inline EmbeddedHost& hostOf(host::HostInterface* self) { return *Service::of(self).host; }

/// Exceptions do not cross the plug-in interface: they become the out-of-memory status.
template <class Work>
host::HostStatus guarded(Work&& work) {
    try {
        return work();
    } catch (...) {
        return host::kHostOutOfMemory;
    }
}

/// Stores the current exception for the plug-in call in progress.
void keepFailure(EmbeddedHost& host) noexcept;

/// For operations that build results. The plug-in may return a result that lacks the failed part, so the
/// whole call fails.
template <class Work>
host::HostStatus guardedAnswer(host::HostInterface* self, Work&& work) {
    try {
        return work();
    } catch (...) {
        keepFailure(hostOf(self));
        return host::kHostOutOfMemory;
    }
}

// The services' operations, each family in its own file.
void fillValueOperations(Service& values, Service& colours);
void fillListOperations(Service& lists);
void fillImageOperations(Service& images);
void fillRegistryOperations(Service& application, Service& cache);

}  // namespace krl::player
