#include <cstring>

#include "catalogue/Catalogue.h"
#include "krlimage/fields.h"

/// Fills one field of an interlaced picture, every second row, from the other.
namespace krl {

Status interlace(ImageEngine& engine, InterlaceType interlaceType, int32_t fieldDominance) {
    if (Status state = engine.imageStatus()) return state;
    const ImageBuffer& image = *engine.buffer();
    const bool fromBelow = interlaceType == InterlaceType::Deinterlace && fieldDominance == 0;
    const bool fromLastRow = (interlaceType == InterlaceType::Deinterlace) == (fieldDominance == 1);
    // No row that is read is written, so the image is its own scratch copy.
    const int32_t beside = fromBelow ? 1 : -1;
    for (int32_t y = image.height - (fromLastRow ? 1 : 2); y >= 0 && y + beside >= 0; y -= 2)
        std::memcpy(image.row(y), image.row(y + beside), size_t(image.rowBytes));
    return kStatusOk;
}

void describeInterlace(Catalogue& catalogue) {
    const auto isField = [](const ArgumentValue& argument) {
        return argument.integer == 0 || argument.integer == 1;
    };
    catalogue.add("krlImageInterlace", interlace)
        .summary("Fills one field of an interlaced picture from the other.")
        .words("video, fields, scan lines, scanlines, television, TV")
        .symbol("interlaceType",
                {{"deinterlace", InterlaceType::Deinterlace}, {"splitField", InterlaceType::SplitField}},
                refused("Interlace invalid input interlaceType (Image)"),
                "fill a field from the rows beside it, or shift the field that is kept")
        .integer("fieldDominance", {.from = 0, .to = 1, .example = 0},
                 "which of the two fields is filled, 0 or 1")
        .mustPass(isField, "Interlace invalid input fieldDominance (Image)")
        .inputFailure("Interlace input failure (Image)")
        .failed("Failed Interlace function (Image)");
}

}  // namespace krl
