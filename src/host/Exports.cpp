#include <new>

#include "host/ClassTable.h"
#include "host/Door.h"
#include "host/Identifiers.h"
#include "host/InterfaceObject.h"

using namespace krl::host;

namespace {

/// Ends a walk that has found what it looked for; never leaves the library.
constexpr HostStatus kFound = 1;

/// No exception crosses the door.
template <class Work>
HostStatus guarded(Work&& work) {
    try {
        return work();
    } catch (...) {
        return kHostOutOfMemory;
    }
}

constexpr ClassInfoRecord baseRecord(const ClassEntry& entry) {
    return {entry.classId, entry.classVersion, ids::kUnknown, 1};
}

constexpr ClassInfoRecord interfaceRecord(const ClassEntry& entry) {
    return {entry.classId, entry.classVersion, entry.interfaceId, entry.interfaceVersion};
}

}  // namespace

KRL_EXPORT HostStatus KRL_HOST_CALL DllCanUnloadNow() {
    return liveObjects() == 0 ? kHostOk : kHostCannotUnload;
}

KRL_EXPORT HostStatus KRL_HOST_CALL DllGetClassForm(const Identifier* classId, int32_t* instanceBytes,
                                                    CreateInstanceFunction* create,
                                                    DestroyInstanceFunction* destroy) {
    return guarded([&] {
        const HostStatus status = walkClasses(classId,
                                              [&](const ClassEntry& entry) {
                                                  *instanceBytes = entry.instanceBytes;
                                                  *create = entry.create;
                                                  *destroy = entry.destroy;
                                                  return kFound;
                                              },
                                              {});
        return status == kFound ? kHostOk : kHostNoClass;
    });
}

KRL_EXPORT HostStatus KRL_HOST_CALL DllGetClassInfo(HostInterface* allocatorService,
                                                    ClassInfoRecord** records) {
    *records = nullptr;
    return guarded([&]() -> HostStatus {
        uint32_t count = 0;
        const auto counted = [&](const ClassEntry&) {
            ++count;
            return kHostOk;
        };
        walkClasses(nullptr, counted, counted);
        void* block =
            allocator::Allocate::call(allocatorService, (count + 1) * uint32_t(sizeof(ClassInfoRecord)));
        if (!block) return kHostOutOfMemory;
        auto* next = static_cast<ClassInfoRecord*>(block);
        *records = next;
        const auto written = [&next](ClassInfoRecord (*record)(const ClassEntry&)) {
            return [&next, record](const ClassEntry& entry) {
                new (next++) ClassInfoRecord(record(entry));
                return kHostOk;
            };
        };
        walkClasses(nullptr, written(baseRecord), written(interfaceRecord));
        new (next) ClassInfoRecord{ids::kNone, 0, ids::kNone, 0};
        return kHostOk;
    });
}

KRL_EXPORT HostStatus KRL_HOST_CALL DllGetClassObject(const Identifier*, const Identifier*, void**) {
    return kHostNoClass;
}

KRL_EXPORT HostStatus KRL_HOST_CALL DllGetInterface(InstanceHead* instance, const Identifier* classId,
                                                    const Identifier* interfaceId, void** object) {
    return guarded([&] {
        const ClassEntry* found = nullptr;
        walkClasses(classId, {}, [&](const ClassEntry& entry) {
            if (!(entry.interfaceId == *interfaceId)) return kHostOk;
            found = &entry;
            return kFound;
        });
        return found ? found->createInterface(instance, object) : kHostNoInterface;
    });
}
