#include <gtest/gtest.h>

#include "methods/Stage.h"
#include "player/host/Objects.h"

/// The two colour conversions and the methods without effect, as seen by scripts.
namespace krl::test {
namespace {

using player::Kind;
using player::PropertyListObject;
using player::Value;

const std::vector<PropertyListObject::Entry>& entriesOf(const Answer& answer) {
    static const std::vector<PropertyListObject::Entry> none;
    const auto* list = answer.result.as<PropertyListObject>();
    EXPECT_NE(list, nullptr);
    return list ? list->entries : none;
}

/// The colour under `RGB`, which must be the only entry.
Colour convertedColour(Stage& stage, double hue, double saturation, double value) {
    const Answer answer =
        stage.call("krlImageHSVtoRGB", {stage.real(hue), stage.real(saturation), stage.real(value)});
    const auto& entries = entriesOf(answer);
    EXPECT_EQ(entries.size(), 1u);
    EXPECT_FALSE(answer.reported);
    EXPECT_EQ(answer.status, host::kHostOk);
    if (entries.size() != 1) return {};
    EXPECT_TRUE(entries[0].key.sameWords(stage.symbol("RGB")));
    EXPECT_TRUE(entries[0].value.is(Kind::Colour));
    return entries[0].value.colour();
}

TEST(HsvToRgb, ReturnsOneColourAndNoError) {
    Stage stage(false);
    EXPECT_EQ(convertedColour(stage, 0, 0, 1).word, Colour(255, 255, 255).word);
    EXPECT_EQ(convertedColour(stage, 360, 1, 1).word, Colour(255, 0, 0).word);
    EXPECT_EQ(convertedColour(stage, 240, 1, 0.5).word, Colour(0, 0, 128).word);
}

TEST(HsvToRgb, AcceptsEveryNumber) {
    Stage stage(false);
    EXPECT_EQ(convertedColour(stage, 400, 1, 1).red(), 255);
    EXPECT_EQ(convertedColour(stage, -5, 0.5, 0.5).red(), 128);
    EXPECT_EQ(convertedColour(stage, 0, 0, 1.5).red(), 383 - 256);
}

TEST(HsvToRgb, ReportsNonNumbers) {
    Stage stage(false);
    const Answer answer = stage.call("krlImageHSVtoRGB", {stage.real(0), stage.symbol("RGB"), stage.real(1)});
    EXPECT_EQ(answer.error, "HSVtoRGB input failure (Image)");
    EXPECT_NE(answer.status, host::kHostOk);
}

/// Hue, saturation and value, which must be the only entries, in this order.
std::vector<double> convertedNumbers(Stage& stage, Colour colour) {
    const Answer answer = stage.call("krlImageRGBtoHSV", {Value::colour(colour)});
    EXPECT_FALSE(answer.reported);
    std::vector<double> numbers;
    const char* const keys[] = {"hue", "saturation", "value"};
    const auto& entries = entriesOf(answer);
    EXPECT_EQ(entries.size(), 3u);
    for (size_t i = 0; i < entries.size() && i < 3; ++i) {
        EXPECT_TRUE(entries[i].key.sameWords(stage.symbol(keys[i])));
        EXPECT_TRUE(entries[i].value.is(Kind::Float));
        numbers.push_back(entries[i].value.number());
    }
    return numbers;
}

TEST(RgbToHsv, ReturnsThreeNumbersAndNoError) {
    Stage stage(false);
    EXPECT_EQ(convertedNumbers(stage, Colour(0, 0, 0)), (std::vector<double>{-1, 0, 0}));
    EXPECT_EQ(convertedNumbers(stage, Colour(0, 0, 255)), (std::vector<double>{240, 1, 1}));
    EXPECT_EQ(convertedNumbers(stage, Colour(255, 255, 0)), (std::vector<double>{60, 1, 1}));
}

TEST(RgbToHsv, ReportsNonColours) {
    Stage stage(false);
    const Answer answer = stage.call("krlImageRGBtoHSV", {stage.integer(7)});
    EXPECT_EQ(answer.error, "RGBtoHSV input failure (Image)");
    EXPECT_NE(answer.status, host::kHostOk);
}

TEST(Conversions, LeaveNothingBehind) {
    Stage stage;
    convertedColour(stage, 30, 0.5, 1);
    convertedNumbers(stage, Colour(1, 2, 3));
    EXPECT_TRUE(stage.leavesNothing());
}

TEST(DropShadow, ReturnsANewPictureOfTheLoadedSize) {
    Stage stage;
    stage.load(7, 3);
    const std::vector<Pixel> before = stage.pixels();
    {
        const Answer answer = stage.call("krlImageDropShadow", {stage.integer(5), stage.integer(5)});
        EXPECT_EQ(answer.error, "");
        const auto& entries = entriesOf(answer);
        ASSERT_EQ(entries.size(), 2u);
        EXPECT_TRUE(entries[0].key.sameWords(stage.symbol("error")));
        EXPECT_TRUE(entries[1].key.sameWords(stage.symbol("frame")));
        const auto* frame = entries[1].value.as<player::ImageObject>();
        ASSERT_NE(frame, nullptr);
        EXPECT_EQ(frame->width(), 7);
        EXPECT_EQ(frame->height(), 3);
        EXPECT_EQ(frame->locks, 0);
    }
    EXPECT_EQ(stage.pixels(), before);
    EXPECT_TRUE(stage.leavesNothing());
}

TEST(DropShadow, UsesTheLastSizeAfterThePictureIsReleased) {
    Stage stage;
    stage.load(7, 3);
    stage.quit();
    const Answer answer = stage.call("krlImageDropShadow", {stage.integer(5), stage.integer(5)});
    const auto& entries = entriesOf(answer);
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries[1].value.as<player::ImageObject>()->width(), 7);
}

TEST(DropShadow, FailsIfNoPictureCanBeCreated) {
    Stage stage;  // no picture was loaded, so the size is 0
    const Answer answer = stage.call("krlImageDropShadow", {stage.integer(5), stage.integer(5)});
    EXPECT_EQ(answer.error, "Failed Drop Shadow function (Image)");
    EXPECT_EQ(answer.status, host::kHostOk);
}

TEST(MethodsWithoutEffect, SucceedWithOnlyAnEngine) {
    Stage stage;
    EXPECT_EQ(stage.call("krlImageStars").error, "");
    for (const char* name : {"krlImageFishEye", "krlImageGleamBlur", "krlImageGleamZoom",
                             "krlImageDiffuseExtended", "krlImageShadowHighlight"})
        EXPECT_EQ(stage.call(name, stage.examples(*host::findMethod(name))).error, "") << name;
}

TEST(MethodsWithoutEffect, NeedAnEngineOnlyForAPicture) {
    Stage stage(false);
    for (const char* name : {"krlImageStars", "krlImageDefinePattern", "krlImageFishEye", "krlImageGleamBlur",
                             "krlImageGleamZoom", "krlImageDiffuseExtended", "krlImageShadowHighlight"})
        EXPECT_EQ(stage.call(name, stage.examples(*host::findMethod(name))).error, "") << name;
    EXPECT_EQ(stage.locks(), 0);
    const auto sizes = {stage.integer(5), stage.integer(5)};
    EXPECT_EQ(stage.call("krlImageDropShadow", sizes).error, "Failed Drop Shadow function (Image)");
}

TEST(MethodsWithoutEffect, LeaveThePictureUnchanged) {
    Stage stage;
    stage.load(6, 4);
    const std::vector<Pixel> before = stage.pixels();
    for (const char* name : {"krlImageDefinePattern", "krlImageDiffuseExtended", "krlImageFishEye",
                             "krlImageGleamBlur", "krlImageGleamZoom", "krlImageShadowHighlight",
                             "krlImageStars", "krlImageAdaptiveColourReduction", "krlImageTones"})
        EXPECT_EQ(stage.call(name, stage.examples(*host::findMethod(name))).error, "") << name;
    EXPECT_EQ(stage.pixels(), before);
}

TEST(MethodsWithoutEffect, NeedAPictureWhereDeclared) {
    Stage stage;
    const auto examples = stage.examples(*host::findMethod("krlImageTones"));
    EXPECT_EQ(stage.call("krlImageTones", examples).error, "Failed Tones function (Image)");
    EXPECT_EQ(stage.call("krlImageAdaptiveColourReduction").error,
              "Failed Adaptive Colour Reduction function (Image)");
}

TEST(MethodsWithoutEffect, CheckTheirSymbols) {
    Stage stage;
    auto arguments = stage.examples(*host::findMethod("krlImageFishEye"));
    arguments.back() = stage.symbol("maybe");
    EXPECT_EQ(stage.call("krlImageFishEye", arguments).error,
              "Fish Eye invalid input background option (Image)");
    arguments = stage.examples(*host::findMethod("krlImageDefinePattern"));
    arguments[1] = stage.symbol("maybe");
    EXPECT_EQ(stage.call("krlImageDefinePattern", arguments).error,
              "Zoom Glow invalid input blendMethod (Image)");
}

TEST(MediumTonesMethod, FailsAfterThePictureIsReleased) {
    Stage stage;
    stage.load(6, 4);
    stage.quit();
    EXPECT_EQ(stage.call("krlImageMediumTones", {stage.integer(90)}).error,
              "Failed Medium Tones function (Image)");
}

TEST(ThresholdMethod, MisspellsItsFailureOnlyForTheNumber) {
    Stage stage;
    EXPECT_EQ(stage.call("krlImageThreshold", {stage.string("x"), stage.symbol("RGB")}).error,
              "Theshold input failure (Image)");
    EXPECT_EQ(stage.call("krlImageThreshold", {stage.integer(1), stage.string("x")}).error,
              "Threshold input failure (Image)");
}

}  // namespace
}  // namespace krl::test
