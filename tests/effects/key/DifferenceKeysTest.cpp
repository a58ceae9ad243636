#include <gtest/gtest.h>

#include <limits>

#include "core/Faults.h"
#include "core/Random.h"
#include "krlimage/key.h"
#include "reference/DifferenceKeyReference.h"
#include "support/Picture.h"

namespace krl {
namespace {

using test::Picture;
namespace reference = test::reference;

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN(),
                kInfinity = std::numeric_limits<float>::infinity();
constexpr int32_t kLeast = std::numeric_limits<int32_t>::min(), kMost = std::numeric_limits<int32_t>::max();
constexpr KeyColour kColours[] = {KeyColour::Red, KeyColour::Green, KeyColour::Blue};

Picture opaque(Picture picture) {
    for (Pixel& p : picture.pixels()) p.alpha = 255;
    return picture;
}

/// The mattes of an effect on an opaque picture: what `keep` inverted leaves.
std::vector<int> mattes(const Picture& picture, const std::function<Status(ImageEngine&)>& keepInverted) {
    const Picture keyed = opaque(picture).after(keepInverted);
    std::vector<int> alphas;
    for (const Pixel& p : keyed.pixels()) alphas.push_back(p.alpha);
    return alphas;
}

/// A green screen in small: a soft disc of skin colours before a green that is not quite even.
Picture greenScreen(int32_t width, int32_t height, Pixel backing = {40, 200, 60, 255}) {
    Picture picture(width, height);
    Random random(4);
    for (int32_t y = 0; y < height; ++y)
        for (int32_t x = 0; x < width; ++x) {
            const double distance = std::hypot(x - width * 0.5, y - height * 0.5) / (width * 0.3);
            const double weight = clampUnit(4.0 * (1.15 - distance));
            const int32_t noise = random.next() % 8;
            const auto mixed = [&](int32_t skin, int32_t screen) {
                return clampByte(truncate(skin * weight + screen * (1.0 - weight)) + noise);
            };
            picture.at(x, y) = {mixed(110, backing.blue), mixed(140, backing.green), mixed(210, backing.red),
                                uint8_t(random.next())};
        }
    return picture;
}

TEST(ColourDifference, TakesTheKeyChannelAboveTheLargerOther) {
    const auto key = [](KeyColour colour) {
        return [=](ImageEngine& e) { return colourDifference(e, colour, 0, 255, true, true); };
    };
    const Picture source(3, {{10, 100, 30, 0}, {90, 20, 30, 0}, {10, 30, 200, 0}});
    EXPECT_EQ(mattes(source, key(KeyColour::Green)), (std::vector{70, 0, 0}));
    EXPECT_EQ(mattes(source, key(KeyColour::Blue)), (std::vector{0, 60, 0}));
    EXPECT_EQ(mattes(source, key(KeyColour::Red)), (std::vector{0, 0, 170}));
}

TEST(ColourDifference, StretchesBetweenBlackAndWhite) {
    // 256 / 101 levels for each step above 50.
    const Picture source(5, {{0, 49, 0, 0}, {0, 50, 0, 0}, {0, 51, 0, 0}, {0, 150, 0, 0}, {0, 151, 0, 0}});
    EXPECT_EQ(
        mattes(source,
               [](ImageEngine& e) { return colourDifference(e, KeyColour::Green, 50, 150, true, true); }),
        (std::vector{0, 0, 2, 253, 255}));
}

TEST(ColourDifference, ClearsTheBackingOnKeepWithoutInvert) {
    const Picture source(2, {{0, 255, 0, 200}, {0, 0, 255, 200}});
    const Picture result = source.after(
        [](ImageEngine& e) { return colourDifference(e, KeyColour::Green, 0, 255, true, false); });
    EXPECT_EQ(result.at(0, 0).alpha, 0);
    EXPECT_EQ(result.at(1, 0).alpha, 200);
}

TEST(ColourDifference, FollowsItsDefinitionForAnyStretch) {
    const Picture source = Picture::random(61, 47);
    for (const KeyColour colour : kColours)
        for (const int32_t black : {-1000, -300, -40, 0, 60, 255, 400})
            for (const int32_t white : {-300, -41, 0, 59, 60, 100, 255, 1000})
                for (const bool keep : {false, true})
                    ASSERT_EQ(source.after([=](ImageEngine& e) {
                        return colourDifference(e, colour, black, white, keep, keep);
                    }),
                              reference::colourDifference(source, colour, black, white, keep, keep))
                        << black << ' ' << white;
}

TEST(ColourDifference, TakesTheLargestIntegers) {
    const Picture source = Picture::random(9, 9);
    const auto keyed = [&](int32_t black, int32_t white) {
        return mattes(source, [=](ImageEngine& e) {
            return colourDifference(e, KeyColour::Green, black, white, true, true);
        });
    };
    EXPECT_EQ(keyed(kMost, kMost), std::vector<int>(81, 0));
    EXPECT_EQ(keyed(kLeast, kLeast), std::vector<int>(81, 255));
    EXPECT_EQ(keyed(kMost, kLeast), std::vector<int>(81, 255)) << "above white comes first";
}

TEST(ColourDifference, ReadsColourOnlyAndNeedsAnImage) {
    const auto key = [](ImageEngine& e) { return colourDifference(e, KeyColour::Blue, 10, 90, true, false); };
    test::expectSameForAnyBands(key);
    test::expectStateTests(key);
    EXPECT_TRUE(test::sameColour(greenScreen(20, 20).after(key), greenScreen(20, 20)));
}

KeyColour found(const Picture& picture, int32_t bands = 1) {
    KeyColour colour = KeyColour::Auto;
    const Picture result = picture.after([&](ImageEngine& e) { return autoColor(e, colour); }, bands);
    EXPECT_EQ(result, picture);
    return colour;
}

TEST(AutoColor, FindsTheMoreFrequentBacking) {
    EXPECT_EQ(found(Picture(3, {{9, 0, 0, 0}, {9, 0, 0, 0}, {0, 9, 0, 0}})), KeyColour::Blue);
    EXPECT_EQ(found(Picture(3, {{9, 0, 0, 0}, {0, 9, 0, 0}, {0, 9, 0, 0}})), KeyColour::Green);
}

TEST(AutoColor, AnswersGreenOnATieAndNeverRed) {
    EXPECT_EQ(found(Picture(2, {{9, 0, 0, 0}, {0, 9, 0, 0}})), KeyColour::Green);
    EXPECT_EQ(found(Picture(2, {{0, 0, 9, 0}, {0, 0, 9, 0}})), KeyColour::Green);
}

TEST(AutoColor, CountsEqualChannelsAsGreenAndBlueOnlyAboveBoth) {
    EXPECT_EQ(found(Picture(3, {{9, 9, 9, 0}, {9, 9, 0, 0}, {9, 0, 0, 0}})), KeyColour::Green);
    EXPECT_EQ(found(Picture(3, {{9, 0, 9, 0}, {9, 0, 8, 0}, {0, 0, 9, 0}})), KeyColour::Blue);
}

TEST(AutoColor, AddsUpTheBands) {
    Picture picture(5, 7, {9, 0, 0, 0});
    for (int32_t i = 0; i < 17; ++i) picture.pixels()[size_t(i)] = {0, 9, 0, 0};
    for (const int32_t bands : {1, 2, 3, 4, 7, 50})
        EXPECT_EQ(found(picture, bands), KeyColour::Blue) << bands;
}

TEST(AutoColor, NeedsAnImage) {
    KeyColour colour;
    test::expectStateTests([&](ImageEngine& e) { return autoColor(e, colour); });
}

Picture automatic(const Picture& source, const AutoKeySettings& settings, KeyColour& used,
                  int32_t bands = 1) {
    return source.after([&](ImageEngine& e) { return autoColorDifference(e, settings, used); }, bands);
}

TEST(AutoColorDifference, FollowsItsDefinitionForAnyArguments) {
    const Picture pictures[] = {Picture::random(53, 31), greenScreen(40, 30), Picture(4, 3, {9, 200, 5, 7})};
    const float details[] = {0, -1, 1, 0.4f, 7, -7, kNaN, kInfinity};
    const float greys[] = {0, 1, 0.3f, 0.5f, 1e-38f, -4, 9, kNaN, kInfinity};
    const float thresholds[] = {0, 1, 0.5f, 0.9f, 1.5f, -2, 1e30f, kNaN, kInfinity, -kInfinity};
    for (const Picture& source : pictures)
        for (const float detail : details)
            for (const float grey : greys)
                for (const float threshold : thresholds)
                    for (const KeyColour colour : {KeyColour::Green, KeyColour::Blue}) {
                        KeyColour used{};
                        const Picture result = automatic(source, {colour, detail, grey, threshold}, used, 3);
                        Picture expected = source;
                        const auto levels =
                            reference::automaticMattes(source, colour, detail, grey, threshold);
                        for (size_t i = 0; i < levels.size(); ++i)
                            expected.pixels()[i].alpha = uint8_t(255 - levels[i]);
                        ASSERT_EQ(result, expected) << detail << ' ' << grey << ' ' << threshold;
                        ASSERT_EQ(used, colour);
                    }
}

TEST(AutoColorDifference, FindsItsColour) {
    KeyColour used{};
    const AutoKeySettings settings{KeyColour::Auto, 0.2f, 0.3f, 0.4f};
    const Picture green = greenScreen(30, 30), blue = greenScreen(30, 30, {200, 50, 60, 255});
    const Picture keyed = automatic(green, settings, used);
    EXPECT_EQ(used, KeyColour::Green);
    EXPECT_EQ(keyed, automatic(green, {KeyColour::Green, 0.2f, 0.3f, 0.4f}, used));
    automatic(blue, settings, used);
    EXPECT_EQ(used, KeyColour::Blue);
}

TEST(AutoColorDifference, ClearsTheBackingAndKeepsTheSubject) {
    KeyColour used{};
    const Picture result = automatic(greenScreen(40, 40), {KeyColour::Green, 0, 0.2f, 0.5f}, used);
    EXPECT_EQ(result.at(20, 20).alpha, 255);
    EXPECT_LT(result.at(1, 1).alpha, 10);
}

TEST(AutoColorDifference, WithoutAKeyPixelMakesAllOpaque) {
    KeyColour used{};
    const Picture result =
        automatic(Picture(3, 3, {200, 10, 90, 40}), {KeyColour::Green, 0.5f, 0.5f, 0.5f}, used);
    for (const Pixel& p : result.pixels()) EXPECT_EQ(p.alpha, 255);
}

TEST(AutoColorDifference, SameForAnyBandsAndNeedsAnImage) {
    KeyColour used{};
    const AutoKeySettings settings{KeyColour::Auto, 0.5f, 0.4f, 0.3f};
    const auto key = [&](ImageEngine& e) { return autoColorDifference(e, settings, used); };
    test::expectSameForAnyBands(key);
    test::expectStateTests(key);
    EXPECT_TRUE(test::sameColour(greenScreen(20, 20).after(key), greenScreen(20, 20)));
}

/// The green screen keyed in two bands, one of which is refused after `grantedTasks`.
Status keyedWithFault(KeyColour colour, int32_t grantedTasks, Picture& picture) {
    KeyColour used{};
    faults().tasks = grantedTasks;
    const Status status = picture.apply(
        [&](ImageEngine& e) {
            return autoColorDifference(e, {colour, 0, 0.2f, 0.5f}, used);
        },
        2);
    faults().tasks = -1;
    return status;
}

TEST(AutoColorDifference, StopsWhereTheFirstPassFails) {
    const Picture source = greenScreen(20, 20);
    Picture keyed = source;
    EXPECT_EQ(keyedWithFault(KeyColour::Green, 1, keyed), kStatusNoTaskMemory);
    EXPECT_EQ(keyedWithFault(KeyColour::Auto, 3, keyed), kStatusNoTaskMemory);
    EXPECT_EQ(keyed, source);
}

TEST(AutoColorDifference, ForgivesAFailedSearchForAColour) {
    Picture keyed = greenScreen(20, 20);
    EXPECT_EQ(keyedWithFault(KeyColour::Auto, 1, keyed), kStatusOk);
    EXPECT_EQ(keyed.at(10, 10).alpha, 255);
}

TEST(AutoColorDifferenceCharger, FoldsTheSameMatteIntoTheAlphaThatIsThere) {
    const Picture source = greenScreen(40, 30);
    const AutoKeySettings settings{KeyColour::Green, 0.5f, 0.4f, 0.3f};
    const auto levels = reference::automaticMattes(source, KeyColour::Green, 0.5f, 0.4f, 0.3f);
    for (const bool keep : {false, true})
        for (const bool invert : {false, true}) {
            KeyColour used{};
            const auto key = [&](ImageEngine& e) {
                return autoColorDifferenceCharger(e, settings, keep, invert, used);
            };
            Picture expected = source;
            for (size_t i = 0; i < levels.size(); ++i)
                expected.pixels()[i].alpha = applyKeyMatte(source.pixels()[i].alpha, levels[i], keep, invert);
            EXPECT_EQ(source.after(key), expected);
            EXPECT_EQ(used, KeyColour::Green);
            test::expectSameForAnyBands(key);
            test::expectStateTests(key);
        }
}

Picture extended(const Picture& source, KeyColour colour, const ColourDifferenceContrasts& a, bool keep,
                 bool invert) {
    return source.after([&](ImageEngine& e) { return colourDifferenceExtended(e, colour, a, keep, invert); });
}

TEST(ColourDifferenceExtended, FollowsItsDefinitionForAnyArguments) {
    const Picture pictures[] = {Picture::random(37, 23), greenScreen(40, 30),
                                greenScreen(40, 30, {0, 90, 0, 255}), Picture::random(2, 9), Picture(5, 4)};
    const float values[] = {0, 1, 0.1f, 0.25f, 0.5f, -0.3f, 3, 1e-30f, kNaN, kInfinity, -kInfinity};
    Random random(6);
    const auto draw = [&] { return values[size_t(random.next()) % std::size(values)]; };
    for (int32_t round = 0; round < 300; ++round) {
        const Picture& source = pictures[size_t(round) % std::size(pictures)];
        const ColourDifferenceContrasts a{draw(), draw(), draw(), draw()};
        const KeyColour colour = kColours[round / 5 % 3];
        const bool keep = round % 2 == 0, invert = round % 4 < 2;
        ASSERT_EQ(extended(source, colour, a, keep, invert),
                  reference::colourDifferenceExtended(source, colour, a, keep, invert))
            << a.colorRange << ' ' << a.edgeContast << ' ' << a.luminocityContrast << ' '
            << a.colorDifferenceContrast;
    }
}

TEST(ColourDifferenceExtended, OnAFlatPictureHasNoEdgeTermAndAStretchWithoutWidth) {
    // One colour: the stretch of the difference is 0 / 0, whose conversion ends at 0.
    const Picture flat(5, 5, {10, 200, 30, 90});
    EXPECT_EQ(extended(flat, KeyColour::Green, {0.5f, 0.2f, 0.5f, 0.2f}, true, false), flat);

    // Two colours apart by more than the gate leave the inner, edgeless backing its full matte.
    Picture halves(12, 8, {10, 200, 30, 255});
    for (int32_t y = 0; y < 8; ++y)
        for (int32_t x = 6; x < 12; ++x) halves.at(x, y) = {90, 90, 90, 255};
    const Picture result = extended(halves, KeyColour::Green, {0.5f, 0.2f, 0.5f, 0.2f}, true, false);
    EXPECT_EQ(result.at(2, 4).alpha, 0);
    EXPECT_EQ(result.at(9, 4).alpha, 255);
}

TEST(ColourDifferenceExtended, WithFullLuminanceContrastDropsAllBelowTheBacking) {
    Picture picture(6, 1, {0, 200, 0, 255});
    picture.at(5, 0) = {0, 120, 0, 255};
    picture.at(4, 0) = {0, 0, 0, 255};
    // The gate of 153 admits the bright backing alone.
    const Picture strict = extended(picture, KeyColour::Green, {-0.2f, 0, 1, 0}, true, true);
    EXPECT_EQ(strict.at(5, 0).alpha, 0);
    const Picture lenient = extended(picture, KeyColour::Green, {-0.2f, 0, 0, 0}, true, true);
    EXPECT_EQ(lenient.at(5, 0).alpha, 153) << "120 of 200 by difference and by luminance";
}

TEST(ColourDifferenceExtended, RefusesAMissingImageWithItsOwnStatus) {
    ImageEngine engine;
    const auto run = [&] { return colourDifferenceExtended(engine, KeyColour::Green, {}, true, false); };
    EXPECT_EQ(run(), kStatusRefused);
    engine.load(nullptr, {2, 2, 8, 0, 0, 0});
    EXPECT_EQ(run(), kStatusRefused);
}

TEST(ColourDifferenceExtended, ReadsColourOnly) {
    const auto key = [](ImageEngine& e) {
        return colourDifferenceExtended(e, KeyColour::Green, {0.6f, 0.1f, 0.4f, 0.2f}, true, false);
    };
    test::expectSameForAnyBands(key);
    EXPECT_TRUE(test::sameColour(greenScreen(20, 20).after(key), greenScreen(20, 20)));
}

}  // namespace
}  // namespace krl
