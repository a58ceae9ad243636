#include <gtest/gtest.h>

#include <algorithm>

#include "catalogue/Catalogue.h"
#include "catalogue/DirectCall.h"
#include "catalogue/Notation.h"

namespace krl {
namespace {

class DirectCalls : public testing::Test {
protected:
    DirectCalls() : picture_(Picture::blank(4, 3)) {
        engine_.allocateTables();
        engine_.buildTables();
        engine_.load(picture_.pixels, picture_.info);
    }

    CallResult call(const char* name, const char* arguments) {
        const Value list = readNotation(arguments);
        return callMethod(*catalogue().find(name), engine_, *list.as<ListValue>());
    }

    ImageEngine engine_;
    Picture picture_;
};

TEST_F(DirectCalls, RewriteTheLoadedPicture) {
    EXPECT_EQ(call("brightness", "[40, #RGB]").error, "");
    EXPECT_EQ(picture_.pixels[0], 40);
    EXPECT_EQ(picture_.pixels[3], 0);
}

TEST_F(DirectCalls, FailInTheWordsOfScripts) {
    EXPECT_EQ(call("brightness", "[#a, #RGB]").error, "Brightness input failure (Image)");
    EXPECT_EQ(call("brightness", "[40]").error, "Brightness input failure (Image)");
    EXPECT_EQ(call("brightness", "[40, #Grey]").error, "Brightness invalid colourOrAlpha input (Image)");
    engine_.unload();
    EXPECT_EQ(call("brightness", "[40, #RGB]").error, "Failed Brightness function (Image)");
}

TEST_F(DirectCalls, TakeAnIntegerWhereAFloatIsExpectedButNotTheOtherWayRound) {
    EXPECT_TRUE(call("contrast", "[1, #RGB]").ok());
    EXPECT_FALSE(call("brightness", "[40.0, #RGB]").ok());
}

TEST_F(DirectCalls, GiveTheEntriesOfTheResult) {
    const CallResult result = call("RGBtoHSV", "[rgb(255, 0, 0)]");
    ASSERT_EQ(result.entries.size(), 3u);
    EXPECT_EQ(result.entries[0].first, "hue");
    EXPECT_EQ(writeNotation(result.entries[2].second), "1.0");
}

TEST_F(DirectCalls, GiveNewPicturesThatOutliveTheCall) {
    const CallResult half = call("halfSize", "[]");
    ASSERT_EQ(half.entries.size(), 1u);
    EXPECT_EQ(half.entries[0].second.as<Picture>()->info.width, 2);
    const Picture large = Picture::blank(8, 8);
    engine_.load(large.pixels, large.info);
    const CallResult parts = call("broadcastSplit", "[4]");
    ASSERT_EQ(parts.pictures.size(), 4u);
    EXPECT_EQ(parts.pictures[3].as<Picture>()->info.height, 4);
}

TEST_F(DirectCalls, DoNotManageTheEngine) {
    EXPECT_FALSE(call("quit", "[]").ok());
    EXPECT_TRUE(call("brightness", "[40, #RGB]").ok());
}

TEST_F(DirectCalls, ChooseBandsSoThatNoResultDependsOnTheMachine) {
    const Picture large = Picture::blank(1024, 1024);
    engine_.load(large.pixels, large.info);
    for (const Method* method : catalogue().methods()) {
        engine_.configureExecution(false);
        const int32_t processors = std::min(engine_.getThreadCount(), 16);
        chooseBands(engine_, *method, 0);
        EXPECT_EQ(engine_.getThreadCount(), method->resultDependsOnBands() ? 1 : processors)
            << method->name();
        chooseBands(engine_, *method, 7);
        EXPECT_EQ(engine_.getThreadCount(), 7) << method->name();
    }
}

TEST_F(DirectCalls, OnSmallPicturesStartNoThreadsThatWouldTakeLonger) {
    const Method& method = *catalogue().find("invert");
    const auto bandsFor = [&](const Picture& picture) {
        engine_.load(picture.pixels, picture.info);
        chooseBands(engine_, method, 0);
        return engine_.getThreadCount();
    };
    engine_.configureExecution(false);
    const int32_t processors = engine_.getThreadCount();
    EXPECT_EQ(bandsFor(Picture::blank(256, 256)), 1);
    EXPECT_EQ(bandsFor(Picture::blank(511, 256)), 1);
    EXPECT_EQ(bandsFor(Picture::blank(512, 256)), std::min(processors, 2));
    EXPECT_EQ(bandsFor(Picture::blank(1, 1)), 1);
}

}  // namespace
}  // namespace krl
