#include <gtest/gtest.h>

#include "core/LookupTables.h"
#include "kernels/colour/ColourSpace.h"
#include "kernels/colour/HsvLanes.h"
#include "kernels/colour/LaneColours.h"
#include "support/Colours.h"

namespace krl::test {
namespace {

TEST(HsvLanes, HoldTheEquationForEveryColour) {
    const float* unit = sharedTables().unitFromByte;
    HsvLanes hsv;
    for (int red : allReds())
        for (int green = 0; green < 256; ++green) {
            toHsv(everyBlue(red, green), hsv);
            for (size_t i = 0; i < kBatchPixels; ++i) {
                const Hsv expected = rgbToHsv(unit[red], unit[green], unit[i % 256]);
                ASSERT_EQ(hsv.turn[i], expected.hue == -1 ? 0 : expected.hue / 60.0f) << red << ' ' << green;
                ASSERT_EQ(hsv.saturation[i], expected.saturation) << red << ' ' << green;
                ASSERT_EQ(hsv.value[i], expected.value) << red << ' ' << green;
            }
        }
}

TEST(HsvLanes, ComeBackAsTheEquationSays) {
    HsvLanes hsv;
    ColourLanes colours;
    for (int degrees = 0; degrees < 360; ++degrees)
        for (int level = 0; level <= 40; ++level) {
            const float hue = float(degrees) + 0.37f, value = float(level) / 40;
            for (size_t i = 0; i < kBatchPixels; ++i) {
                hsv.turn[i] = hue / 60.0f;
                hsv.saturation[i] = float(i) / float(kBatchPixels - 1);
                hsv.value[i] = value;
            }
            fromHsv(hsv, colours);
            for (size_t i = 0; i < kBatchPixels; ++i)
                ASSERT_EQ((Rgb{colours.red[i], colours.green[i], colours.blue[i]}),
                          hsvToRgb({hue, hsv.saturation[i], value}))
                    << hue << ' ' << hsv.saturation[i] << ' ' << value;
        }
}

}  // namespace
}  // namespace krl::test
