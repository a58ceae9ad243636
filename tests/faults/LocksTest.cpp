#include <gtest/gtest.h>

#include <algorithm>

#include "memory/CountedMemory.h"
#include "faults/Stand.h"
#include "faults/Tally.h"
#include "host/MethodRegistry.h"

/// Locks and pictures: what a method locks, what it gives back, and what it accepts as a picture.
namespace krl::test {
namespace {

using host::kHostOk;
using host::kHostOutOfMemory;
using host::ScriptValue;

bool takesSecondPicture(const Method& method) {
    return std::ranges::any_of(method.arguments(), [](const Argument& argument) {
        return argument.kind == ArgumentKind::SecondImage;
    });
}

std::ptrdiff_t timesIn(const FaultHost& host, const char* operation) {
    return std::ranges::count(host.trace, HostString(operation));
}

/// Puts `picture` in the place of every second picture; the first of those that were there.
void replaceSeconds(Stand& stand, const ScriptValue& picture) {
    for (size_t i = 0; i < stand.method().arguments().size(); ++i) {
        if (stand.method().arguments()[i].kind != ArgumentKind::SecondImage) continue;
        stand.host.release(stand.argument(i));
        stand.host.retain(picture);
        stand.argument(i) = picture;
    }
}

TEST(RefusedLocks, OfTheLoadedPictureLeaveItLockedOnce) {
    static Tally tally("the host locks a picture only once");
    for (const Method* method : host::methods()) {
        if (!takesSecondPicture(*method)) continue;
        SCOPED_TRACE(method->name());
        Stand stand(*method, 1);
        stand.prepare();
        replaceSeconds(stand, stand.loaded());
        stand.host.refusesSecondLocks = true;
        const Seen seen = stand.call();
        tally.count(seen, {});
        EXPECT_EQ(seen.message, method->failedText());
        EXPECT_EQ(seen.status, kHostOk);
        EXPECT_TRUE(seen.untouched);
        EXPECT_EQ(stand.loadedLocks(), 1);
        EXPECT_TRUE(stand.host.complaints.empty());
        EXPECT_EQ(stand.call("krlImageSepia").message, "");
    }
}

TEST(NoEngine, LeavesSecondPicturesUnlocked) {
    for (const Method* method : host::methods()) {
        if (!takesSecondPicture(*method) || method->runsWithoutEngine()) continue;
        SCOPED_TRACE(method->name());
        Stand stand(*method, 1);
        const Seen seen = stand.call();
        EXPECT_EQ(seen.message, method->failedText());
        EXPECT_EQ(seen.status, kHostOk);
        EXPECT_EQ(stand.host.locks(), 0);
        EXPECT_EQ(timesIn(stand.host, "lockImage"), 0);
    }
}

TEST(Load, GivesItsLockBackWhenMemoryRunsOut) {
    const Method& method = *host::findMethod("krlImageLoad");
    Stand stand(method, 1);
    stand.prepare();
    AllocationFault fault(1, AllocationFault::Extent::One);
    const Seen seen = stand.call();
    ASSERT_TRUE(fault.end());
    EXPECT_EQ(seen.message, "Failed Load function (Image)");
    EXPECT_EQ(seen.status, kHostOutOfMemory);
    EXPECT_EQ(timesIn(stand.host, "lockImage"), 1);
    EXPECT_EQ(stand.host.locks(), 0);
}

/// Pictures that are none to effects, by what is odd about them.
constexpr PictureForm kOtherForms[] = {{.bitsPerPixel = 8},
                                       {.bitsPerPixel = 16},
                                       {.bitsPerPixel = 24},
                                       {.bitsPerPixel = 32, .padding = 0, .bottomUp = true},
                                       {.bitsPerPixel = 24, .padding = 4, .bottomUp = true}};

TEST(OtherPictures, AreNotLoaded) {
    static Tally tally("8, 16, 24 bits, bottom up: loaded");
    for (const PictureForm& form : kOtherForms)
        for (const Method* method : host::methods()) {
            if (method->managesTheEngine() || !method->failedText()) continue;
            SCOPED_TRACE(testing::Message() << method->name() << ", " << form.bitsPerPixel);
            Stand stand(*method, 3);
            const ScriptValue mode = stand.host.make(Symbol{"st"});
            stand.call("krlImageCreateLookupTables", mode);
            stand.host.release(mode);
            const ScriptValue other = stand.host.picture(Stand::kWidth, Stand::kHeight, form);
            const Seen loading = stand.call("krlImageLoad", other);
            EXPECT_EQ(loading.message, "Failed Load function (Image)");
            EXPECT_EQ(loading.status, kHostOk);
            EXPECT_EQ(stand.host.locks(), 0);
            const Seen seen = stand.call();
            tally.count(seen, {});
            EXPECT_TRUE(stand.host.pictureOf(other)->isUntouched());
            EXPECT_TRUE(stand.host.picturesAreIntact());
            EXPECT_TRUE(stand.host.complaints.empty());
            stand.host.release(other);
        }
}

TEST(OtherPictures, LeaveTheLoadedOneLoaded) {
    const Method& method = *host::findMethod("krlImageSepia");
    Stand stand(method, 1);
    stand.prepare();
    const ScriptValue other = stand.host.picture(Stand::kWidth, Stand::kHeight, {.bitsPerPixel = 16});
    EXPECT_EQ(stand.call("krlImageLoad", other).message, "Failed Load function (Image)");
    EXPECT_EQ(stand.call().message, "");
    EXPECT_EQ(stand.call("krlImageQuit").message, "");
    EXPECT_EQ(stand.host.locks(), 0) << "the lock of the picture that was loaded";
    EXPECT_TRUE(stand.host.complaints.empty());
    stand.host.release(other);
}

TEST(OtherPictures, AreNoSecondPictures) {
    static Tally tally("8, 16, 24 bits, bottom up: second");
    for (const PictureForm& form : kOtherForms)
        for (const Method* method : host::methods()) {
            if (!takesSecondPicture(*method)) continue;
            SCOPED_TRACE(testing::Message() << method->name() << ", " << form.bitsPerPixel);
            Stand stand(*method, 3);
            stand.prepare();
            const ScriptValue other = stand.host.picture(Stand::kWidth, Stand::kHeight, form);
            replaceSeconds(stand, other);
            const Seen seen = stand.call();
            tally.count(seen, {});
            EXPECT_EQ(seen.message, method->isInert() ? "" : method->failedText());
            EXPECT_EQ(seen.status, kHostOk);
            EXPECT_TRUE(seen.untouched);
            EXPECT_TRUE(stand.host.pictureOf(other)->isUntouched());
            EXPECT_EQ(stand.host.locks(), 1);
            EXPECT_TRUE(stand.host.complaints.empty());
            stand.host.release(other);
        }
}

TEST(OtherPictures, AreNoPartsOfABroadcast) {
    const Method& method = *host::findMethod("krlImageBroadcastCombine");
    for (const PictureForm& form : kOtherForms) {
        Stand stand(method, 1);
        stand.prepare();
        const ScriptValue list = stand.host.make(ListValue());
        for (int i = 0; i < 4; ++i) {
            const ScriptValue other = stand.host.picture(4, 3, form);
            host::lists::AppendToList::call(&stand.host.lists.door, &list, &other);
            stand.host.release(other);
        }
        const Seen seen = stand.call("krlImageBroadcastCombine", list);
        EXPECT_EQ(seen.message, method.failedText());
        EXPECT_EQ(stand.host.locks(), 1);
        stand.host.release(list);
    }
}

TEST(PaddedPictures, AreLoaded) {
    Stand stand(*host::findMethod("krlImageDestroyLookupTables"), 1);
    stand.prepare();
    const ScriptValue padded = stand.host.picture(5, 4, {.bitsPerPixel = 32, .padding = 12});
    EXPECT_EQ(stand.call("krlImageLoad", padded).message, "");
    EXPECT_EQ(stand.call("krlImageInvert").message, "Invert input failure (Image)");
    EXPECT_EQ(stand.call("krlImageSepia").message, "");
    EXPECT_FALSE(stand.host.pictureOf(padded)->isUntouched());
    stand.call("krlImageQuit");
    stand.host.release(padded);
}

}  // namespace
}  // namespace krl::test
