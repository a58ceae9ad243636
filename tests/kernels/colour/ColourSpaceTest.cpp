#include <gtest/gtest.h>

#include <limits>

#include "kernels/colour/ColourSpace.h"
#include "reference/ColourSpaceReference.h"

namespace krl::test {
namespace {

/// Steps through bytes that between them meet every kind of colour, 0 and 255 included.
constexpr int kByteStep = 5;

Hls referenceHls(int red, int green, int blue) {
    Hls hls;
    reference::rgbToHls(red, green, blue, &hls.hue, &hls.lightness, &hls.saturation);
    return hls;
}

Hsv referenceHsv(float red, float green, float blue) {
    Hsv hsv;
    reference::rgbToHsv(red, green, blue, &hsv.hue, &hsv.saturation, &hsv.value);
    return hsv;
}

Rgb referenceRgb(const Hsv& hsv) {
    Rgb rgb;
    reference::hsvToRgb(hsv.hue, hsv.saturation, hsv.value, &rgb.red, &rgb.green, &rgb.blue);
    return rgb;
}

TEST(ColourSpace, GreyHasNoHueInEitherSpace) {
    EXPECT_EQ(rgbToHls(128, 128, 128), (Hls{-1, 181, 0}));
    EXPECT_EQ(rgbToHsv(0, 0, 0), (Hsv{-1, 0, 0}));
    EXPECT_EQ(rgbToHsv(0.5f, 0.5f, 0.5f), (Hsv{-1, 0, 0.5f}));
}

TEST(ColourSpace, PrimariesLieThirdsApart) {
    EXPECT_EQ(rgbToHls(255, 0, 0), (Hls{0, 180, 360}));
    EXPECT_EQ(rgbToHls(0, 255, 0), (Hls{120, 180, 360}));
    EXPECT_EQ(rgbToHls(0, 0, 255), (Hls{240, 180, 360}));
    EXPECT_EQ(rgbToHls(255, 255, 0), (Hls{60, 180, 360}));
    EXPECT_EQ(rgbToHls(255, 0, 255), (Hls{300, 180, 360}));
    EXPECT_EQ(rgbToHsv(0, 0, 1), (Hsv{240, 1, 1}));
    EXPECT_EQ(rgbToHsv(1, 0, 1), (Hsv{300, 1, 1}));
}

TEST(ColourSpace, PrimariesComeBack) {
    const auto back = [](int32_t hue) {
        Rgb rgb{1, 2, 3};
        hlsToRgb({hue, 180, 360}, rgb);
        return rgb;
    };
    EXPECT_EQ(back(0), (Rgb{255, 0, 0}));
    EXPECT_EQ(back(60), (Rgb{255, 255, 0}));
    EXPECT_EQ(back(120), (Rgb{0, 255, 0}));
    EXPECT_EQ(back(240), (Rgb{0, 0, 255}));
    EXPECT_EQ(back(360), (Rgb{255, 0, 0}));
    EXPECT_EQ(hsvToRgb({360, 1, 1}), (Rgb{255, 0, 0}));
    EXPECT_EQ(hsvToRgb({120, 1, 1}), (Rgb{0, 255, 0}));
}

TEST(ColourSpace, GreyIsWrittenOnlyWithoutHue) {
    Rgb rgb{1, 2, 3};
    hlsToRgb({0, 180, 0}, rgb);
    EXPECT_EQ(rgb, (Rgb{1, 2, 3}));
    hlsToRgb({-1, 180, 0}, rgb);
    EXPECT_EQ(rgb, (Rgb{127, 127, 127}));
}

TEST(ColourSpace, HueToChannelRisesStaysAndFalls) {
    EXPECT_EQ(hueToChannel(100, 160, 0), 100);
    EXPECT_EQ(hueToChannel(100, 160, 30), 130);
    EXPECT_EQ(hueToChannel(100, 160, 60), 160);
    EXPECT_EQ(hueToChannel(100, 160, 179), 160);
    EXPECT_EQ(hueToChannel(100, 160, 210), 130);
    EXPECT_EQ(hueToChannel(100, 160, 240), 100);
    EXPECT_EQ(hueToChannel(100, 160, -330), 130);
    EXPECT_EQ(hueToChannel(100, 160, 390), 130);
    EXPECT_EQ(hueToChannel(100, 160, 360), 100);
}

TEST(ColourSpace, ValueAloneCountsWithoutSaturation) {
    EXPECT_EQ(hsvToRgb({-1, 0, 0.5f}), (Rgb{128, 128, 128}));
    EXPECT_EQ(hsvToRgb({std::numeric_limits<float>::quiet_NaN(), 0, 1}), (Rgb{255, 255, 255}));
}

TEST(ColourSpace, HueWithoutSectorGivesRedByValue) {
    const Rgb rgb = hsvToRgb({400, 1, 1});  // 400 / 60 is 6 and two thirds
    EXPECT_EQ(rgb.red, 255);
    EXPECT_EQ(rgb.green, 170);
    EXPECT_EQ(rgb.blue, 0);
    EXPECT_EQ(hsvToRgb({-90, 1, 0.5f}).red, 128);
}

TEST(ColourSpace, IntegerFamilyFollowsItsStepsForAllColours) {
    for (int red = 0; red < 256; ++red)
        for (int green = 0; green < 256; ++green)
            for (int blue = 0; blue < 256; ++blue)
                ASSERT_EQ(rgbToHls(red, green, blue), referenceHls(red, green, blue))
                    << red << ' ' << green << ' ' << blue;
}

TEST(ColourSpace, FloatFamilyFollowsItsSteps) {
    for (int red = 0; red < 256; red += kByteStep)
        for (int green = 0; green < 256; ++green)
            for (int blue = 0; blue < 256; blue += 3) {
                const float r = float(red) / 255, g = float(green) / 255, b = float(blue) / 255;
                const Hsv hsv = rgbToHsv(r, g, b);
                ASSERT_EQ(hsv, referenceHsv(r, g, b)) << red << ' ' << green << ' ' << blue;
                ASSERT_EQ(hsvToRgb(hsv), (Rgb{red, green, blue}));
            }
}

TEST(ColourSpace, HlsComesBackAsItsStepsSayForHuesOfAnySize) {
    for (int64_t hue :
         {-2147483648LL, -2147483000LL, -70000LL, -1000LL, -361LL, -240LL,  -121LL,      -2LL,  -1LL,
          0LL,           1LL,           59LL,     60LL,    61LL,   119LL,   180LL,       239LL, 241LL,
          299LL,         359LL,         360LL,    361LL,   600LL,  99999LL, 2147483647LL})
        for (int lightness = 0; lightness <= 360; lightness += 4)
            for (int saturation = 0; saturation <= 360; saturation += 5) {
                Rgb rgb{7, 8, 9}, expected{7, 8, 9};
                hlsToRgb({int32_t(hue), lightness, saturation}, rgb);
                reference::hlsToRgb(int32_t(hue), lightness, saturation, &expected.red, &expected.green,
                                    &expected.blue);
                ASSERT_EQ(rgb, expected) << hue << ' ' << lightness << ' ' << saturation;
            }
}

TEST(ColourSpace, HsvComesBackAsItsStepsSayForAnyNumbers) {
    const float infinity = std::numeric_limits<float>::infinity();
    const float odd[] = {
        -infinity,  -1e30f, -61.0f, -1.0f,  -0.0f, 0.0f,   1e-40f,   0.25f,
        0.999999f,  1.0f,   2.0f,   59.99f, 60.0f, 119.9f, 180.0f,   300.5f,
        359.99997f, 360.0f, 360.1f, 400.0f, 7e10f, 3e38f,  infinity, std::numeric_limits<float>::quiet_NaN()};
    for (float hue : odd)
        for (float saturation : odd)
            for (float value : odd) {
                const Hsv hsv{hue, saturation, value};
                ASSERT_EQ(hsvToRgb(hsv), referenceRgb(hsv)) << hue << ' ' << saturation << ' ' << value;
            }
}

}  // namespace
}  // namespace krl::test
