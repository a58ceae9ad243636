#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "player/pictures/PictureFiles.h"

/// Pictures in files, with care for who may read what.
namespace krl::player {

/// Reads the picture of a name without links, which was checked before. Throws `PictureError` also if the
/// name has come to mean a file elsewhere since.
Bitmap readCheckedPicture(const std::filesystem::path& path);

/// Reads the bytes of such a file, whatever they are.
std::string readCheckedBytes(const std::filesystem::path& path);

/// Writes the picture under a name without links, in the same manner.
void writeCheckedPicture(const std::filesystem::path& path, const Bitmap& picture);

/// Writes pictures that were made of those in `source`: who may not read that cannot read this either.
void writeFramesOf(const std::filesystem::path& source, const std::filesystem::path& path,
                   const PictureFrames& frames, const WriteOptions& options);

}  // namespace krl::player
