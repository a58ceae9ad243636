#pragma once

#include <functional>

#include "host/Door.h"

namespace krl::host {

using CreateInterfaceFunction = HostStatus (*)(InstanceHead* owner, void** out);

/// A class and its single interface.
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

/// Calls `onClass`, then `onInterface`, for each class that matches `classId` (null for all), in table
/// order. Either may be empty. Stops at the first status that is not 0 and returns it; otherwise returns 0.
HostStatus walkClasses(const Identifier* classId, const EntryCallback& onClass,
                       const EntryCallback& onInterface);

}  // namespace krl::host
