#pragma once

#include <exception>
#include <span>

#include "player/pictures/AtomicFile.h"
#include "player/pictures/InputFile.h"
#include "player/pictures/PictureFiles.h"
#include "player/pictures/Rows.h"

/// The formats behind `readPicture` and `writePicture`.
namespace krl::player {

/// Throws `PictureError` for a size that is empty or larger than any picture in memory, before anything is
/// allocated.
void requirePossibleSize(const std::filesystem::path& path, int64_t width, int64_t height);
/// The same for a file, whose limit is the `PixelLimit`. The height is that of all frames.
void requireAllowedSize(const std::filesystem::path& path, int64_t width, int64_t height);
/// Both, for a file to read whole.
void requirePictureSize(const std::filesystem::path& path, int64_t width, int64_t height);

#if defined(KRL_WITH_VIPS)
inline constexpr bool kHasVips = true;
#else
inline constexpr bool kHasVips = false;
#endif

/// Thrown for what only libvips reads or writes of a format that does not need it otherwise.
class NeedsVips : public PictureError {
public:
    using PictureError::PictureError;
};

/// Writes for a library in C, which no exception may pass through.
class GuardedWriter {
public:
    explicit GuardedWriter(AtomicFile& file) : file_(file) {}

    /// Returns whether that succeeded.
    bool write(const uint8_t* bytes, size_t count) noexcept {
        try {
            file_.write({reinterpret_cast<const char*>(bytes), count});
        } catch (...) {
            failure_ = std::current_exception();
        }
        return !failure_;
    }
    /// Throws what writing has thrown, if anything.
    void rethrow() const {
        if (failure_) std::rethrow_exception(failure_);
    }

private:
    AtomicFile& file_;
    std::exception_ptr failure_;
};

/// How to read a format without libvips. The functions throw `PictureError`.
struct FormatReader {
    bool (*isFormatOf)(const InputFile& file);
    /// Reads the header. The file must outlive the source.
    std::unique_ptr<RowSource> (*open)(const InputFile& file);
    PictureSize (*readSize)(const InputFile& file);
};

/// The reader for a file; null for libvips.
const FormatReader* readerFor(const InputFile& file);
/// The whole picture, upright.
Bitmap readWhole(const FormatReader& reader, const InputFile& file);

/// How to write a format without libvips.
struct FormatWriter {
    /// Writes the header. The file and the options must outlive the sink. Throws `PictureError`.
    std::unique_ptr<RowSink> (*open)(AtomicFile& file, const PictureHead& head, const WriteOptions& options,
                                     const PictureContent& content);
    bool dependsOnContent;
};

/// The writer for a format; null for libvips.
const FormatWriter* writerFor(PictureFormat format);
void writeWhole(const FormatWriter& writer, AtomicFile& file, const Bitmap& picture,
                const WriteOptions& options);
/// Whether the colours have to be converted to those of another profile; without one they are sRGB.
bool convertsColours(const PictureMetadata* metadata, const WriteOptions& options);

/// PAM, and portable maps of one byte or two a sample, `P5` and `P6`.
extern const FormatReader kNetpbmReader;
/// Portable arbitrary map, `P7` with `RGB_ALPHA`.
extern const FormatWriter kPamWriter;
/// PNG through libpng and JPEG through libjpeg, which start faster than libvips and read the same pixels.
extern const FormatReader kPngReader, kJpegReader;
extern const FormatWriter kPngWriter, kJpegWriter;

/// How to pack a PNG.
struct PngPacking {
    bool hasFilters = false;
    int level = 0;  ///< 0 to 9
};
/// What suits the content, unless a level is chosen.
PngPacking pngPacking(bool isDrawing, const std::string& level);
PictureContent contentOf(const Bitmap& picture);

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
