#include <gtest/gtest.h>

#include "catalogue/Catalogue.h"
#include "krlimage/pixel.h"
#include "look/Extent.h"
#include "look/Look.h"
#include "look/NoisePicture.h"
#include "look/PictureMemory.h"
#include "look/Placement.h"
#include "look/Resample.h"

namespace krl {
namespace {

using test::noise;

Picture pictureOf(int32_t width, const std::vector<Pixel>& pixels) {
    Picture picture = Picture::blank(width, static_cast<int32_t>(pixels.size()) / width);
    std::copy(pixels.begin(), pixels.end(), reinterpret_cast<Pixel*>(picture.pixels));
    return picture;
}

std::vector<Pixel> pixelsOf(const Picture& picture) {
    const auto* first = reinterpret_cast<const Pixel*>(picture.pixels);
    return {first, first + picture.info.width * picture.info.height};
}

std::vector<Pixel> drawn(const Picture& picture, int32_t width, int32_t height, const PlacedSize& size) {
    const Picture ground = Picture::blank(width, height, 7);
    drawResampled(ground, picture, size);
    return pixelsOf(ground);
}

constexpr Pixel kGround{7, 7, 7, 7};

TEST(Resample, ShrinksToTheMeanByAlpha) {
    const Picture four = pictureOf(2, {{10, 0, 0, 255}, {20, 0, 0, 255}, {30, 0, 0, 255}, {41, 0, 9, 255}});
    EXPECT_EQ(drawn(four, 1, 1, {1, 1, 0, 0}), (std::vector<Pixel>{{25, 0, 2, 255}}));
    const Picture half = pictureOf(2, {{10, 0, 0, 255}, {250, 250, 250, 0}});
    EXPECT_EQ(drawn(half, 1, 1, {1, 1, 0, 0}), (std::vector<Pixel>{{10, 0, 0, 128}}));
    // Three pixels in the place of two: each covers one and a half.
    const Picture three = pictureOf(3, {{0, 0, 0, 255}, {90, 0, 0, 255}, {240, 0, 0, 255}});
    EXPECT_EQ(drawn(three, 2, 1, {2, 1, 0, 0}), (std::vector<Pixel>{{30, 0, 0, 255}, {190, 0, 0, 255}}));
}

TEST(Resample, GrowsBetweenTheNearestPixels) {
    const Picture two = pictureOf(2, {{0, 0, 0, 255}, {100, 0, 0, 255}});
    EXPECT_EQ(drawn(two, 4, 1, {4, 1, 0, 0}),
              (std::vector<Pixel>{{0, 0, 0, 255}, {25, 0, 0, 255}, {75, 0, 0, 255}, {100, 0, 0, 255}}));
}

TEST(Resample, LeavesOutWhatIsOutside) {
    const Picture two = pictureOf(2, {{0, 0, 0, 255}, {100, 0, 0, 255}});
    EXPECT_EQ(drawn(two, 2, 1, {4, 1, -2, 0}), (std::vector<Pixel>{{75, 0, 0, 255}, {100, 0, 0, 255}}));
    EXPECT_EQ(drawn(two, 2, 1, {2, 1, 1, 0}), (std::vector<Pixel>{kGround, {0, 0, 0, 255}}));
    EXPECT_EQ(drawn(two, 2, 1, {4, 1, 0, 1}), (std::vector<Pixel>{kGround, kGround}));
    EXPECT_EQ(drawn(two, 2, 1, {1000000000, 1000000000, -999999998, -5}),
              (std::vector<Pixel>{{100, 0, 0, 255}, {100, 0, 0, 255}}));
}

TEST(Resample, KeepsEveryByteOfAPictureInItsOwnSize) {
    const Picture picture = noise(5, 3);
    EXPECT_EQ(drawn(picture, 5, 3, {5, 3, 0, 0}), pixelsOf(picture));
}

TEST(Resample, HasTheSameBytesEverywhere) {
    uint32_t sum = 0;
    for (const Pixel& pixel : drawn(noise(31, 17), 40, 30, {37, 11, 2, 3}))
        for (size_t i = 0; i < 4; ++i) sum = sum * 31 + pixel[i];
    EXPECT_EQ(sum, 3896469616u);
}

class Placements : public testing::Test {
protected:
    Placements() {
        engine_.allocateTables();
        engine_.buildTables();
    }

    Picture after(const std::string& line, const Picture& second) {
        Picture picture = copyOf(before_);
        Look::read("krlimage look 1\ntitle: T\n" + line + '\n')
            .apply(engine_, picture, 0, [&](const std::string&) { return second; });
        return picture;
    }
    /// The same as by hand.
    void expectPlaced(const std::string& arguments, const Placement& placement) {
        const Picture over = noise(8, 8, 9);
        const Picture ground = placed(over, placement, before_.info.width, before_.info.height);
        EXPECT_EQ(pixelsOf(after("composite(image(\"over\"), #screen, " + arguments + ")", over)),
                  pixelsOf(after("composite(image(\"ground\"), #screen)", ground)))
            << arguments;
    }

    ImageEngine engine_;
    const Picture before_ = noise(40, 20);
};

TEST_F(Placements, PutASecondPictureIntoALook) {
    using Fit = Placement::Fit;
    expectPlaced("fit: #none", {});
    expectPlaced("fit: #contain", {Fit::Contain, 1, {}});
    expectPlaced("fit: #cover, mix: 1.0", {Fit::Cover, 1, {}});
    expectPlaced("fit: #stretch, scale: 0.5", {Fit::Stretch, 0.5, {}});
    expectPlaced("place: point(-3, 50%)", {Fit::None, 1, Point{.y = 10, .x = -3}});
    const Picture small = placed(before_, {Fit::None, 0.25, {}}, 40, 20);
    EXPECT_EQ(pixelsOf(after("composite($before, #normal, scale: 0.25)", {})),
              pixelsOf(after("composite(image(\"small\"), #normal)", small)));
}

TEST_F(Placements, CoverWhatTheySay) {
    const Picture white = Picture::blank(4, 4, 255);
    const auto cover = [&](const Placement& placement) {
        const Picture ground = placed(white, placement, 40, 20);
        std::vector<int32_t> sides = {40, 20, -1, -1};
        for (int32_t i = 0; i < 800; ++i)
            if (pixelsOf(ground)[size_t(i)].alpha == 255)
                sides = {std::min(sides[0], i % 40), std::min(sides[1], i / 40), std::max(sides[2], i % 40),
                         std::max(sides[3], i / 40)};
        return sides;
    };
    using Fit = Placement::Fit;
    using Sides = std::vector<int32_t>;
    EXPECT_EQ(cover({}), (Sides{18, 8, 21, 11}));
    EXPECT_EQ(cover({Fit::Contain, 1, {}}), (Sides{10, 0, 29, 19}));
    EXPECT_EQ(cover({Fit::Cover, 1, {}}), (Sides{0, 0, 39, 19}));
    EXPECT_EQ(cover({Fit::Stretch, 0.5, {}}), (Sides{10, 5, 29, 14}));
    EXPECT_EQ(cover({Fit::None, 2, Point{.y = 2, .x = 1}}), (Sides{1, 2, 8, 9}));
    EXPECT_EQ(cover({Fit::None, 0.001, Point{.y = 2, .x = 1}}), (Sides{1, 2, 1, 2})) << "a pixel at least";
}

TEST_F(Placements, KeepTheOrderOfBytes) {
    Picture redFirst = noise(4, 4, 5);
    redFirst.order = PixelOrder::RGBA;
    EXPECT_EQ(placed(redFirst, {}, 40, 20).order, PixelOrder::RGBA);
}

TEST_F(Placements, AreRefusedWithTheLine) {
    const auto complaint = [&](const std::string& line) -> std::string {
        try {
            after(line, before_);
        } catch (const LookError& error) {
            return error.what();
        }
        return "";
    };
    EXPECT_EQ(complaint("composite($before, #normal, fit: #wide)"),
              "line 3: composite: fit: expected #none, #contain, #cover or #stretch, got #wide");
    EXPECT_EQ(complaint("composite($before, #normal, scale: 0)"),
              "line 3: composite: scale: expected a number above 0, up to 100, got 0");
    EXPECT_EQ(complaint("composite($before, #normal, scale: 101)"),
              "line 3: composite: scale: expected a number above 0, up to 100, got 101");
    EXPECT_EQ(complaint("composite($before, #normal, place: 5)"),
              "line 3: composite: place: expected a point, got 5");
    EXPECT_EQ(complaint("sepia(fit: #cover)").substr(0, 14), "line 3: sepia ");
}

}  // namespace
}  // namespace krl
