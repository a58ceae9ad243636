#pragma once

#include <functional>

#include "host/Door.h"

namespace krl::host {

using CreateInterfaceFunction = HostStatus (*)(InstanceHead* owner, void** out);

/// What the host knows of a class and its one interface.
struct ClassEntry {
    Identifier classId;
    uint32_t classVersion;
    int32_t instanceBytes;
    CreateInstanceFunction create;
    DestroyInstanceFunction destroy;
    Identifier interfaceId;
    uint32_t interfaceVersion;
    CreateInterfaceFunction createInterface;
};

using EntryCallback = std::function<HostStatus(const ClassEntry&)>;

/// Walks the classes in table order: for each that matches `classId` (null for all) first
/// `onClass`, then `onInterface`, either of which may be empty. The first status that is not 0 stops
/// the walk and is its result; 0 when it ran through.
HostStatus walkClasses(const Identifier* classId, const EntryCallback& onClass,
                       const EntryCallback& onInterface);

}  // namespace krl::host
