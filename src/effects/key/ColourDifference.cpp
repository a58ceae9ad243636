#include <array>

#include "effects/key/DifferenceKeys.h"
#include "effects/key/DifferenceSpan.h"
#include "kernels/matte/KeyMatte.h"

namespace krl {

namespace {

/// The matte of every difference.
class DifferenceMattes {
public:
    DifferenceMattes(int32_t black, int32_t white) {
        const auto slope = static_cast<float>(256.0 / wrapAdd(wrapSubtract(white, black), 1));
        for (int32_t d = -255; d <= 255; ++d) {
            const uint8_t level = clampByte(truncate(double(wrapSubtract(d, black)) * slope));
            const int32_t place = d + 255;
            mattes_[size_t(place)] = d > white ? 255 : d < black ? 0 : level;
        }
    }

    /// Writes the mattes of `count` differences.
    void mattesOf(const int16_t* differences, ptrdiff_t count, uint8_t* mattes) const {
        for (ptrdiff_t i = 0; i < count; ++i) mattes[i] = mattes_[size_t(differences[i] + 255)];
    }

private:
    std::array<uint8_t, 511> mattes_;
};

}  // namespace

Status colourDifference(ImageEngine& engine, KeyColour differenceColour, int32_t blackValue,
                        int32_t whiteValue, bool keep, bool invert) {
    const DifferenceMattes table(blackValue, whiteValue);
    return keyEachSpan(engine, keep, invert, [&](const Pixel* pixels, ptrdiff_t count, uint8_t* mattes) {
        std::array<int16_t, kMatteBatch> differences;
        differencesOf(pixels, count, differenceColour, differences.data());
        table.mattesOf(differences.data(), count, mattes);
    });
}

}  // namespace krl
