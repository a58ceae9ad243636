#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "core/LookupTables.h"
#include "kernels/ramp/Curve.h"
#include "krlimage/film.h"
#include "reference/FilmReference.h"
#include "support/Effects.h"

namespace krl::test {
namespace {

/// Every pixel of `picture` through `change`.
template <class Change>
Picture each(Picture picture, Change&& change) {
    for (Pixel& p : picture.pixels()) p = change(p);
    return picture;
}

TEST(MultiColourise, MixesThePictureWithTheRampAtItsLuma) {
    const std::vector<CurveKey> keys{{255, 200, 0, 200}, {10, 0, 60, 12.75f}, {128, 20, 90, 127.5f}};
    const Picture source = Picture::random(50, 30);
    const LookupTables& t = sharedTables();
    std::vector<CurveKey> sorted = keys;
    sortCurveKeys(sorted);
    const auto padded = padCurveKeys(sorted, 255);
    for (float strength : {-1.0f, 0.0f, 0.35f, 1.0f, kInfinity}) {
        const double s = std::clamp(strength, 0.0f, 1.0f);
        const auto step = [&](Pixel p) {
            const auto luma =
                static_cast<float>(double{t.lumaBlue[p.blue]} + t.lumaGreen[p.green] + t.lumaRed[p.red]);
            const auto place = static_cast<float>(luma * (1.0 / 255.0));
            for (int32_t c = 0; c < 3; ++c) {
                const auto samples = buildChannelCurve(padded, c, 255);
                const auto index = static_cast<size_t>(double(samples.size() - 1) * place);
                uint8_t& byte = p[size_t(c)];
                byte = static_cast<uint8_t>(
                    reference::limit(byte * (1.0 - s) + samples[index].value * s, 0, 255));
            }
            return p;
        };
        EXPECT_EQ(source.after([&](ImageEngine& e) { return multiColourise(e, keys, strength); }, 2),
                  each(source, step))
            << strength;
    }
}

TEST(MultiColourise, WithoutStrengthChangesNothing) {
    const Picture source = Picture::random(30, 30);
    EXPECT_EQ(source.after([](ImageEngine& e) { return multiColourise(e, {}, 0.0f); }), source);
}

TEST(MultiColourise, OfNoColoursIsBlackAndOfOneColourFlat) {
    const Picture ramp = Picture::ramp();
    EXPECT_EQ(ramp.after([](ImageEngine& e) { return multiColourise(e, {}, 1.0f); }), Picture(256, 1));
    const std::vector<CurveKey> one{{30, 20, 10, 99}};
    EXPECT_EQ(ramp.after([&](ImageEngine& e) { return multiColourise(e, one, 1.0f); }),
              Picture(256, 1, {10, 20, 30, 255}));
}

TEST(MultiColourise, TestsTheStateAndIsTheSameForAnyBands) {
    const std::vector<CurveKey> keys{{255, 0, 0, 0}, {0, 0, 255, 300}};
    expectStateTests([&](ImageEngine& e) { return multiColourise(e, keys, 1); });
    expectSameForAnyBands([&](ImageEngine& e) { return multiColourise(e, keys, 0.5f); });
    EXPECT_EQ(Picture::ramp().after([&](ImageEngine& e) { return multiColourise(e, keys, kNotANumber); }),
              Picture(256, 1));
}

}  // namespace
}  // namespace krl::test
