#include <array>

#include "catalogue/Catalogue.h"
#include "effects/key/DifferenceSpan.h"
#include "effects/key/KeyChoices.h"
#include "kernels/curve/LevelsStretch.h"
#include "kernels/matte/KeyMatte.h"

namespace krl {

namespace {

/// The matte of every difference.
class DifferenceMattes {
public:
    DifferenceMattes(int32_t black, int32_t white) {
        const LevelsStretch stretch(black, white);
        for (int32_t d = -255; d <= 255; ++d) mattes_[static_cast<size_t>(d + 255)] = stretch(d);
    }

    /// Writes the mattes of `count` differences.
    void mattesOf(const int16_t* differences, size_t count, uint8_t* mattes) const {
        for (size_t i = 0; i < count; ++i) mattes[i] = mattes_[size_t(differences[i] + 255)];
    }

private:
    std::array<uint8_t, 511> mattes_;
};

}  // namespace

/// Keys on how far the backing's channel exceeds the larger of the other two: the matte is that difference,
/// stretched from 0 at `blackValue` to 255 at `whiteValue`.
Status colourDifference(ImageEngine& engine, KeyColour differenceColour, int32_t blackValue,
                        int32_t whiteValue, bool keep, bool invert) {
    const DifferenceMattes table(blackValue, whiteValue);
    return keyEachSpan(engine, keep, invert, [&](const Pixel* pixels, size_t count, uint8_t* mattes) {
        std::array<int16_t, kBatchPixels> differences;
        differencesOf(pixels, count, differenceColour, differences.data());
        table.mattesOf(differences.data(), count, mattes);
    });
}

void describeColourDifference(Catalogue& catalogue) {
    catalogue.add("krlImageColourDifference", colourDifference)
        .summary("Keys on how far the backing's colour exceeds the other two.")
        .words("green screen, greenscreen, blue screen, key, matte, cut out")
        .symbol("differenceColour", backings(), refused("Colour Difference invalid input colour (Image)"),
                "colour of the backing")
        .integer("blackValue", {.from = 0, .to = 255, .example = 20},
                 "difference up to which a pixel is the subject")
        .integer("whiteValue", {.from = 0, .to = 255, .example = 60},
                 "difference above which it is the backing")
        .symbol("keepRemove", keepOrRemove(),
                refused("Colour Difference invalid input keep_remove option (Image)"), kKeepMeaning)
        .failsWith("ColourDifference input failure (Image)")
        .thenCompare()
        .symbol("invert", invertOrNot(), refused("Colour Difference invalid input invert option (Image)"),
                kInvertBackingMeaning)
        .showing("false")
        .inputFailure("Colour Difference input failure (Image)")
        .worksPerPixel()
        .failed("Failed Colour Difference function (Image)");
}

}  // namespace krl
