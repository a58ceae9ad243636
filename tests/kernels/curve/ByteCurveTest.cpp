#include <gtest/gtest.h>

#include "core/Random.h"
#include "kernels/curve/ByteCurve.h"
#include "support/Picture.h"

namespace krl::test {
namespace {

ByteCurve scrambled(int32_t seed) {
    Random random(seed);
    return byteCurve([&](int32_t) { return random.next() >> 4; });
}

/// Lengths around those that wide look-ups take at once.
constexpr int32_t kLengths[] = {1, 2, 3, 15, 16, 17, 31, 32, 33, 64, 67, 300};

TEST(ByteCurve, KeepsTheLowByteOfItsEntries) {
    const ByteCurve curve = byteCurve([](int32_t i) { return i * 3 - 1000; });
    for (int i = 0; i < 256; ++i) EXPECT_EQ(curve[size_t(i)], uint8_t(i * 3 - 1000));
}

TEST(ByteCurve, ReplacesTheListedChannelsAloneAtAnyLength) {
    const ByteCurve curve = scrambled(5);
    const auto expectChannels = [&](const auto& apply, uint32_t channels) {
        for (int32_t length : kLengths) {
            const Picture source = Picture::random(length, 1, length);
            Picture result = source, expected = source;
            apply(result.pixels().data(), result.pixels().data() + length);
            for (Pixel& p : expected.pixels())
                for (size_t channel = 0; channel < 4; ++channel)
                    if (channels >> channel & 1) p[channel] = curve[p[channel]];
            EXPECT_EQ(result, expected) << channels << " over " << length;
        }
    };
    expectChannels([&](Pixel* a, Pixel* b) { applyCurveTo<0>(a, b, curve); }, 1);
    expectChannels([&](Pixel* a, Pixel* b) { applyCurveTo<1>(a, b, curve); }, 2);
    expectChannels([&](Pixel* a, Pixel* b) { applyCurveTo<2>(a, b, curve); }, 4);
    expectChannels([&](Pixel* a, Pixel* b) { applyCurveTo<3>(a, b, curve); }, 8);
    expectChannels([&](Pixel* a, Pixel* b) { applyCurveTo<0, 1, 2>(a, b, curve); }, 7);
    expectChannels([&](Pixel* a, Pixel* b) { applyCurveTo<0, 1, 2, 3>(a, b, curve); }, 15);
}

TEST(ByteCurve, GivesEachChannelItsOwnAtAnyLength) {
    const ColourCurves curves = {scrambled(1), scrambled(2), scrambled(3)};
    for (int32_t length : kLengths) {
        Picture result = Picture::random(length, 1, length), expected = result;
        applyCurves(result.pixels().data(), result.pixels().data() + length, curves);
        for (Pixel& p : expected.pixels())
            p = {curves.blue[p.blue], curves.green[p.green], curves.red[p.red], p.alpha};
        EXPECT_EQ(result, expected) << length;
    }
}

}  // namespace
}  // namespace krl::test
