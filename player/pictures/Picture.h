#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "krlimage/pixel.h"

/// Pictures in memory and in files.
namespace krl::player {

struct PictureMetadata;

/// A picture of 32-bit pixels with straight alpha and unpadded rows.
struct Bitmap {
    int32_t width = 0;
    int32_t height = 0;
    std::vector<Pixel> pixels;
    std::shared_ptr<const PictureMetadata> metadata;  ///< may be null

    Pixel* row(int32_t y) { return pixels.data() + size_t(y) * size_t(width); }
    const Pixel* row(int32_t y) const { return pixels.data() + size_t(y) * size_t(width); }
};

/// Failure to read or write a picture: one line that names the file and the reason.
class PictureError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The largest size of a picture in memory.
inline constexpr int64_t kPictureByteLimit = int64_t{1} << 31;

/// Reads a picture file. Its format is detected from its content; grey, palette and 16-bit pictures are
/// converted, EXIF orientation is applied. Throws `PictureError`.
Bitmap readPicture(const std::filesystem::path& path);

struct WriteOptions;

/// Writes a picture, in the format of the name's extension unless the options give another. The file is
/// written atomically: an existing one is replaced only by a complete one. Throws `PictureError`.
void writePicture(const std::filesystem::path& path, const Bitmap& picture);
void writePicture(const std::filesystem::path& path, const Bitmap& picture, const WriteOptions& options);

/// Whether a name's extension is one that `writePicture` knows.
bool isPictureName(const std::filesystem::path& path);

/// The extensions that this build can write, for messages: `.png, .jpg, .tif, .webp, .pam`.
std::string writableFormats();

}  // namespace krl::player
