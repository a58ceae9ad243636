#include <gtest/gtest.h>

#include "kernels/curve/ByteCurve.h"
#include "kernels/curve/SaturatedSteps.h"
#include "support/Picture.h"

namespace krl::test {
namespace {

ByteCurve shifted(int32_t by, bool complemented = false) {
    return byteCurve([=](int32_t i) { return clampByte((complemented ? 255 - i : i) + by); });
}

/// Every byte in every channel, and some more, so that a span ends anywhere.
Picture everyByte(int32_t more) {
    Picture picture(256 + more, 1);
    for (int32_t x = 0; x < 256 + more; ++x) {
        const auto at = [&](int32_t turn) { return static_cast<uint8_t>(x * turn + turn); };
        picture.pixels()[size_t(x)] = {at(1), at(3), at(5), at(7)};
    }
    return picture;
}

void expectCurves(const ChannelCurves& curves, const std::string& what) {
    const auto steps = SaturatedSteps::of(curves);
    ASSERT_TRUE(steps) << what;
    for (int32_t more : {0, 1, 7, 15}) {
        Picture result = everyByte(more), expected = result;
        steps->apply(result.pixels().data(), result.pixels().data() + 256 + more);
        for (Pixel& p : expected.pixels())
            for (size_t channel = 0; channel < 4; ++channel)
                if (curves[channel]) p[channel] = (*curves[channel])[p[channel]];
        ASSERT_EQ(result, expected) << what << ", " << 256 + more << " pixels";
    }
}

TEST(SaturatedSteps, AreEveryShiftOfALevelAndOfItsComplement) {
    for (bool complemented : {false, true})
        for (int32_t by = -255; by <= 255; ++by) {
            const ByteCurve curve = shifted(by, complemented);
            expectCurves({&curve, &curve, &curve, nullptr}, std::to_string(by));
        }
}

TEST(SaturatedSteps, DifferFromChannelToChannel) {
    const ByteCurve blue = shifted(40), green = shifted(-3, true), red = shifted(-255), alpha = shifted(0, true);
    expectCurves({&blue, &green, &red, &alpha}, "all");
    expectCurves({nullptr, &green, nullptr, &alpha}, "two");
    expectCurves({}, "none");
}

TEST(SaturatedSteps, AreNoOtherCurve) {
    for (int32_t place : {0, 1, 127, 128, 254, 255})
        for (int32_t by : {-200, -20, 0, 20, 200}) {
            ByteCurve curve = shifted(by);
            curve[size_t(place)] ^= 1;
            EXPECT_FALSE(SaturatedSteps::of({nullptr, &curve, nullptr, nullptr})) << place << " " << by;
        }
}

TEST(SaturatedSteps, ServeTheLoadedImage) {
    for (int32_t by : {-300, -20, 20, 300}) {
        const ByteCurve curve = shifted(by, by < 0);
        const Picture source = everyByte(9);
        Picture expected = source;
        for (Pixel& p : expected.pixels()) p.blue = curve[p.blue];
        EXPECT_EQ(source.after([&](ImageEngine& engine) { return applyCurveTo<0>(engine, curve); }), expected) << by;
    }
}

}  // namespace
}  // namespace krl::test
