#include "player/cli/TextFile.h"

#include <system_error>

#include "player/cli/Commands.h"
#include "player/pictures/AtomicFile.h"
#include "player/pictures/Picture.h"

namespace krl::player {

void makeFolder(const std::filesystem::path& folder) {
    std::error_code failure;
    std::filesystem::create_directories(folder, failure);
    if (failure) throw CommandError("cannot create the folder " + folder.string() + ": " + failure.message());
}

void writeText(const std::filesystem::path& path, const std::string& text) {
    if (path.has_parent_path()) makeFolder(path.parent_path());
    try {
        AtomicFile file(path);
        file.write(text);
        file.commit();
    } catch (const PictureError& error) {
        throw CommandError(error.what());
    }
}

}  // namespace krl::player
