#include "host/ClassTable.h"

#include "host/Identifiers.h"
#include "host/ScriptInstance.h"

namespace krl::host {

namespace {

HostStatus KRL_HOST_CALL createRegistrationInstance(InstanceHead*) { return kHostOk; }
void KRL_HOST_CALL destroyRegistrationInstance(InstanceHead*) {}

constexpr ClassEntry kClasses[] = {
    {ids::kRegistrationClass, kClassVersion, sizeof(InstanceHead), createRegistrationInstance,
     destroyRegistrationInstance, ids::kIMoaRegister, kClassVersion, createRegistrationInterface},
    {ids::kScriptClass, kClassVersion, sizeof(ScriptInstance), createScriptInstance, destroyScriptInstance,
     ids::kIMoaMmXScript, kClassVersion, createScriptInterface},
};

}  // namespace

HostStatus walkClasses(const Identifier* classId, const EntryCallback& onClass,
                       const EntryCallback& onInterface) {
    for (const ClassEntry& entry : kClasses) {
        if (classId && !(*classId == entry.classId)) continue;
        for (const EntryCallback* callback : {&onClass, &onInterface})
            if (*callback)
                if (HostStatus status = (*callback)(entry)) return status;
    }
    return kHostOk;
}

}  // namespace krl::host
