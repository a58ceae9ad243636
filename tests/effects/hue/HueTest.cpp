#include <gtest/gtest.h>

#include "krlimage/hue.h"
#include "reference/PointReference.h"
#include "support/Colours.h"
#include "support/Effects.h"

namespace krl::test {
namespace {

TEST(Hue, FollowTheirStepsForAllColoursThereAre) {
    for (int red : allReds()) {
        const Picture plane = colourPlane(red);
        expectEach(
            plane, [](ImageEngine& e) { return hueShift(e, 37, 100); },
            [](Pixel p) { return reference::newHue(p, 37, 100, true); });
        expectEach(
            plane, [](ImageEngine& e) { return lightnessHSV(e, 1.1f); },
            [](Pixel p) { return reference::lightnessHSV(p, 1.1f); });
        if (HasFailure()) return;
    }
}

TEST(Hue, GiveTheSameBytesForAnyBands) {
    expectSameForAnyBands([](ImageEngine& e) { return hueColourise(e, 40, 80); });
    expectSameForAnyBands([](ImageEngine& e) { return hueShift(e, 40, 80); });
    expectSameForAnyBands([](ImageEngine& e) { return lightnessHLS(e, 1.3f); });
    expectSameForAnyBands([](ImageEngine& e) { return lightnessHSV(e, 1.3f); });
    expectSameForAnyBands([](ImageEngine& e) { return posteriseHue(e, 5, 20); });
    expectSameForAnyBands([](ImageEngine& e) { return posteriseHue(e, 5, 5000); });
}

TEST(Hue, TestTheStateFirst) {
    expectStateTests([](ImageEngine& e) { return hueColourise(e, 40, 80); });
    expectStateTests([](ImageEngine& e) { return hueShift(e, 40, 80); });
    expectStateTests([](ImageEngine& e) { return lightnessHLS(e, 1.3f); });
    expectStateTests([](ImageEngine& e) { return lightnessHSV(e, 1.3f); });
    expectStateTests([](ImageEngine& e) { return posteriseHue(e, 5, 20); });
    expectStateTests([](ImageEngine& e) { return posteriseHue(e, 0, 20); });
}

}  // namespace
}  // namespace krl::test
