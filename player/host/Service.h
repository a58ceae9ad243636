#pragma once

#include <array>

#include "host/HostInterfaces.h"

namespace krl::player {

class EmbeddedHost;

/// One interface of the embedded host: a table of operations as the door wants it, the host it
/// belongs to, and how many references are out.
struct Service {
    host::HostInterface face{};
    EmbeddedHost* host = nullptr;
    int64_t references = 0;
    std::array<void*, host::slots::kTableSize> operations{};

    /// Puts `function` in the place that `Op` has: `service.set<values::InternSymbol>(internSymbol)`.
    template <class Op>
    Service& set(typename Op::Function function) {
        static_assert(Op::slot >= 0 && Op::slot < host::slots::kTableSize);
        operations[Op::slot] = reinterpret_cast<void*>(function);
        return *this;
    }

    static Service& of(host::HostInterface* self) { return *reinterpret_cast<Service*>(self); }
};

/// The host behind an interface that the plug-in calls.
inline EmbeddedHost& hostOf(host::HostInterface* self) { return *Service::of(self).host; }

/// No exception crosses the door: it becomes the status for exhausted memory.
template <class Work>
host::HostStatus guarded(Work&& work) {
    try {
        return work();
    } catch (...) {
        return host::kHostOutOfMemory;
    }
}

/// Keeps the exception at hand for the call that the plug-in is in.
void keepFailure(EmbeddedHost& host) noexcept;

/// For what an answer is made of. The plug-in may answer without what it did not get, so the call as a
/// whole fails.
template <class Work>
host::HostStatus guardedAnswer(host::HostInterface* self, Work&& work) {
    try {
        return work();
    } catch (...) {
        keepFailure(hostOf(self));
        return host::kHostOutOfMemory;
    }
}

// The services' operations, each family in a file of its own.
void fillValueOperations(Service& values, Service& colours);
void fillListOperations(Service& lists);
void fillImageOperations(Service& images);
void fillRegistryOperations(Service& application, Service& cache);

}  // namespace krl::player
