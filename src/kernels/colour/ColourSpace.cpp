#include "kernels/colour/ColourSpace.h"

#include <bit>

namespace krl {

Rgb hsvToRgb(const Hsv& colour) {
    const float value = colour.value, saturation = colour.saturation;
    const auto channels = [](float red, float green, float blue) -> Rgb {
        return {channelFromUnit(red), channelFromUnit(green), channelFromUnit(blue)};
    };
    if (saturation == 0.0f) return channels(value, value, value);

    const float hue = colour.hue == 360.0f ? 0.0f : colour.hue;
    const auto turn = static_cast<float>(hue / 60.0);
    const int32_t sector = truncate(turn);
    const auto fraction = static_cast<float>(double(turn) - sector);
    const auto low = static_cast<float>(value * (1.0 - saturation));
    const auto falling = static_cast<float>(value * (1.0 - double(fraction) * saturation));
    const auto rising = static_cast<float>(value * (1.0 - saturation * (1.0 - fraction)));
    switch (sector) {
        case 0:
            return channels(value, rising, low);
        case 1:
            return channels(falling, value, low);
        case 2:
            return channels(low, value, rising);
        case 3:
            return channels(low, falling, value);
        case 4:
            return channels(rising, low, value);
        case 5:
            return channels(value, low, falling);
        default:
            return channels(value, fraction, std::bit_cast<float>(sector));
    }
}

}  // namespace krl
