#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

/// Corrections to EXIF data, in place.
namespace krl::player {

/// What EXIF data begins with in a JPEG file.
inline constexpr std::string_view kExifMark{"Exif\0\0", 6};

/// The EXIF data without its small picture, which would show what the large one looked like before.
std::vector<uint8_t> withoutThumbnail(std::vector<uint8_t> exif);

/// The orientation in EXIF data, from 1 to 8, which becomes 1: for a picture that is turned accordingly.
int takeOrientation(std::vector<uint8_t>& exif);

}  // namespace krl::player
