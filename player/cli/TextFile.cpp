#include "player/cli/TextFile.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <sstream>
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

std::string readText(const std::filesystem::path& path) {
    std::error_code unreadable;
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    const bool isFolder = std::filesystem::is_directory(path, unreadable);
    if (isFolder || !file || (file.peek() != std::ifstream::traits_type::eof() && !(text << file.rdbuf())))
        throw CommandError("cannot read " + path.string() + ": " +
                           (isFolder ? "is a folder" : std::strerror(errno)));
    return text.str();
}

}  // namespace krl::player
