#include "player/cli/Batch.h"

#include <algorithm>
#include <map>

#include "player/cli/TextFile.h"
#include "player/host/SymbolTable.h"
#include "player/pictures/Picture.h"

namespace krl::player {

namespace fs = std::filesystem;

namespace {

/// Also false for a path that cannot be accessed: opening it later reports why.
bool isFolder(const fs::path& path) {
    std::error_code unreadable;
    return fs::is_directory(path, unreadable);
}

std::vector<fs::path> picturesIn(const fs::path& folder) {
    std::vector<fs::path> found;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder))
        if (entry.is_regular_file() && isPictureName(entry.path()) &&
            entry.path().filename().string().front() != '.')
            found.push_back(entry.path());
    if (found.empty()) throw CommandError("no pictures found in " + folder.string());
    std::sort(found.begin(), found.end());
    return found;
}

/// Whether a name has the extension of a picture format, including those that this build cannot write.
bool endsAsPictures(const fs::path& name) {
    static constexpr const char* others[] = {".avif", ".bmp", ".gif", ".heic", ".heif", ".jp2",
                                             ".jpeg", ".jpg", ".jxl", ".pbm",  ".pgm",  ".png",
                                             ".pnm",  ".ppm", ".tga", ".tif",  ".tiff", ".webp"};
    const std::string extension = folded(name.extension().string());
    return isPictureName(name) ||
           std::find(std::begin(others), std::end(others), extension) != std::end(others);
}

fs::path nameIn(const fs::path& folder, const fs::path& input, const std::string& format) {
    fs::path name = input.filename();
    if (format.empty()) return folder / name;
    // Text after a dot is part of the name, as in `v1.2`, unless it is a picture format's extension.
    if (endsAsPictures(name)) return folder / name.replace_extension(format);
    return folder / (name.string() + '.' + format);
}

void refuseSharedOutputs(const std::vector<BatchItem>& items) {
    std::map<fs::path, fs::path> writers;
    for (const BatchItem& item : items) {
        const auto [writer, first] = writers.emplace(item.output.lexically_normal(), item.input);
        if (!first)
            throw UsageError(writer->second.string() + " and " + item.input.string() +
                             " would both be written to " + item.output.string());
    }
}

}  // namespace

std::vector<BatchItem> planBatch(const std::vector<fs::path>& inputs, const ApplyOptions& options) {
    std::vector<fs::path> pictures;
    bool severalWanted = inputs.size() > 1;
    for (const fs::path& input : inputs) {
        if (!isFolder(input)) {
            pictures.push_back(input);
            continue;
        }
        severalWanted = true;
        const auto found = picturesIn(input);
        pictures.insert(pictures.end(), found.begin(), found.end());
    }
    const fs::path output = options.output;
    if (!severalWanted && !isFolder(output) && output.has_filename()) return {{pictures.front(), output}};
    std::error_code unreadable;
    if (severalWanted && fs::is_regular_file(output, unreadable))
        throw UsageError(output.string() + " is a file, but several pictures need a folder");
    if (severalWanted && isPictureName(output) && !isFolder(output))
        throw UsageError(output.string() + " names a picture, but several pictures need a folder");
    makeFolder(output);
    std::vector<BatchItem> items;
    for (const fs::path& picture : pictures)
        items.push_back({picture, nameIn(output, picture, options.format)});
    refuseSharedOutputs(items);
    return items;
}

}  // namespace krl::player
