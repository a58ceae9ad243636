#include <gtest/gtest.h>

#include <vector>

#include "krlimage/film.h"
#include "reference/FilmReference.h"
#include "reference/TentBlurReference.h"
#include "support/Effects.h"

namespace krl::test {
namespace {

Picture night(const Picture& picture, int32_t blur, const reference::Night& n, ChannelTarget target) {
    const Colour colour(n.colour.red, n.colour.green, n.colour.blue);
    return picture.after(
        [&](ImageEngine& e) {
            return dayForNight(e, {blur, n.blurOpacity, colour, n.colorOpacity, n.highlightOpacity,
                                   n.saturation, n.brightness, n.contrast, n.gamma, target});
        },
        3);
}

Picture expectedNight(Picture picture, int32_t blur, const reference::Night& n, bool withAlpha) {
    const auto soft = reference::tentPixels(picture.pixels(), picture.height(), picture.width(), blur, 0, 3);
    for (size_t i = 0; i < soft.size(); ++i)
        picture.pixels()[i] =
            reference::nocturnal(picture.pixels()[i], soft[i], n, withAlpha, sharedTables());
    return picture;
}

constexpr reference::Night kMoonlight{0.4f, {200, 140, 90, 0}, 0.3f, 0.6f, 0.7f, -20, 1.2f, 0.9f};

TEST(DayForNight, EqualsItsStepsForAnySettings) {
    const Picture source = Picture::random(40, 21);
    std::vector<reference::Night> nights{kMoonlight};
    for (float opacity : {-1.0f, 0.0f, 1.0f, 3.0f}) {
        reference::Night n = kMoonlight;
        n.blurOpacity = opacity;
        nights.push_back(n);
        n.colorOpacity = 1.0f - opacity;
        nights.push_back(n);
        n.highlightOpacity = opacity;
        n.saturation = 1.0f;
        nights.push_back(n);
        n.brightness = 4000;
        n.contrast = opacity;
        nights.push_back(n);
        n.gamma = 7.0f;
        n.brightness = 3;
        nights.push_back(n);
    }
    for (size_t i = 0; i < nights.size(); ++i)
        for (int32_t blur : {0, 5}) {
            EXPECT_EQ(night(source, blur, nights[i], ChannelTarget::RGB),
                      expectedNight(source, blur, nights[i], false))
                << i;
            EXPECT_EQ(night(source, blur, nights[i], ChannelTarget::RGBA),
                      expectedNight(source, blur, nights[i], true))
                << i;
        }
}

TEST(DayForNight, FallsOneShortOfFullStrength) {
    reference::Night n{1, {255, 255, 255, 0}, 1, 0, 1, 0, 1, 1};
    const Picture lit = night(Picture(1, 1, {200, 200, 200, 255}), 0, n, ChannelTarget::RGB);
    EXPECT_EQ(lit.at(0, 0), (Pixel{199, 199, 199, 255}));
}

TEST(DayForNight, SurvivesAGammaOfNothing) {
    for (float gamma : {0.0f, -0.0f, -3.0f, kNotANumber}) {
        reference::Night n = kMoonlight;
        n.gamma = gamma;
        n.saturation = n.contrast = n.colorOpacity = kNotANumber;
        night(Picture::random(9, 9), 2, n, ChannelTarget::RGBA);
    }
    reference::Night n{1, {255, 255, 255, 0}, 1, 0, 1, 0, 1, 0};
    EXPECT_EQ(night(Picture(1, 1, {200, 0, 1, 9}), 0, n, ChannelTarget::RGB).at(0, 0), (Pixel{255, 0, 0, 9}));
}

TEST(DayForNight, TestsTheStateAndIsTheSameForAnyBands) {
    const auto effect = [](ImageEngine& e) {
        return dayForNight(
            e, {3, 0.5f, Colour(40, 60, 200), 0.4f, 0.5f, 0.8f, -10, 1.1f, 0.8f, ChannelTarget::RGBA});
    };
    expectStateTests(effect);
    expectSameForAnyBands(effect);
}

}  // namespace
}  // namespace krl::test
