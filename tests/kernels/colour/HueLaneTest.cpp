#include <gtest/gtest.h>

#include "core/LookupTables.h"
#include "kernels/colour/ColourSpace.h"
#include "kernels/colour/HueLane.h"
#include "support/Picture.h"

namespace krl::test {
namespace {

/// Steps through bytes that between them meet every kind of colour, 0 and 255 included.
constexpr int kByteStep = 5;

TEST(HueLane, DividesLevelsBy255AsTheTableDoes) {
    for (int level = 0; level < 256; ++level)
        ASSERT_EQ(unitFromLevel(level), sharedTables().unitFromByte[level]) << level;
}

TEST(HueLane, EqualsTheEquation) {
    const float* unit = sharedTables().unitFromByte;
    for (int red = 0; red < 256; red += kByteStep)
        for (int green = 0; green < 256; ++green)
            for (int blue = 0; blue < 256; blue += 3) {
                const Hsv hsv = rgbToHsv(unit[red], unit[green], unit[blue]);
                const HueLane lane = hueLane(red, green, blue);
                const bool grey = hsv.hue == -1;
                ASSERT_EQ(lane.hue, grey ? 0 : hsv.hue) << red << ' ' << green << ' ' << blue;
                ASSERT_EQ(lane.value, hsv.value);
                ASSERT_EQ(lane.value == 0 ? 0 : lane.spread / lane.value, hsv.saturation);
            }
}

}  // namespace
}  // namespace krl::test
