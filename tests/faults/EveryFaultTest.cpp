#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <initializer_list>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "core/Faults.h"
#include "faults/Stand.h"
#include "faults/Tally.h"
#include "host/MethodRegistry.h"
#include "memory/CountedMemory.h"

/// Every method of the registry with one thing going wrong at a time, until nothing is left to go wrong.
namespace krl::test {
namespace {

using host::kHostOk;
using host::kHostOutOfMemory;

bool isIn(std::string_view word, std::initializer_list<std::string_view> words) {
    return std::find(words.begin(), words.end(), word) != words.end();
}

bool failed(const Method& method, const Seen& seen) {
    return method.failedText() && seen.message == method.failedText();
}

bool isInputFailure(const Method& method, const Seen& seen) {
    for (const Argument& argument : method.arguments())
        if (const char* text = method.inputFailureText(argument); text && seen.message == text) return true;
    return seen.message.find("(LensFlare)") != HostString::npos;
}

/// A blur whose bands cannot start is left out, by definition without a message, and so is the search for a
/// backing's colour. These methods have such a part.
bool mayLeaveOutAPart(const Method& method) {
    return isIn(method.name(),
                {"krlImageAutoColorDifference", "krlImageAutoColorDifferenceCharger",
                 "krlImageCannyEdgeDetect", "krlImageDayForNight", "krlImageDefocus", "krlImageDiffuse",
                 "krlImageFastGaussianBlur", "krlImageGleamBlurComposite", "krlImageGlowingEdges",
                 "krlImageLensFlare", "krlImageLightSpillComposite", "krlImageOneChannelFeather",
                 "krlImageOuterGlow", "krlImageSharpen", "krlImageThresholdPro", "krlImageYUVBlur"});
}

/// The failed message, or success where a part may be missing.
void expectFailedOrPartLeftOut(const Method& method, const Seen& seen) {
    EXPECT_TRUE(failed(method, seen) || (seen.message.empty() && mayLeaveOutAPart(method))) << seen;
}

/// Failures of the running test, so that a sweep ends with its first.
int failuresSoFar() {
    return testing::UnitTest::GetInstance()->current_test_info()->result()->total_part_count();
}

/// What holds however a call ends: nothing is lost, nothing is written beyond a picture, and the next call
/// does what it always did.
void expectSound(Stand& stand, const Seen& seen, const Seen& faultless) {
    const Method& method = stand.method();
    EXPECT_EQ(seen.valuesKept, 0);
    EXPECT_EQ(seen.interfacesKept, 0);
    EXPECT_TRUE(method.managesTheEngine() || seen.blocksKept == 0) << seen.blocksKept;
    EXPECT_TRUE(stand.host.complaints.empty()) << stand.host.complaints.front().c_str();
    EXPECT_TRUE(stand.host.picturesAreIntact());
    EXPECT_EQ(stand.instance().player, nullptr);
    EXPECT_EQ(stand.instance().playerSub, nullptr);
    EXPECT_EQ(stand.loadedLocks(), stand.engineHoldsPicture() ? 1 : 0);
    const bool mayLeaveLock = method.leavesLocksOnFailure() && !seen.message.empty();
    EXPECT_LE(stand.otherLocks(), mayLeaveLock ? 1 : 0);
    const bool paintsAsItReads = std::strcmp(method.name(), "krlImageLensFlare") == 0;
    const bool foundBeforeItRan = !seen.message.empty() && !failed(method, seen) && !paintsAsItReads;
    EXPECT_TRUE(seen.untouched || !foundBeforeItRan) << seen.message.c_str();
    stand.host.complaints.clear();
    stand.prepare();
    EXPECT_EQ(stand.call(), faultless) << "the engine is no longer what it was";
}

/// Calls the method with fault 1, 2, 3, ... until one does not strike.
/// `arm` makes fault k ready; `disarm` ends it and returns whether it struck; `expectStated` is given what
/// was seen, and whether that is what is seen without a fault.
void sweep(Stand& stand, Tally& tally, const std::function<void(int64_t)>& arm,
           const std::function<bool()>& disarm,
           const std::function<void(const Seen&, bool unnoticed)>& expectStated) {
    stand.prepare();
    const Seen faultless = stand.call();
    EXPECT_EQ(faultless.message, "");
    const int failuresBefore = failuresSoFar();
    for (int64_t number = 1;; ++number) {
        SCOPED_TRACE(testing::Message() << stand.method().name() << ", fault " << number);
        stand.prepare();
        arm(number);
        const Seen seen = stand.call();
        if (!disarm()) break;
        tally.count(seen, faultless);
        expectStated(seen, seen == faultless);
        expectSound(stand, seen, faultless);
        if (failuresSoFar() != failuresBefore) break;
    }
}

void sweepAllocations(Stand& stand, Tally& tally, AllocationFault::Extent extent) {
    const Method& method = stand.method();
    std::optional<AllocationFault> fault;
    sweep(
        stand, tally, [&](int64_t number) { fault.emplace(number, extent); }, [&] { return fault->end(); },
        [&](const Seen& seen, bool unnoticed) {
            if (unnoticed) return;
            expectFailedOrPartLeftOut(method, seen);
            EXPECT_TRUE(seen.status == kHostOk || seen.status == kHostOutOfMemory) << seen.status;
        });
}

TEST(EveryMethod, OutlivesOneAllocationThatFails) {
    static Tally tally("one allocation fails");
    for (const Method* method : host::methods()) {
        Stand stand(*method, 3);
        sweepAllocations(stand, tally, AllocationFault::Extent::One);
    }
}

TEST(EveryMethod, OutlivesTheEndOfAllMemory) {
    static Tally tally("all further allocations fail");
    for (const Method* method : host::methods()) {
        Stand stand(*method, 3);
        sweepAllocations(stand, tally, AllocationFault::Extent::AllThatFollow);
    }
}

/// Sweeps over one of the supplies of `Faults`.
void sweepSupply(Tally& tally, int32_t Faults::*supply, bool lasting = false) {
    for (const Method* method : host::methods()) {
        Stand stand(*method, 3);
        sweep(
            stand, tally,
            [&](int64_t number) {
                faults().*supply = static_cast<int32_t>(number - 1);
                faults().lasting = lasting;
            },
            [&] {
                const bool struck = faults().*supply < 0;
                faults() = Faults{};
                return struck;
            },
            [&](const Seen& seen, bool unnoticed) {
                if (!unnoticed) expectFailedOrPartLeftOut(*method, seen);
            });
    }
}

TEST(EveryMethod, OutlivesAThreadThatCannotStart) {
    static Tally tally("a thread cannot start");
    sweepSupply(tally, &Faults::threads);
}

TEST(EveryMethod, OutlivesTheEndOfAllThreads) {
    static Tally tally("no further thread can start");
    sweepSupply(tally, &Faults::threads, true);
}

TEST(EveryMethod, OutlivesATaskThatCannotBeMade) {
    static Tally tally("a task cannot be made");
    sweepSupply(tally, &Faults::tasks);
}

TEST(EveryMethod, OutlivesTheEndOfAllTasks) {
    static Tally tally("no further task can be made");
    sweepSupply(tally, &Faults::tasks, true);
}

TEST(EveryMethod, OutlivesABlockOfScratchThatCannotBeMade) {
    static Tally tally("a block of scratch cannot be made");
    sweepSupply(tally, &Faults::scratchBlocks);
}

/// What a call makes of a host's refusal of `operation`.
void expectStated(const Stand& stand, const Seen& seen, const Seen& faultless, std::string_view operation) {
    const Method& method = stand.method();
    const bool paints = std::strcmp(method.name(), "krlImageRGBGradient") == 0;
    if (isIn(operation, {"getPlayer", "getSub"})) {
        EXPECT_EQ(seen.status, FaultHost::kRefused);
        EXPECT_EQ(seen.result, "VOID");
        EXPECT_TRUE(seen.untouched);
    } else if (operation.starts_with("valueTo") || operation.starts_with("get") ||
               operation == "countElements") {
        // A shape's missing points count as (0, 0), and a mode that cannot be read as one band.
        if (seen.message.empty()) {
            EXPECT_TRUE(seen.status == kHostOk || seen.result == faultless.result) << seen.result.c_str();
        } else {
            EXPECT_TRUE(isInputFailure(method, seen) || failed(method, seen)) << seen.message.c_str();
            EXPECT_TRUE(seen.status != kHostOk || failed(method, seen));
        }
    } else if (operation == "createImage") {
        EXPECT_EQ(seen.message, paints ? "Failed to create new image (Image)" : method.failedText());
        EXPECT_EQ(seen.status, kHostOk);
    } else if (operation == "lockImage") {
        EXPECT_EQ(seen.message, paints ? "Failed to lock new image pixels (Image)" : method.failedText());
        EXPECT_EQ(seen.status, kHostOk);
    } else if (operation == "unlockImage") {
        EXPECT_EQ(seen.message, paints ? "Failed to unlock new image pixels (Image)" : "");
        EXPECT_EQ(seen.status, kHostOk);
    } else if (operation == "queryImage") {
        EXPECT_NE(seen.message, "");
        EXPECT_EQ(seen.status, kHostOk);
    }
}

void sweepOperations(Tally& tally, bool garbage) {
    for (const Method* method : host::methods()) {
        Stand stand(*method, 1);
        stand.prepare();
        const Seen faultless = stand.call();
        const char* operation = nullptr;
        sweep(
            stand, tally, [&](int64_t number) { stand.host.failOperation(number, garbage); },
            [&] { return (operation = stand.host.endFailing()) != nullptr; },
            [&](const Seen& seen, bool unnoticed) {
                SCOPED_TRACE(operation);
                // What a host writes beside a refusal does not describe a picture.
                const bool described = operation == std::string_view("queryImage") && !method->isInert();
                if (!unnoticed || described) expectStated(stand, seen, faultless, operation);
            });
    }
}

TEST(EveryMethod, OutlivesAnOperationThatTheHostRefuses) {
    static Tally tally("the host refuses an operation");
    sweepOperations(tally, false);
}

TEST(EveryMethod, OutlivesARefusalThatWritesGarbage) {
    static Tally tally("the host refuses and writes garbage");
    sweepOperations(tally, true);
}

/// Something about a host that is otherwise than usual for the length of a call.
struct Oddity {
    const char* name;
    std::function<void(FaultHost&)> begin, end;
};

void tryEach(Tally& tally, std::span<const Oddity> oddities) {
    for (const Method* method : host::methods()) {
        Stand stand(*method, 1);
        stand.prepare();
        const Seen faultless = stand.call();
        for (const Oddity& oddity : oddities) {
            SCOPED_TRACE(testing::Message() << method->name() << ", " << oddity.name);
            stand.prepare();
            oddity.begin(stand.host);
            const Seen seen = stand.call();
            oddity.end(stand.host);
            tally.count(seen, faultless);
            expectSound(stand, seen, faultless);
        }
    }
}

/// One for each operation that a host may lack; without these two nothing could be given back.
std::vector<Oddity> lackingOperations() {
    FaultHost pattern;
    pattern.valueService.operations[host::values::ReleaseValue::slot] = nullptr;
    pattern.images.operations[host::images::UnlockImage::slot] = nullptr;
    std::vector<Oddity> all;
    for (size_t i = 0; i < pattern.services().size(); ++i)
        for (size_t slot = 3; slot < host::slots::kTableSize; ++slot) {
            const FaultHost::Service& service = *pattern.services()[i];
            if (!service.operations[slot]) continue;
            void* own = service.operations[slot];
            all.push_back({service.name,
                           [=](FaultHost& host) { host.services()[i]->operations[slot] = nullptr; },
                           [=](FaultHost& host) { host.services()[i]->operations[slot] = own; }});
        }
    return all;
}

TEST(EveryMethod, OutlivesAnOperationThatTheHostDoesNotHave) {
    static Tally tally("the host lacks an operation");
    tryEach(tally, lackingOperations());
}

Oddity flag(const char* name, bool FaultHost::*which) {
    return {name, [=](FaultHost& host) { host.*which = true; },
            [=](FaultHost& host) { host.*which = false; }};
}

TEST(EveryMethod, OutlivesNullPointers) {
    static Tally tally("the host gives null");
    const Oddity oddities[] = {flag("null player", &FaultHost::givesNullPlayer),
                               flag("null part of the player", &FaultHost::givesNullSub),
                               flag("null pixels", &FaultHost::locksWithoutPixels)};
    tryEach(tally, oddities);
}

}  // namespace
}  // namespace krl::test
