#include "player/cli/SamplePictures.h"

#include <algorithm>
#include <iterator>

namespace krl::player {

namespace fs = std::filesystem;

namespace {

/// The share of the pixels that `test` accepts.
template <class Test>
double shareOf(const Bitmap& picture, const Test& test) {
    const auto count = std::count_if(picture.pixels.begin(), picture.pixels.end(), test);
    return double(count) / double(picture.pixels.size());
}

bool hasScreen(const Bitmap& picture) {
    constexpr int purest = 60;
    constexpr double least = 0.05;
    return shareOf(picture, [](const Pixel& p) {
               return p.green - p.red > purest && p.green - p.blue > purest;
           }) > least;
}

bool hasTransparency(const Bitmap& picture) {
    constexpr double least = 0.01;
    return shareOf(picture, [](const Pixel& p) { return p.alpha < 255; }) > least;
}

constexpr SampleNeed kNeeds[] = {{"key", hasScreen, "greenscreen.png"},
                                 {"alpha", hasTransparency, "logo.png"},
                                 {"composite", hasTransparency, "logo.png"}};

}  // namespace

fs::path installedFolder(const std::string& name) {
    std::error_code unknown;
    const fs::path program = fs::read_symlink("/proc/self/exe", unknown);
    return unknown ? fs::path() : program.parent_path() / "../share/krlimage" / name;
}

std::vector<fs::path> sampleFolders() {
    std::vector<fs::path> folders = {KRL_SAMPLES};
    if (const fs::path installed = installedFolder("pictures"); !installed.empty())
        folders.push_back(installed);
    return folders;
}

fs::path sampleFile(const std::string& name) {
    for (const fs::path& folder : sampleFolders())
        if (fs::exists(folder / name)) return folder / name;
    return {};
}

const SampleNeed* sampleNeedOf(const Method& method) {
    const auto* found = std::find_if(std::begin(kNeeds), std::end(kNeeds),
                                     [&](const SampleNeed& need) { return method.family() == need.family; });
    return found == std::end(kNeeds) ? nullptr : found;
}

}  // namespace krl::player
