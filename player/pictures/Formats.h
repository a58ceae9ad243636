#pragma once

#include <span>

#include "player/pictures/AtomicFile.h"
#include "player/pictures/InputFile.h"
#include "player/pictures/PictureFiles.h"

/// The formats behind `readPicture` and `writePicture`.
namespace krl::player {

/// Throws `PictureError` for a size that is empty or beyond the limit, before anything is allocated.
void requirePictureSize(const std::filesystem::path& path, int64_t width, int64_t height);

/// Portable arbitrary map, `P7` with `RGB_ALPHA`: read and written without any library.
Bitmap readPam(const InputFile& file);
void writePam(AtomicFile& file, const Bitmap& picture);

/// The same, and portable maps of one byte or two a sample, `P5` and `P6`; nothing for another format. Throws
/// `PictureError`.
std::optional<Bitmap> readNetpbm(const InputFile& file);

/// The size of a portable map; nothing for another format.
std::optional<PictureSize> readNetpbmSize(const InputFile& file);

/// For builds without libvips: PNG through libpng and JPEG through libjpeg, with the same pixels. Reading
/// returns nothing for another format. Throws `PictureError`.
std::optional<Bitmap> readPng(const InputFile& file);
std::optional<Bitmap> readJpeg(const InputFile& file);
std::optional<PictureSize> readPngSize(const InputFile& file);
std::optional<PictureSize> readJpegSize(const InputFile& file);
void writePng(AtomicFile& file, const Bitmap& picture, const WriteOptions& options);
void writeJpeg(AtomicFile& file, const Bitmap& picture, const WriteOptions& options);

/// How to pack a PNG.
struct PngPacking {
    bool hasFilters = false;
    int level = 0;  ///< 0 to 9
};
/// What suits the content, unless a level is chosen.
PngPacking pngPacking(const Bitmap& picture, const std::string& level);

/// The formats of libvips.
PictureSize readSizeWithVips(const InputFile& file);
PictureFrames readWithVips(const InputFile& file, FrameChoice choice);
/// Pages or frames that belong to somebody else.
struct FramesToWrite {
    std::span<const Bitmap> pictures;
    std::span<const int32_t> delays;
    int32_t loops = 0;
};
void writeWithVips(AtomicFile& file, const FramesToWrite& frames, PictureFormat format,
                   const WriteOptions& options);

}  // namespace krl::player
