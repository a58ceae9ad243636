#include <gtest/gtest.h>

#include "catalogue/Catalogue.h"
#include "look/Extent.h"
#include "look/Look.h"
#include "look/NoisePicture.h"
#include "look/PictureMemory.h"

namespace krl {
namespace {

using test::bytesOf;
using test::noise;

class LookApply : public testing::Test {
protected:
    LookApply() {
        engine_.allocateTables();
        engine_.buildTables();
    }

    Picture after(const std::string& lines, const Picture& before, const PictureFinder& find = {}) {
        Picture picture = copyOf(before);
        Look::read("krlimage look 1\ntitle: T\n" + lines + '\n').apply(engine_, picture, 0, find);
        return picture;
    }

    ImageEngine engine_;
    const Picture before_ = noise(40, 20);
};

/// `before` and a share of its change, computed as it is defined.
uint8_t mixed(int before, int after, int share) {
    return static_cast<uint8_t>((before * (255 - share) + after * share + 127) / 255);
}

TEST_F(LookApply, MakesTheCallsInTurn) {
    const Picture first = after("invert(#RGB)", before_);
    EXPECT_EQ(bytesOf(after("invert(#RGB)\nbrightness(60, #RGB)", before_)),
              bytesOf(after("brightness(60, #RGB)", first)));
    EXPECT_NE(bytesOf(first), bytesOf(before_));
}

TEST_F(LookApply, TakesPercentagesOfThePictureAtHand) {
    EXPECT_EQ(bytesOf(after("fastGaussianBlur(10%, #RGB)", before_)),
              bytesOf(after("fastGaussianBlur(2, #RGB)", before_)));
    EXPECT_EQ(bytesOf(after("zoomBlur(zoomPoint: point(25%, 75%))", before_)),
              bytesOf(after("zoomBlur(zoomPoint: point(10, 15))", before_)));
    // After a call that makes a smaller picture, of that one.
    EXPECT_EQ(bytesOf(after("halfSize\nfastGaussianBlur(20%, #RGB)", before_)),
              bytesOf(after("halfSize\nfastGaussianBlur(2, #RGB)", before_)));
    EXPECT_EQ(after("halfSize", before_).info.width, 20);
}

TEST_F(LookApply, KeepsAShareOfAChange) {
    const Picture full = after("invert(#RGB)", before_), part = after("invert(#RGB, mix: 0.25)", before_);
    for (size_t i = 0; i < bytesOf(part).size(); ++i)
        ASSERT_EQ(part.pixels[i], mixed(before_.pixels[i], full.pixels[i], 64)) << i;
    EXPECT_EQ(bytesOf(after("invert(#RGB, mix: 0)", before_)), bytesOf(before_));
    EXPECT_EQ(bytesOf(after("invert(#RGB, mix: 1)", before_)), bytesOf(full));
}

TEST_F(LookApply, KeepsAChangeWhereAMaskIsBright) {
    const Picture full = after("invert(#RGB)", before_), mask = noise(40, 20, 9);
    const Picture part = after("invert(#RGB, mask: image(\"m\"))", before_, [&](const std::string& name) {
        EXPECT_EQ(name, "m");
        return mask;
    });
    for (size_t i = 0; i < bytesOf(part).size(); ++i) {
        const uint8_t* m = mask.pixels + i / 4 * 4;
        ASSERT_EQ(part.pixels[i], mixed(before_.pixels[i], full.pixels[i], (m[0] + m[1] + m[2]) / 3)) << i;
    }
}

TEST_F(LookApply, KeepsAChangeWithinARegionWithASoftBorder) {
    const Picture full = after("invert(#RGB)", before_);
    const Picture part = after("invert(#RGB, region: rect(10, 5, 30, 15), feather: 3)", before_);
    for (int32_t y = 0; y < 20; ++y)
        for (int32_t x = 0; x < 40; ++x) {
            const auto ramp = [](int32_t at, int32_t first, int32_t end) {
                const int32_t inside = std::min(at - first, end - 1 - at) + 1;
                return std::clamp(inside * 255 / 4, 0, 255);
            };
            const int32_t share = (ramp(x, 10, 30) * ramp(y, 5, 15) + 127) / 255;
            for (int32_t c = 0; c < 4; ++c) {
                const int32_t i = (y * 40 + x) * 4 + c;
                ASSERT_EQ(part.pixels[i], mixed(before_.pixels[i], full.pixels[i], share)) << x << ' ' << y;
            }
        }
    EXPECT_EQ(bytesOf(after("invert(#RGB, region: rect(25%, 25%, 75%, 75%), feather: 15%)", before_)),
              bytesOf(part));
}

TEST_F(LookApply, SaysWhatIsWrongWithAnExtent) {
    const auto errorOf = [&](const std::string& line) -> std::string {
        try {
            after(line, before_, [](const std::string&) { return noise(3, 2); });
        } catch (const LookError& error) {
            return error.what();
        }
        return "";
    };
    EXPECT_EQ(errorOf("invert(mix: 2)"), "line 3: invert: mix: expected a number from 0 to 1, got 2");
    EXPECT_EQ(errorOf("invert(feather: 2)"), "line 3: invert: feather needs a region");
    EXPECT_EQ(errorOf("invert(region: rect(5, 5, 5, 9))"),
              "line 3: invert: region: expected left before right and top before bottom, got [5, 5, 5, 9]");
    EXPECT_EQ(errorOf("invert(mask: 3)"), "line 3: invert: mask: expected a picture, got 3");
    EXPECT_EQ(errorOf("invert(mask: image(\"m\"))"),
              "line 3: mask: expected a picture of 40 by 20 pixels, got one of 3 by 2");
    EXPECT_EQ(errorOf("halfSize(mix: 0.5)"), "line 3: halfSize: mix is for methods that rewrite the picture");
}

TEST_F(LookApply, RemembersThePictureBefore) {
    EXPECT_EQ(bytesOf(after("invert(#RGB)\ncomposite($before, #normal)", before_)),
              bytesOf(after("invert(#RGB)\ncomposite(image(\"x\"), #normal)", before_,
                            [&](const std::string&) { return before_; })));
}

TEST_F(LookApply, SaysWhichCallFailed) {
    Picture picture = copyOf(before_);
    const Look look =
        Look::read("krlimage look 1\ntitle: T\n\ninvert(#RGB)\ncomposite(image(\"small\"), #normal)\n");
    try {
        look.apply(engine_, picture, 1, [](const std::string&) { return noise(2, 2); });
        FAIL();
    } catch (const LookError& error) {
        EXPECT_EQ(error.line(), 5);
        EXPECT_EQ(error.scriptError(), "Failed Composite function (Image)");
    }
    EXPECT_THROW(look.apply(engine_, picture, 1), LookError);
}

}  // namespace
}  // namespace krl
