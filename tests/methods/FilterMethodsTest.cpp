#include <gtest/gtest.h>

#include "methods/Stage.h"

/// How the filters treat unknown symbols that they do not report, and a message that is misspelt for some
/// arguments only.
namespace krl::test {
namespace {

using player::Value;

constexpr int32_t kWidth = 9, kHeight = 7;

/// The picture after a method with its example arguments, with argument `index` replaced by `symbol`.
std::vector<Pixel> pixelsAfter(const char* name, size_t index, const char* symbol) {
    Stage stage;
    stage.load(kWidth, kHeight);
    std::vector<Value> arguments = stage.examples(*host::findMethod(name));
    arguments[index] = stage.symbol(symbol);
    EXPECT_EQ(stage.call(name, arguments).error, "") << name;
    return stage.pixels();
}

std::vector<Pixel> untouched() {
    Stage stage;
    stage.load(kWidth, kHeight);
    return stage.pixels();
}

TEST(FilterMethods, UseAlphaForAnUnknownTarget) {
    const std::pair<const char*, size_t> methods[] = {
        {"krlImageSobel", 0}, {"krlImageEmboss", 3}, {"krlImageMotionBlur", 3}, {"krlImageMosaic", 1}};
    for (const auto& [name, index] : methods) {
        const std::vector<Pixel> result = pixelsAfter(name, index, "other");
        EXPECT_EQ(result, pixelsAfter(name, index, "Alpha")) << name;
        EXPECT_NE(result, untouched()) << name;
    }
}

TEST(FilterMethods, RotateAndZoomNothingForAnUnknownTarget) {
    EXPECT_EQ(pixelsAfter("krlImageRadialBlur", 2, "other"), untouched());
    EXPECT_EQ(pixelsAfter("krlImageZoomBlur", 3, "other"), untouched());
    EXPECT_NE(pixelsAfter("krlImageRadialBlur", 2, "Alpha"), untouched());
}

TEST(FilterMethods, TreatEverySymbolExceptSingleAsDouble) {
    const std::vector<Pixel> result = pixelsAfter("krlImageMotionBlur", 2, "other");
    EXPECT_EQ(result, pixelsAfter("krlImageMotionBlur", 2, "double"));
    EXPECT_NE(result, pixelsAfter("krlImageMotionBlur", 2, "single"));
}

TEST(FilterMethods, MisspellTheFailureOnlyOfAThresholdsNumbers) {
    Stage stage;
    stage.load(kWidth, kHeight);
    for (size_t index = 0; index < 4; ++index) {
        std::vector<Value> arguments = stage.examples(*host::findMethod("krlImageThresholdPro"));
        arguments[index] = stage.string("words");
        EXPECT_EQ(stage.call("krlImageThresholdPro", arguments).error,
                  index < 3 ? "Theshold input failure (Image)" : "Threshold input failure (Image)")
            << index;
    }
}

}  // namespace
}  // namespace krl::test
