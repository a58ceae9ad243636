#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "memory/CountedMemory.h"
#include "faults/Stand.h"
#include "faults/Tally.h"
#include "host/Door.h"
#include "host/Identifiers.h"
#include "host/MethodRegistry.h"

/// What a process makes once, on first use, with one allocation failing at a time. It has to come before
/// every other test, whose calls find those things made.
namespace krl::test {
namespace {

using namespace host;

/// A zeroed record of the class as a host makes it.
template <class Record>
Record recordOf(FaultHost& host) {
    Record record{};
    record.operations = host.other.operations.data();
    record.hostWords[0] = &host;
    record.callback = &host.provider.door;
    record.allocator = &host.memory.door;
    return record;
}

HostStatus registerOnce(FaultHost& host) {
    auto record = recordOf<InstanceHead>(host);
    void* made = nullptr;
    HostStatus status = DllGetInterface(&record, &ids::kRegistrationClass, &ids::kIMoaRegister, &made);
    if (status != kHostOk) return status;
    auto* object = static_cast<HostInterface*>(made);
    status = RegisterOperation::call(object, &host.cache.door, nullptr);
    unknown::Release::call(object);
    return status;
}

HostStatus createOnce(FaultHost& host) {
    auto record = recordOf<ScriptInstance>(host);
    const HostStatus status = createScriptInstance(&record);
    destroyScriptInstance(&record);
    return status;
}

/// Makes allocation 1, 2, 3, ... of `work` fail until it has all of them.
bool endsWithStatus(HostStatus (*work)(FaultHost&)) {
    FaultHost host;
    for (int64_t number = 1;; ++number) {
        AllocationFault fault(number, AllocationFault::Extent::One);
        const HostStatus status = work(host);
        const bool struck = fault.end();
        const bool nothingLost = host.references() == 0 && host.blocks() == 0 && host.complaints.empty();
        if (!struck) return number > 1 && status == kHostOk && nothingLost;
        if (status != kHostOutOfMemory || !nothingLost) return false;
    }
}

/// Every method's first call in the process.
void callEachForTheFirstTime() {
    static Tally tally("one allocation fails in a first call");
    for (const Method* method : methods()) {
        SCOPED_TRACE(method->name());
        Stand stand(*method, 1);
        stand.keepsBlocks();
        for (int64_t number = 1;; ++number) {
            stand.prepare();
            AllocationFault fault(number, AllocationFault::Extent::One);
            const Seen seen = stand.call();
            if (!fault.end()) break;
            tally.count(seen, {});
            EXPECT_TRUE(seen.status == kHostOk || seen.status == kHostOutOfMemory);
            if (seen.status != kHostOk || !seen.message.empty()) {
                EXPECT_EQ(seen.message, method->failedText());
            }
        }
    }
}

class FirstUse : public testing::Environment {
public:
    void SetUp() override {
        // In a process of its own, since either has to be the first.
        const pid_t child = fork();
        if (child == 0) _exit(endsWithStatus(registerOnce) ? 0 : 1);
        int ended = -1;
        waitpid(child, &ended, 0);
        EXPECT_EQ(ended, 0) << "registration";
        EXPECT_TRUE(endsWithStatus(createOnce)) << "the making of an instance";
        callEachForTheFirstTime();
    }
};

[[maybe_unused]] const testing::Environment* firstUse = testing::AddGlobalTestEnvironment(new FirstUse);

/// Refuses operation 1, 2, 3, ... of `work` and then none.
void expectSoundWhateverIsRefused(HostStatus (*work)(FaultHost&)) {
    static Tally tally("the host refuses while it brings the plug-in in");
    for (int64_t number = 1;; ++number) {
        FaultHost host;
        host.failOperation(number, false);
        const HostStatus status = work(host);
        if (!host.endFailing()) break;
        tally.count({.status = status}, {.status = kHostOk});
        EXPECT_EQ(host.references(), 0) << number;
        EXPECT_EQ(host.blocks(), 0) << number;
        EXPECT_TRUE(host.complaints.empty()) << number;
    }
}

TEST(BringingIn, OutlivesAnOperationThatTheHostRefuses) {
    expectSoundWhateverIsRefused(registerOnce);
    expectSoundWhateverIsRefused(createOnce);
}

TEST(BringingIn, OutlivesARegistryWithoutEntries) {
    FaultHost host;
    host.givesNullDictionary = true;
    EXPECT_EQ(registerOnce(host), kHostNoInterface);
    EXPECT_EQ(host.blocks(), 0);
}

}  // namespace
}  // namespace krl::test
