#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "catalogue/Method.h"
#include "player/pictures/Picture.h"

/// The pictures that come with the program, which methods are shown on.
namespace krl::player {

/// A folder of the program's data where it is installed; empty on systems that do not say where it runs.
std::filesystem::path installedFolder(const std::string& name);

/// Where the pictures are: in the program's sources, or where it is installed.
std::vector<std::filesystem::path> sampleFolders();

/// The file of a picture that comes with the program; empty if it is missing.
std::filesystem::path sampleFile(const std::string& name);

/// A family that shows little on a picture without what it works on, and a picture that has it.
struct SampleNeed {
    const char* family;
    bool (*isMet)(const Bitmap& picture);
    const char* sample;
};
/// What the method's family needs; null if it shows on any picture.
const SampleNeed* sampleNeedOf(const Method& method);

}  // namespace krl::player
