#include <gtest/gtest.h>

#include <limits>

#include "core/Random.h"
#include "effects/key/HueSpan.h"
#include "krlimage/key.h"
#include "reference/HsvKeyReference.h"
#include "support/Picture.h"

namespace krl {
namespace {

using test::Picture;
namespace reference = test::reference;

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN(),
                kInfinity = std::numeric_limits<float>::infinity();
constexpr Colour kGreen{0, 255, 0};
constexpr Pixel kPureGreen{0, 255, 0, 255}, kPureRed{0, 0, 255, 255}, kGrey{128, 128, 128, 255};

using ComponentKey = Status (*)(ImageEngine&, Colour, float, int32_t, int32_t, bool, bool);

/// The matte that a key gives one pixel: what `keep` inverted leaves of an opaque one.
uint8_t matteOf(const std::function<Status(ImageEngine&, bool, bool)>& key, Pixel p) {
    p.alpha = 255;
    return Picture(1, {p}).after([&](ImageEngine& e) { return key(e, true, true); }).at(0, 0).alpha;
}

uint8_t matteOf(ComponentKey key, Pixel p, Colour pick, float range, int32_t black = 0, int32_t white = 255) {
    return matteOf([=](ImageEngine& e, bool keep,
                       bool invert) { return key(e, pick, range, black, white, keep, invert); },
                   p);
}

uint8_t chromaMatteOf(const reference::ChromaArguments& a, Pixel p) {
    return matteOf(
        [&](ImageEngine& e, bool keep, bool invert) {
            return chromaKey(e, {a.huePick, a.innerHue, a.outerHue}, {a.satPick, a.innerSat, a.outerSat},
                             {a.valPick, a.innerVal, a.outerVal}, keep, invert);
        },
        p);
}

/// Colours of every kind: random ones, greys, pure ones and steps of one level.
Picture manyColours() {
    Picture picture = Picture::random(97, 61, 11);
    Random random(5);
    for (size_t i = 0; i < picture.pixels().size(); i += 3) {
        Pixel& p = picture.pixels()[i];
        const auto level = uint8_t(random.next() >> 4);
        const int32_t kind = random.next() % 4;
        if (kind == 0) p = {level, level, level, p.alpha};
        if (kind == 1) p = {level, uint8_t(level ^ 1), level, p.alpha};
        if (kind == 2) p = {0, level, 0, p.alpha};
        if (kind == 3) p = {uint8_t(level & 0x80), 255, uint8_t(level | 0x7F), p.alpha};
    }
    return picture;
}

TEST(HueSpan, GivesTheConversionsHuesForEveryColour) {
    const float* unit = test::sharedTables().unitFromByte;
    std::vector<Pixel> pixels(256 * 256);
    std::vector<float> hues(pixels.size());
    for (int32_t blue = 0; blue < 256; blue += blue < 4 || blue > 250 ? 1 : 7) {
        for (size_t i = 0; i < pixels.size(); ++i)
            pixels[i] = {uint8_t(blue), uint8_t(i), uint8_t(i >> 8), 9};
        huesOf(pixels.data(), size_t(pixels.size()), -1.0f, hues.data());
        for (size_t i = 0; i < pixels.size(); ++i) {
            const Pixel& p = pixels[i];
            ASSERT_EQ(hues[i], rgbToHsv(unit[p.red], unit[p.green], unit[p.blue]).hue)
                << int(p.red) << ' ' << int(p.green) << ' ' << int(p.blue);
        }
    }
}

constexpr reference::ChromaArguments kGreenKey{120, 30, 30, 1, 50, 20, 1, 60, 20};

TEST(ChromaKey, ReliesOnAScreenWhoseEndsAreExact) {
    const auto& screen = test::sharedTables().blendScreen;
    for (size_t level = 0; level < 256; ++level) {
        EXPECT_EQ(screen[0][level], level);
        EXPECT_EQ(screen[255][level], 255);
        EXPECT_EQ(screen[level][255], 255);
    }
}

TEST(ChromaKey, TellsTheBackingFromTheRest) {
    EXPECT_EQ(chromaMatteOf(kGreenKey, kPureGreen), 0);
    EXPECT_EQ(chromaMatteOf(kGreenKey, kPureRed), 255);
    EXPECT_EQ(chromaMatteOf(kGreenKey, kGrey), 255);
}

TEST(ChromaKey, MakesKeyedPixelsTransparentOrRaisesTheOthers) {
    const Picture source(2, {{0, 255, 0, 200}, {0, 0, 255, 100}});
    const auto key = [](bool keep, bool invert) {
        return [=](ImageEngine& e) {
            return chromaKey(e, {120, 30, 30}, {1, 50, 20}, {1, 60, 20}, keep, invert);
        };
    };
    const auto alphas = [&](bool keep, bool invert) {
        const Picture result = source.after(key(keep, invert));
        return std::pair(int(result.at(0, 0).alpha), int(result.at(1, 0).alpha));
    };
    EXPECT_EQ(alphas(true, false), std::pair(200, 0));
    EXPECT_EQ(alphas(true, true), std::pair(0, 100));
    EXPECT_EQ(alphas(false, false), std::pair(200, 255));
    EXPECT_EQ(alphas(false, true), std::pair(255, 100));
}

TEST(ChromaKey, RampsHueAtBothSides) {
    // Yellow, at 60 degrees, is on the outer bound: a sixth of a turn in single precision is a little
    // above the true one, so the distance is a little short of 255 levels.
    EXPECT_EQ(chromaMatteOf(kGreenKey, {0, 255, 255, 0}), 254);
    const uint8_t between = chromaMatteOf(kGreenKey, {0, 255, 191, 0});
    EXPECT_GT(between, 100);
    EXPECT_LT(between, 150);
}

TEST(ChromaKey, ReachesAcrossTheSeamOfTheCircle) {
    const reference::ChromaArguments reds{0, 20, 20, 1, 100, 0, 1, 100, 0};
    EXPECT_EQ(chromaMatteOf(reds, kPureRed), 0);
    EXPECT_EQ(chromaMatteOf(reds, {30, 0, 255, 0}), 0) << "a hue just below 360 lies on the wrapped ramp";
    EXPECT_EQ(chromaMatteOf(reds, {255, 0, 255, 0}), 255);
}

TEST(ChromaKey, JudgesAGreyBySaturationAndValueAlone) {
    const reference::ChromaArguments greys{120, 0, 0, 0, 10, 0, 0.5f, 10, 0};
    EXPECT_EQ(chromaMatteOf(greys, kGrey), 0);
    EXPECT_EQ(chromaMatteOf(greys, {0, 0, 0, 0}), 255);
}

TEST(ChromaKey, IsOffWhereAnyComponentIsOutside) {
    for (const int32_t outside : {0, 1, 2}) {
        reference::ChromaArguments a{120, 360, 0, 1, 100, 0, 1, 100, 0};
        if (outside == 0) a.huePick = 0, a.innerHue = 10;
        if (outside == 1) a.satPick = 0, a.innerSat = 10;
        if (outside == 2) a.valPick = 0, a.innerVal = 10;
        EXPECT_EQ(chromaMatteOf(a, kPureGreen), 255) << outside;
    }
}

void expectChromaAsReference(const Picture& source, const reference::ChromaArguments& a, bool keep,
                             bool invert) {
    const auto key = [&](ImageEngine& e) {
        return chromaKey(e, {a.huePick, a.innerHue, a.outerHue}, {a.satPick, a.innerSat, a.outerSat},
                         {a.valPick, a.innerVal, a.outerVal}, keep, invert);
    };
    ASSERT_EQ(source.after(key, 3),
              reference::keyed(source, keep, invert,
                               [&](const Hsv& colour) { return reference::chromaMatte(colour, a); }))
        << a.huePick << ' ' << a.innerHue << ' ' << a.outerHue << ", " << a.satPick << ' ' << a.innerSat
        << ' ' << a.outerSat << ", " << a.valPick << ' ' << a.innerVal << ' ' << a.outerVal;
}

TEST(ChromaKey, FollowsItsDefinitionForAnyArguments) {
    const Picture source = manyColours();
    Random random(21);
    const auto draw = [&](double least, double most) {
        const int32_t kind = random.next() % 12;
        if (kind == 0) return 0.0f;
        if (kind == 1) return static_cast<float>(most);
        if (kind == 2) return static_cast<float>(most * 3 - 1);
        if (kind == 3) return -1.0f;
        return static_cast<float>(least + (most - least) * random.next() / 32767.0);
    };
    for (int32_t round = 0; round < 60; ++round) {
        const bool narrow = round % 2 == 0;
        const float hueMost = narrow ? 60 : 360, percentMost = narrow ? 60 : 100;
        const reference::ChromaArguments a{draw(0, 360), draw(0, hueMost),     draw(0, hueMost),
                                           draw(0, 1),   draw(0, percentMost), draw(0, percentMost),
                                           draw(0, 1),   draw(0, percentMost), draw(0, percentMost)};
        expectChromaAsReference(source, a, round % 4 < 2, round % 8 < 4);
    }
}

TEST(ChromaKey, TakesWhatIsNoNumberAndNegativeZero) {
    const Picture source = manyColours();
    for (const float odd : {kNaN, kInfinity, -kInfinity, 1e38f, 1e-40f, -0.0f})
        for (size_t place = 0; place < 9; ++place) {
            reference::ChromaArguments a{110, 20, 30, 0.7f, 20, 30, 0.6f, 20, 30};
            float* const all[] = {&a.huePick,  &a.innerHue, &a.outerHue, &a.satPick, &a.innerSat,
                                  &a.outerSat, &a.valPick,  &a.innerVal, &a.outerVal};
            *all[place] = odd;
            expectChromaAsReference(source, a, true, false);
        }
}

TEST(ChromaKey, ReadsColourOnlyAndNeedsAnImage) {
    const auto key = [](ImageEngine& e) {
        return chromaKey(e, {120, 60, 30}, {1, 50, 50}, {1, 50, 50}, true, false);
    };
    test::expectSameForAnyBands(key);
    test::expectStateTests(key);
    EXPECT_TRUE(test::sameColour(manyColours().after(key), manyColours()));
}

TEST(HueKey, RampsWithTheDistanceInDegrees) {
    // Half a turn of range: 60 degrees of 180 are a third of 255.
    EXPECT_EQ(matteOf(hueKey, kPureGreen, kGreen, 0.5f), 0);
    EXPECT_EQ(matteOf(hueKey, {0, 255, 255, 0}, kGreen, 0.5f), 85);
    EXPECT_EQ(matteOf(hueKey, {255, 255, 0, 0}, kGreen, 0.5f), 85);
    EXPECT_EQ(matteOf(hueKey, {0, 255, 255, 0}, kGreen, 0.1f), 255);
}

TEST(HueKey, DoesNotWrapAround) {
    const Colour orange(255, 43, 0);  // 10 degrees
    EXPECT_LT(matteOf(hueKey, kPureRed, orange, 0.25f), 40);
    EXPECT_EQ(matteOf(hueKey, {43, 0, 255, 0}, orange, 0.25f), 255) << "350 degrees";
}

TEST(HueKey, PutsGreysOutside) {
    EXPECT_EQ(matteOf(hueKey, kGrey, kGreen, 1.0f), 255);
    EXPECT_EQ(matteOf(hueKey, kGrey, kGreen, 1.0f, 100, 255), 254) << "155 * 256 / 156";
    EXPECT_EQ(matteOf(hueKey, kGrey, kGreen, 1.0f, 255, 255), 0) << "the ramp has not begun at its end";
}

TEST(HueKey, WithoutRangeKeysThePickAlone) {
    EXPECT_EQ(matteOf(hueKey, kPureGreen, kGreen, 0.0f), 0);
    EXPECT_EQ(matteOf(hueKey, {0, 255, 60, 0}, kGreen, 0.0f), 255);
}

TEST(SaturationKey, WithoutRangeGivesThePickTheFirstEntryAndAllElseTheLast) {
    const Colour full = kGreen;
    EXPECT_EQ(matteOf(saturationKey, kPureRed, full, 0.0f), 0);
    EXPECT_EQ(matteOf(saturationKey, kGrey, full, 0.0f), 255);
    EXPECT_EQ(matteOf(valueKey, kPureRed, full, 0.0f), 0);
    EXPECT_EQ(matteOf(valueKey, kGrey, full, 0.0f), 255);
}

TEST(SaturationKey, MeasuresTheDistanceFromThePick) {
    // Saturation 0 to 1 with full range: the distance itself.
    EXPECT_EQ(matteOf(saturationKey, kGrey, kGreen, 1.0f), 255);
    EXPECT_EQ(matteOf(saturationKey, kPureGreen, kGreen, 1.0f), 0);
    // The single-precision difference of 1 and 0.8 is just below 0.2, and 255 times it below 51.
    EXPECT_EQ(matteOf(saturationKey, {51, 255, 51, 0}, kGreen, 1.0f), 50);
}

TEST(ValueKey, MeasuresTheDistanceFromThePick) {
    EXPECT_EQ(matteOf(valueKey, {0, 0, 0, 0}, kGreen, 1.0f), 255);
    EXPECT_EQ(matteOf(valueKey, {0, 255, 0, 0}, kGreen, 1.0f), 0);
    EXPECT_EQ(matteOf(valueKey, {0, 0, 204, 0}, kGreen, 0.5f), 101) << "just below 0.4 of 255";
}

TEST(ValueKey, WithAnInfiniteSlopeHasATableOfZeros) {
    for (const ComponentKey key : {hueKey, saturationKey, valueKey})
        for (const Pixel p : {kGrey, kPureGreen, kPureRed})
            EXPECT_EQ(matteOf(key, p, kGreen, 0.5f, 100, 99), 0);
}

TEST(ComponentKeys, LimitBlackAndWhiteToBytes) {
    const Picture source = manyColours();
    for (const ComponentKey key : {hueKey, saturationKey, valueKey}) {
        const auto keyed = [&](int32_t black, int32_t white) {
            return source.after(
                [=](ImageEngine& e) { return key(e, kGreen, 0.4f, black, white, true, false); });
        };
        EXPECT_EQ(keyed(std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max()),
                  keyed(0, 255));
        EXPECT_EQ(keyed(300, -2), keyed(255, 0));
    }
}

TEST(ComponentKeys, OnAnOpaqueImageRemoveChangesNothing) {
    const Picture source(2, {kPureGreen, kPureRed});
    for (const ComponentKey key : {hueKey, saturationKey, valueKey})
        for (const bool invert : {false, true})
            EXPECT_EQ(
                source.after([=](ImageEngine& e) { return key(e, kGreen, 0.2f, 0, 255, false, invert); }),
                source);
}

void expectComponentsAsReference(const Picture& source, Colour pick, float range, int32_t black,
                                 int32_t white, bool keep, bool invert) {
    const float* unit = test::sharedTables().unitFromByte;
    const Hsv picked = rgbToHsv(unit[pick.red()], unit[pick.green()], unit[pick.blue()]);
    const auto expectAs = [&](ComponentKey key, const std::function<uint8_t(const Hsv&)>& matte) {
        const Picture result =
            source.after([=](ImageEngine& e) { return key(e, pick, range, black, white, keep, invert); }, 3);
        ASSERT_EQ(result, reference::keyed(source, keep, invert, matte))
            << range << ' ' << black << ' ' << white << " around hue " << picked.hue << " saturation "
            << picked.saturation << " value " << picked.value;
    };
    expectAs(hueKey,
             [&](const Hsv& c) { return reference::huePickMatte(c.hue, picked.hue, range, black, white); });
    expectAs(saturationKey, [&](const Hsv& c) {
        return reference::unitPickMatte(c.saturation, picked.saturation, range, black, white);
    });
    expectAs(valueKey, [&](const Hsv& c) {
        return reference::unitPickMatte(c.value, picked.value, range, black, white);
    });
}

TEST(ComponentKeys, FollowTheirDefinitionForAnyArguments) {
    const Picture source = manyColours();
    const float ranges[] = {0.0f, 0.1f,  0.37f,  0.5f, 0.51f,     0.9f,      1.0f,
                            7.0f, -1.0f, 1e-30f, kNaN, kInfinity, -kInfinity};
    Random random(8);
    for (int32_t round = 0; round < 80; ++round) {
        const Colour pick =
            round % 10 == 0 ? Colour(90, 90, 90) : Colour(uint32_t(random.next() << 9 ^ random.next()));
        const int32_t black = round % 3 ? random.next() % 256 : 0;
        const int32_t white = round % 3 ? random.next() % 256 : 255;
        expectComponentsAsReference(source, pick, ranges[size_t(random.next()) % std::size(ranges)], black,
                                    white, round % 4 < 2, round % 8 < 4);
    }
}

TEST(ComponentKeys, ReadColourOnlyAndNeedAnImage) {
    for (const ComponentKey key : {hueKey, saturationKey, valueKey}) {
        const auto effect = [=](ImageEngine& e) { return key(e, kGreen, 0.4f, 30, 220, true, false); };
        test::expectSameForAnyBands(effect);
        EXPECT_TRUE(test::sameColour(manyColours().after(effect), manyColours()));
        if (key != saturationKey) test::expectStateTests(effect);
    }
}

TEST(SaturationKey, RefusesAMissingImageWithItsOwnStatus) {
    ImageEngine engine;
    EXPECT_EQ(saturationKey(engine, kGreen, 0.4f, 0, 255, true, false), kStatusRefused);
    engine.load(nullptr, {2, 2, 8, 0, 0, 0});
    EXPECT_EQ(saturationKey(engine, kGreen, 0.4f, 0, 255, true, false), kStatusRefused);
}

}  // namespace
}  // namespace krl
