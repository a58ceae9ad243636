#include <gtest/gtest.h>

#include <algorithm>

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

Picture bleached(const Picture& picture, int32_t opacity, float contrast, float saturation) {
    return picture.after([=](ImageEngine& e) { return bleachBypass(e, opacity, contrast, saturation); }, 2);
}

TEST(BleachBypass, EqualsItsStepsForAnySettings) {
    const Picture source = Picture::random(64, 33);
    for (int32_t opacity : {-5, 0, 1, 128, 255, 900})
        for (float contrast : {-1.0f, 0.0f, 0.7f, 1.0f, 2.0f, 9.0f})
            for (float saturation : {-1.0f, 0.0f, 0.5f, 1.0f, 1.9f, kInfinity}) {
                const auto step = [&](Pixel p) {
                    return reference::bleached(p, opacity, contrast, saturation, sharedTables());
                };
                ASSERT_EQ(bleached(source, opacity, contrast, saturation), each(source, step))
                    << opacity << ' ' << contrast << ' ' << saturation;
            }
}

TEST(BleachBypass, WithoutOpacityKeepsColoursAndStillSaturates) {
    const Picture source = Picture::random(20, 20);
    EXPECT_EQ(bleached(source, 0, 1.0f, 1.0f), source);
    const Picture grey = bleached(source, 0, 1.0f, 0.0f);
    for (size_t i = 0; i < grey.pixels().size(); ++i) {
        const Pixel& p = grey.pixels()[i];
        EXPECT_TRUE(p.blue == p.green && p.green == p.red);
        EXPECT_EQ(p.alpha, source.pixels()[i].alpha);
    }
}

TEST(BleachBypass, OfAnUnknowableSaturationKeepsTheBrightestByte) {
    const Picture source = Picture::random(9, 9);
    const Picture result = bleached(source, 0, kNotANumber, kNotANumber);
    for (size_t i = 0; i < result.pixels().size(); ++i) {
        const Pixel& p = result.pixels()[i];
        EXPECT_EQ(std::min({p.blue, p.green, p.red}), 0);
    }
}

TEST(BleachBypass, TestsTheStateAndIsTheSameForAnyBands) {
    expectStateTests([](ImageEngine& e) { return bleachBypass(e, 1, 1, 1); });
    expectSameForAnyBands([](ImageEngine& e) { return bleachBypass(e, 200, 1.3f, 0.6f); });
}

}  // namespace
}  // namespace krl::test
