#pragma once

#include "host/Door.h"

namespace krl::host {

/// Creates an interface object of `owner` with the given operations and a count of 1, in the host's memory;
/// null and `0x80040002` if memory runs out.
HostStatus createInterfaceObject(InstanceHead* owner, void* const* operations, void** out);

/// The number of live interface objects in this process.
uint32_t liveObjects();

// The first three operations of every interface of this library.
HostStatus KRL_HOST_CALL queryInterface(HostInterface* self, const Identifier* interfaceId, void** out);
uint32_t KRL_HOST_CALL addReference(HostInterface* self);
uint32_t KRL_HOST_CALL releaseReference(HostInterface* self);

inline InterfaceObject& objectOf(HostInterface* self) { return *reinterpret_cast<InterfaceObject*>(self); }

}  // namespace krl::host
