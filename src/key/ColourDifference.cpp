#include <array>

#include "key/DifferenceKeys.h"
#include "key/KeyMatte.h"

namespace krl {

namespace {

/// The matte of every difference.
class DifferenceMattes {
public:
    DifferenceMattes(int32_t black, int32_t white) {
        const auto slope = static_cast<float>(256.0 / wrapAdd(wrapSubtract(white, black), 1));
        for (int32_t d = -255; d <= 255; ++d) {
            const uint8_t level = clampByte(truncate(double(wrapSubtract(d, black)) * slope));
            mattes_[size_t(d + 255)] = d > white ? 255 : d < black ? 0 : level;
        }
    }

    uint8_t operator[](int32_t difference) const { return mattes_[size_t(difference + 255)]; }

private:
    std::array<uint8_t, 511> mattes_;
};

}  // namespace

Status colourDifference(ImageEngine& engine, KeyColour differenceColour, int32_t blackValue,
                        int32_t whiteValue, bool keep, bool invert) {
    const DifferenceMattes mattes(blackValue, whiteValue);
    return withKeyChannel(differenceColour, [&](auto key) {
        return keyEachPixel(engine, keep, invert,
                            [&](const Pixel& p) { return mattes[keyDifference<key>(p)]; });
    });
}

}  // namespace krl
