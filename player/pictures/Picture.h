#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "krlimage/pixel.h"

/// Pictures in memory and in files.
namespace krl::player {

/// Metadata of a picture, preserved when it is written.
struct PictureMetadata {
    std::vector<uint8_t> colourProfile;  ///< ICC
    std::vector<uint8_t> exif, xmp, iptc;
    double pixelsPerMillimetreX = 0, pixelsPerMillimetreY = 0;  ///< 0 when unknown
};

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

enum class PictureFormat { Png, Jpeg, Tiff, Webp, Pam };

/// The format for a name's extension, if this build can write it.
std::optional<PictureFormat> formatOf(const std::filesystem::path& path);

struct WriteOptions {
    int quality = 90;                     ///< of lossy formats, 1 to 100
    std::optional<PictureFormat> format;  ///< overrides the name's extension
    /// Called when the file is in place, while signals are still blocked; must be async-signal-safe.
    std::function<void()> whenWritten;
};

/// Writes a picture, in the format of the name's extension unless another is given. The file is
/// written atomically: an existing one is replaced only by a complete one. Throws `PictureError`.
void writePicture(const std::filesystem::path& path, const Bitmap& picture, const WriteOptions& options = {});

/// Whether a name's extension is one that `writePicture` knows.
bool isPictureName(const std::filesystem::path& path);

/// The extensions that this build can write, for messages: `.png, .jpg, .tif, .webp, .pam`.
std::string writableFormats();

}  // namespace krl::player
