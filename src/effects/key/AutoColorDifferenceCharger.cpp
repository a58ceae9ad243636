#include "catalogue/Call.h"
#include "effects/key/AutoKey.h"
#include "effects/key/KeyChoices.h"
#include "kernels/matte/KeyMatte.h"

namespace krl {

/// Keys as `autoColorDifference` does, but folds the matte into the alpha that is there.
Status autoColorDifferenceCharger(ImageEngine& engine, const AutoKeySettings& settings, bool keep,
                                  bool invert, KeyColour& used) {
    return keyAutomatically(engine, settings, used, [=](Pixel* pixels, const uint8_t* mattes, size_t count) {
        foldMattes(pixels, mattes, count, keep, invert);
    });
}

void describeAutoColorDifferenceCharger(Catalogue& catalogue) {
    constexpr const char* kFoldFailure = "Auto Colour Difference Charger input failure (Image)";
    Method& entry = catalogue.add("krlImageAutoColorDifferenceCharger")
                        .summary(
                            "The automatic colour difference, combined with the transparency that is "
                            "there.")
                        .words("green screen, greenscreen, blue screen, chroma key, cut out, matte");
    addAutoKeySettings(entry, "Auto Color Difference Charger invalid input direction (Image)")
        .symbol("keepRemove", keepOrRemove(),
                refused("Auto Colour Difference Charger invalid input keep_remove option (Image)"),
                kKeepMeaning)
        .failsWith(kFoldFailure)
        .thenCompare()
        .symbol("invert", invertOrNot(),
                refused("Auto Colour Difference Charger invalid input invert option (Image)"),
                kInvertBackingMeaning)
        .showing("false")
        .failsWith(kFoldFailure)
        .inputFailure("Auto Color Difference Charger input failure (Image)")
        .failed("Failed Auto Color Difference Charger function (Image)")
        .does([](Call& call) {
            KeyColour used = KeyColour::Green;
            const Status status = autoColorDifferenceCharger(*call.engine(), autoKeySettings(call),
                                                             call.get<bool>(4), call.get<bool>(5), used);
            return giveColour(call, status, used);
        });
}

}  // namespace krl
