#include <gtest/gtest.h>

#include "core/Faults.h"
#include "methods/Stage.h"

/// The methods that manage the engine, and what happens if they are called out of order.
namespace krl::host {
namespace {

using krl::test::Answer;
using krl::test::Stage;
using player::Value;

constexpr const char* kNotInitialised = "Image xtra not initialised (Image)";

Value onePixel(Stage& stage) { return stage.image(1, 1, 1); }

TEST(CreateLookupTables, TreatsAModeThatIsNotASymbolAsOneBandAndReportsItOnlyToTheHost) {
    Stage stage(false);
    const Answer answer = stage.call("krlImageCreateLookupTables", {stage.integer(1)});
    EXPECT_EQ(answer.error, "");
    EXPECT_TRUE(answer.reported);
    EXPECT_NE(answer.status, kHostOk);
    EXPECT_EQ(stage.call("krlImageLoad", {onePixel(stage)}).error, "");
}

TEST(CreateLookupTables, RejectsAnUnknownModeAndCreatesNoEngine) {
    Stage stage(false);
    const Answer answer = stage.call("krlImageCreateLookupTables", {stage.symbol("other")});
    EXPECT_EQ(answer.error, "Create Lookup Tables invalid MT input (Image)");
    EXPECT_EQ(answer.status, kHostOk);
    EXPECT_EQ(stage.call("krlImageLoad", {onePixel(stage)}).error, kNotInitialised);
}

TEST(CreateLookupTables, KeepsTheExistingEngineWhenItFails) {
    Stage stage;
    stage.call("krlImageCreateLookupTables", {stage.symbol("other")});
    EXPECT_EQ(stage.call("krlImageLoad", {onePixel(stage)}).error, "");
}

TEST(CreateLookupTables, ReplacesTheEngineWhenItIsCalledAgain) {
    Stage stage;
    stage.load(2, 2);
    stage.call("krlImageCreateLookupTables", {stage.symbol("mt")});
    EXPECT_EQ(stage.call("krlImageInvert", {stage.symbol("RGB")}).error, "Failed Invert function (Image)")
        << "the new engine has no picture";
    EXPECT_EQ(stage.locks(), 1);
}

TEST(DestroyLookupTables, SucceedsWithAndWithoutAnEngine) {
    Stage stage;
    EXPECT_EQ(stage.call("krlImageDestroyLookupTables").error, "");
    EXPECT_EQ(stage.call("krlImageDestroyLookupTables").error, "");
    EXPECT_EQ(stage.call("krlImageQuit").error, kNotInitialised);
}

TEST(DestroyLookupTables, LeavesALoadedPictureLocked) {
    Stage stage;
    stage.call("krlImageLoad", {onePixel(stage)});
    stage.call("krlImageDestroyLookupTables");
    EXPECT_EQ(stage.locks(), 1);
}

TEST(Load, NeedsAnEngineAndLocksNothingWithoutOne) {
    Stage stage(false);
    EXPECT_EQ(stage.call("krlImageLoad", {onePixel(stage)}).error, kNotInitialised);
    EXPECT_EQ(stage.locks(), 0);
}

TEST(Load, TreatsNonImagesAsAnImageWithoutRows) {
    Stage stage;
    for (const Value& value : {stage.integer(5), stage.string("x"), Value()})
        EXPECT_EQ(stage.call("krlImageLoad", {value}).error, "Invalid image height (Image)");
    EXPECT_EQ(stage.locks(), 0);
}

TEST(Load, LeavesTheFirstPictureLockedWhenASecondIsLoaded) {
    Stage stage;
    const Value first = onePixel(stage), second = onePixel(stage);
    stage.call("krlImageLoad", {first});
    stage.call("krlImageLoad", {second});
    EXPECT_EQ(stage.locks(), 2);
    stage.call("krlImageQuit");
    EXPECT_EQ(stage.locks(), 1);
}

TEST(Quit, ReleasesThePictureAndKeepsTheEngine) {
    Stage stage;
    const Value picture = onePixel(stage);
    EXPECT_EQ(stage.call("krlImageQuit").error, "") << "with nothing loaded";
    stage.call("krlImageLoad", {picture});
    EXPECT_EQ(stage.locks(), 1);
    EXPECT_EQ(stage.call("krlImageQuit").error, "");
    EXPECT_EQ(stage.locks(), 0);
    EXPECT_EQ(stage.call("krlImageSepia").error, "Failed Sepia function (Image)");
    EXPECT_EQ(stage.call("krlImageLoad", {picture}).error, "");
}

TEST(Timers, WriteNoResultAndWorkBeforeAnythingElse) {
    Stage stage(false);
    for (const char* name : {"krlImageStopTimer", "krlImageStartTimer", "krlImageStopTimer"}) {
        const Answer answer = stage.call(name);
        EXPECT_EQ(answer.status, kHostOk);
        EXPECT_TRUE(answer.result.isVoid());
    }
}

TEST(Timers, PrintMillisecondsThatWrapAsIntegers) {
    Stage stage(false);
    std::string printed;
    stage.embeddedHost().onMessage = [&](std::string_view text) { printed += text; };
    stage.call("krlImageStartTimer");
    stage.call("krlImageStopTimer");
    int milliseconds = -1;
    ASSERT_EQ(std::sscanf(printed.c_str(), "Time taken (ms) = %d", &milliseconds), 1) << printed;
    EXPECT_EQ(printed, "Time taken (ms) = " + std::to_string(milliseconds) + "\n");
    EXPECT_GE(milliseconds, 0);
    EXPECT_LT(milliseconds, 60000);
}

TEST(SecondImages, StayLockedAfterAFailureAndAreUnlockedAfterSuccess) {
    Stage stage;
    stage.load(4, 3);
    const std::vector<Pixel> before = stage.pixels();
    const Value small = stage.image(2, 2, 1), fitting = stage.image(4, 3, 1);
    const std::vector<Value> rest = {stage.symbol("normal"), stage.symbol("background_alpha_no")};
    EXPECT_EQ(stage.call("krlImageComposite", {small, rest[0], rest[1]}).error,
              "Failed Composite function (Image)");
    EXPECT_EQ(stage.locks(), 2);
    EXPECT_EQ(stage.pixels(), before);
    EXPECT_EQ(stage.call("krlImageComposite", {fitting, rest[0], rest[1]}).error, "");
    EXPECT_EQ(stage.locks(), 2);
}

TEST(SecondImages, AreTestedForRowsAfterTheSymbols) {
    Stage stage;
    stage.load(4, 3);
    EXPECT_EQ(stage.call("krlImageComposite", {stage.integer(1), stage.symbol("pinlight"), Value()}).error,
              "Composite invalid input blendMethod (Image)");
    EXPECT_EQ(stage
                  .call("krlImageComposite",
                        {stage.integer(1), stage.symbol("normal"), stage.symbol("background_alpha_yes")})
                  .error,
              "Invalid composite image height (Image)");
    EXPECT_EQ(stage.locks(), 1);
}

TEST(Memory, ThatRunsOutBecomesTheMethodsOwnMessage) {
    Stage stage;
    stage.load(8, 8);
    faults().scratchBlocks = 0;
    const Answer answer = stage.call("krlImageSobel", {stage.symbol("RGB")});
    faults() = Faults{};
    EXPECT_EQ(answer.error, "Failed Sobel function (Image)");
    EXPECT_EQ(answer.status, kHostOutOfMemory);
}

TEST(Bands, ThatCannotBeCreatedBecomeTheMethodsOwnMessage) {
    Stage stage;
    stage.load(8, 8);
    stage.setBands(3);
    faults().threads = 1;
    const Answer answer = stage.call("krlImageSepia");
    faults() = Faults{};
    EXPECT_EQ(answer.error, "Failed Sepia function (Image)");
    EXPECT_EQ(answer.status, kHostOk);
}

}  // namespace
}  // namespace krl::host
