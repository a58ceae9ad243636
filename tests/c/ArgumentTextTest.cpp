#include "c/CallingTest.h"

/// The values that texts write for arguments.
namespace krl::test {
namespace {

std::string valueOf(const char* method, const char* argument, const char* text, int32_t width = 300,
                    int32_t height = 200) {
    char problem[200] = "unset";
    const ValuePointer value(
        krl_parse_argument(method, argument, text, width, height, problem, sizeof problem));
    if (!value) return problem;
    EXPECT_STREQ(problem, "");
    char written[200];
    krl_write(value.get(), written, sizeof written);
    return written;
}

TEST(ArgumentText, IsALengthInPercentOfTheShorterSide) {
    EXPECT_EQ(valueOf("vignette", "blur", "10%"), "20");
    EXPECT_EQ(valueOf("krlImageVignette", "BLUR", " 10% ", 100), "10");
    EXPECT_EQ(valueOf("vignette", "blur", "7"), "7");
    EXPECT_EQ(valueOf("vignette", "feather", "5%"), "10");
}

TEST(ArgumentText, IsAPlaceInPercentOfBothSides) {
    EXPECT_EQ(valueOf("zoomBlur", "zoomPoint", "point(50%, 10%)"), "point(150, 20)");
    EXPECT_EQ(valueOf("vignette", "region", "rect(10%, 0, 90%, 100%)"), "[30, 0, 270, 200]");
}

TEST(ArgumentText, IsAnyOtherValue) {
    EXPECT_EQ(valueOf("brightness", "colourOrAlpha", "#Alpha"), "#Alpha");
    EXPECT_EQ(valueOf("vignette", "mix", "0.5"), "0.5");
}

TEST(ArgumentText, SaysWhatIsWrongWithIt) {
    EXPECT_EQ(valueOf("brightness", "brightnessInt", "10%"),
              "a percentage is for a length or a point at character 3 of 10%");
    EXPECT_EQ(valueOf("vignette", "blur", "10%", 0, 0),
              "a percentage has no meaning here at character 3 of 10%");
    EXPECT_EQ(valueOf("vignette", "blur", "1), sepia(2"),
              "expected the end of the value at character 2 of 1), sepia(2");
    EXPECT_EQ(valueOf("vignette", "blurr", "1"), "vignette has no argument blurr");
    EXPECT_EQ(valueOf("vignette", "blur: 1, feather", "1"), "vignette has no argument blur: 1, feather");
    EXPECT_EQ(valueOf("vignettes", "blur", "1"), "no method is called vignettes");
    EXPECT_EQ(valueOf(nullptr, "blur", "1"), "there is no method name");
    EXPECT_EQ(valueOf("vignette", nullptr, "1"), "there is no argument name");
    EXPECT_EQ(valueOf("vignette", "blur", nullptr), "there is no text");
    EXPECT_EQ(krl_parse_argument("vignette", "blur", "%", 10, 10, nullptr, 0), nullptr);
}

}  // namespace
}  // namespace krl::test
