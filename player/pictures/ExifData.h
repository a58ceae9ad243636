#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

/// Corrections to EXIF data, in place.
namespace krl::player {

/// What EXIF data begins with in a JPEG file.
inline constexpr std::string_view kExifMark{"Exif\0\0", 6};
/// Where the TIFF header in EXIF data is, which may begin with `kExifMark` or not.
size_t exifStart(const std::vector<uint8_t>& exif);

/// EXIF data with the mark, which some files leave out; empty for bytes that are none.
std::vector<uint8_t> withMark(std::vector<uint8_t> exif);

/// The EXIF data without its small picture, which would show what the large one looked like before.
std::vector<uint8_t> withoutThumbnail(std::vector<uint8_t> exif);

/// The orientation in EXIF data, from 1 to 8, which becomes 1: for a picture that is turned accordingly.
int takeOrientation(std::vector<uint8_t>& exif);

/// Pixels per millimetre, across and down.
struct ExifResolution {
    double x = 0, y = 0;
};
/// The resolution in EXIF data, if there is one.
std::optional<ExifResolution> resolutionOf(std::vector<uint8_t> exif);

/// The EXIF data with the picture's size, wherever it has one.
std::vector<uint8_t> withSize(std::vector<uint8_t> exif, int32_t width, int32_t height);

}  // namespace krl::player
