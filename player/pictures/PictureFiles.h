#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "player/pictures/Picture.h"

/// Picture files in detail: their formats, their pages or frames, and how they are written.
namespace krl::player {

/// Whether to read all pages or frames of a file, or the first.
enum class FrameChoice { First, All };

/// The pages of a document or the frames of an animation.
struct PictureFrames {
    std::vector<Bitmap> pictures;  ///< at least one
    std::vector<int32_t> delays;   ///< milliseconds of each frame; empty for pages
    int32_t loops = 0;             ///< how often an animation runs; 0 for ever
};

/// Reads a picture file with its pages or frames. Throws `PictureError`.
PictureFrames readFrames(const std::filesystem::path& path, FrameChoice choice);

/// The size of a picture as its file has it, before orientation.
struct PictureSize {
    int64_t width = 0, height = 0;
    int64_t frames = 1;
};

/// Reads the header of a picture file. Throws `PictureError`.
PictureSize readPictureSize(const std::filesystem::path& path, FrameChoice choice);

enum class PictureFormat { Png, Jpeg, Tiff, Webp, Gif, Avif, Heic, Jxl, Pam };

/// The format for a name's extension, if this build can write it.
std::optional<PictureFormat> formatOf(const std::filesystem::path& path);

/// Whether a name's extension is that of a format that this build can read.
bool isReadableName(const std::filesystem::path& path);

/// Whether the format keeps several pages or frames.
bool holdsFrames(PictureFormat format);

struct WriteOptions {
    int quality = 90;                     ///< of lossy formats, 1 to 100
    std::optional<PictureFormat> format;  ///< overrides the name's extension
    int depth = 8;                        ///< bits of a sample, 8 or 16
    /// How samples are packed, as `writeOptionComplaint` lists it; empty for what suits format and content.
    std::string compression;
    std::string chroma;   ///< of lossy formats, `420` or `444`; empty for that of the picture's own file
    std::string profile;  ///< converts the colours: `srgb`, or the file of a colour profile; empty to keep
    bool isStripped = false;  ///< writes no metadata but the colour profile
    /// Called when the file is in place, while signals are still blocked; must be async-signal-safe.
    std::function<void()> whenWritten;
};

/// The format that a picture of this name is written in, if there is one.
std::optional<PictureFormat> formatFor(const std::filesystem::path& path, const WriteOptions& options);

/// What is wrong with options for a format, in one line; empty if nothing is.
std::string writeOptionComplaint(PictureFormat format, const WriteOptions& options);

/// What writing under this name would leave out, in a few words each.
std::vector<std::string> lossesOfWriting(const std::filesystem::path& path, const PictureFrames& frames,
                                         const WriteOptions& options);

}  // namespace krl::player
