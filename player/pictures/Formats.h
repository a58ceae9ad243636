#pragma once

#include "player/pictures/AtomicFile.h"
#include "player/pictures/InputFile.h"
#include "player/pictures/Picture.h"

/// The formats behind `readPicture` and `writePicture`.
namespace krl::player {

/// Throws `PictureError` for a size that is empty or beyond the limit, before anything is allocated.
void requirePictureSize(const std::filesystem::path& path, int64_t width, int64_t height);

/// Portable arbitrary map, `P7` with `RGB_ALPHA`: read and written without any library.
Bitmap readPam(const InputFile& file);
void writePam(AtomicFile& file, const Bitmap& picture);

/// PNG, JPEG, TIFF and WebP, and to read also GIF, HEIC and AVIF, in builds with libvips.
Bitmap readWithVips(const InputFile& file);
std::vector<std::string> lossesWithVips(const InputFile& file);
void writeWithVips(AtomicFile& file, const Bitmap& picture, PictureFormat format, int quality);

}  // namespace krl::player
