#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace krl::player {

/// A text with its keyword, as PNG files have them.
struct PictureText {
    std::string keyword, text;
};

/// Metadata of a picture, preserved when it is written.
struct PictureMetadata {
    std::vector<uint8_t> colourProfile;  ///< ICC
    std::vector<uint8_t> exif, xmp;
    std::vector<uint8_t> iptc;       ///< the bare records
    bool hasOtherResources = false;  ///< beside these, which are not kept
    std::vector<PictureText> texts;
    std::string chroma;  ///< of a JPEG: `4:2:0`, or another subsampling of the colours
    double pixelsPerMillimetreX = 0, pixelsPerMillimetreY = 0;  ///< 0 when unknown
    /// What reading left out of the file, in a few words each: `all but the first of 3 pages or frames`.
    std::vector<std::string> losses;
};

}  // namespace krl::player
