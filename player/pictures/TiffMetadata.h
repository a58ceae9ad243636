#pragma once

#include <cstdint>
#include <vector>

#include "player/pictures/AtomicFile.h"
#include "player/pictures/InputFile.h"

/// What TIFF files say about a picture, as the EXIF data of other formats.
namespace krl::player {

struct TiffFacts {
    std::vector<uint8_t> exif;  ///< author, description, camera, place and others
    std::vector<uint8_t> iptc;  ///< the bare records
};

/// The facts of a TIFF file; empty for a file of another format.
TiffFacts readTiffFacts(const InputFile& file);

/// Adds facts to a TIFF file that is being written. Throws `PictureError`.
void addTiffFacts(AtomicFile& file, const TiffFacts& facts);

}  // namespace krl::player
