#include "host/InterfaceObject.h"

#include <new>

namespace krl::host {

namespace {

uint32_t liveObjectCount = 0;

HostInterface* asInterface(InstanceHead* head) { return reinterpret_cast<HostInterface*>(head); }

/// Asks the host for memory, giving the process's out-of-memory handler its chances.
void* allocate(HostInterface* allocator, uint32_t bytes) {
    for (;;) {
        if (void* block = allocator::Allocate::call(allocator, bytes)) return block;
        const std::new_handler handler = std::get_new_handler();
        if (!handler) return nullptr;
        try {
            handler();
        } catch (...) {
            return nullptr;
        }
    }
}

}  // namespace

HostStatus createInterfaceObject(InstanceHead* owner, void* const* operations, void** out) {
    void* block = allocate(owner->allocator, sizeof(InterfaceObject));
    if (!block) {
        *out = nullptr;
        return kHostOutOfMemory;
    }
    auto* object = new (block) InterfaceObject;
    object->owner = owner;
    object->references = 1;
    // One reference for the interface object's life, one for the pointer handed out.
    unknown::AddRef::call(asInterface(owner));
    unknown::AddRef::call(asInterface(owner));
    ++liveObjectCount;
    object->operations = operations;
    *out = object;
    return kHostOk;
}

uint32_t liveObjects() { return liveObjectCount; }

HostStatus KRL_HOST_CALL queryInterface(HostInterface* self, const Identifier* interfaceId, void** out) {
    return unknown::QueryInterface::call(asInterface(objectOf(self).owner), interfaceId, out);
}

uint32_t KRL_HOST_CALL addReference(HostInterface* self) {
    unknown::AddRef::call(asInterface(objectOf(self).owner));
    return ++objectOf(self).references;
}

uint32_t KRL_HOST_CALL releaseReference(HostInterface* self) {
    InterfaceObject& object = objectOf(self);
    InstanceHead* owner = object.owner;
    const uint32_t left = --object.references;
    if (left == 0) {
        allocator::Free::call(owner->allocator, &object);
        --liveObjectCount;
        unknown::Release::call(asInterface(owner));
    }
    unknown::Release::call(asInterface(owner));
    return left;
}

}  // namespace krl::host
