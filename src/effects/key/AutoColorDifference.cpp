#include "catalogue/Call.h"
#include "core/PixelWord.h"
#include "core/VectorLevels.h"
#include "effects/key/AutoKey.h"

namespace krl {

namespace {

/// Makes alpha of what mattes leave.
KRL_VECTOR_LEVELS void replaceAlphas(Pixel* pixels, const uint8_t* mattes, size_t count) {
    for (size_t i = 0; i < count; ++i)
        storeWord(pixels[i], (wordOf(pixels[i]) & 0x00FFFFFFu) | (255u - mattes[i]) << 24);
}

}  // namespace

/// Keys on a backing whose colour and range come from the picture; alpha becomes 255 less the matte.
Status autoColorDifference(ImageEngine& engine, const AutoKeySettings& settings, KeyColour& used) {
    return keyAutomatically(engine, settings, used, replaceAlphas);
}

void describeAutoColorDifference(Catalogue& catalogue) {
    Method& entry =
        catalogue.add("krlImageAutoColorDifference")
            .summary("Keys on a backing whose colour and range come from the picture.")
            .words("green screen, greenscreen, blue screen, chroma key, cut out, background removal, matte");
    addAutoKeySettings(entry, "Auto Color Difference invalid input direction (Image)")
        .inputFailure("Auto Color Difference input failure (Image)")
        .failed("Failed Auto Color Difference function (Image)")
        .does([](Call& call) {
            KeyColour used = KeyColour::Green;
            const Status status = autoColorDifference(*call.engine(), autoKeySettings(call), used);
            return giveColour(call, status, used);
        });
}

}  // namespace krl
