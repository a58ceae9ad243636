#include "player/host/Palette.h"

#include <array>
#include <span>

namespace krl::player {

namespace {

constexpr Pixel opaque(uint8_t red, uint8_t green, uint8_t blue) { return {blue, green, red, 255}; }
constexpr Pixel grey(uint8_t level) { return opaque(level, level, level); }

constexpr Pixel kSixteen[] = {
    opaque(0xFF, 0xFF, 0xFF), opaque(0xFC, 0xF3, 0x05), opaque(0xFF, 0x64, 0x02), opaque(0xDD, 0x08, 0x06),
    opaque(0xF2, 0x08, 0x84), opaque(0x46, 0x00, 0xA5), opaque(0x00, 0x00, 0xD4), opaque(0x02, 0xAB, 0xEA),
    opaque(0x1F, 0xB7, 0x14), opaque(0x00, 0x64, 0x11), opaque(0x56, 0x2C, 0x05), opaque(0x90, 0x71, 0x3A),
    opaque(0xC0, 0xC0, 0xC0), opaque(0x80, 0x80, 0x80), opaque(0x40, 0x40, 0x40), opaque(0x00, 0x00, 0x00)};

constexpr int kCube = 215;  ///< without black

/// A cube of six levels from white to black, which fills what is left.
constexpr Pixel webColour(int index) {
    if (index >= kCube) return grey(0);
    const auto level = [](int step) { return static_cast<uint8_t>(255 - 51 * step); };
    return opaque(level(index / 36), level(index / 6 % 6), level(index % 6));
}

/// The same cube, then ten levels each of red, green, blue and grey, and black.
constexpr Pixel systemColour(int index) {
    constexpr int kRamp = 10;
    constexpr uint8_t kLevels[kRamp] = {0xEE, 0xDD, 0xBB, 0xAA, 0x88, 0x77, 0x55, 0x44, 0x22, 0x11};
    if (index < kCube || index == 255) return webColour(index);
    const int ramp = (index - kCube) / kRamp;
    const uint8_t level = kLevels[(index - kCube) % kRamp];
    if (ramp == 3) return grey(level);
    return opaque(ramp == 0 ? level : uint8_t{0}, ramp == 1 ? level : uint8_t{0},
                  ramp == 2 ? level : uint8_t{0});
}

template <Pixel (*kColour)(int)>
constexpr std::array<Pixel, 256> everyColour() {
    std::array<Pixel, 256> colours{};
    for (int i = 0; i < 256; ++i) colours[static_cast<size_t>(i)] = kColour(i);
    return colours;
}

/// `count` levels from white to black.
template <size_t Count>
constexpr std::array<Pixel, Count> greys() {
    std::array<Pixel, Count> colours{};
    for (size_t i = 0; i < Count; ++i) colours[i] = grey(static_cast<uint8_t>(255 - 255 * i / (Count - 1)));
    return colours;
}

constexpr auto kSystem = everyColour<systemColour>();
constexpr auto kWeb = everyColour<webColour>();
constexpr auto kTwo = greys<2>();
constexpr auto kFour = greys<4>();
constexpr auto kSixteenGreys = greys<16>();
constexpr auto kGreys = greys<256>();

std::span<const Pixel> coloursOf(Palette palette, int32_t depth) {
    const bool inGreys = palette == Palette::Greys;
    switch (depth) {
        case 1:
            return kTwo;
        case 2:
            return kFour;
        case 4:
            return inGreys ? std::span<const Pixel>(kSixteenGreys) : kSixteen;
        default:
            return inGreys ? kGreys : palette == Palette::Web ? kWeb : kSystem;
    }
}

int squared(int number) { return number * number; }

int distanceOf(const Pixel& one, const Pixel& other) {
    return squared(one.red - other.red) + squared(one.green - other.green) + squared(one.blue - other.blue);
}

}  // namespace

Pixel paletteColour(Palette palette, int32_t depth, uint8_t index) {
    const std::span<const Pixel> colours = coloursOf(palette, depth);
    return colours[index < colours.size() ? index : colours.size() - 1];
}

uint8_t nearestIndex(Palette palette, int32_t depth, const Pixel& colour) {
    const std::span<const Pixel> colours = coloursOf(palette, depth);
    size_t nearest = 0;
    int least = INT32_MAX;
    for (size_t i = 0; i < colours.size() && least > 0; ++i) {
        const int distance = distanceOf(colours[i], colour);
        if (distance < least) {
            least = distance;
            nearest = i;
        }
    }
    const bool black = distanceOf(colours[nearest], colours.back()) == 0;
    return static_cast<uint8_t>(black ? colours.size() - 1 : nearest);
}

}  // namespace krl::player
