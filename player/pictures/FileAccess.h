#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "player/pictures/Picture.h"

/// Pictures in files, with care for who may read what.
namespace krl::player {

/// Reads the picture of a name without links, which was checked before. Throws `PictureError` also if the
/// name has come to mean a file elsewhere since.
Bitmap readCheckedPicture(const std::filesystem::path& path);

/// Writes the picture under a name without links, in the same manner.
void writeCheckedPicture(const std::filesystem::path& path, const Bitmap& picture);

/// Writes a picture that was made of the one in `source`: who may not read that cannot read this either.
void writePictureOf(const std::filesystem::path& source, const std::filesystem::path& path,
                    const Bitmap& picture, const WriteOptions& options);

/// What `readPicture` leaves out of a file, in a few words each: `2 of 3 pages`. Empty also for a file that
/// cannot be read.
std::vector<std::string> lossesIn(const std::filesystem::path& path);

}  // namespace krl::player
