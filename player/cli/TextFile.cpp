#include "player/cli/TextFile.h"

#include <fstream>
#include <system_error>

#include "player/cli/Commands.h"
#include "player/pictures/AtomicFile.h"
#include "player/pictures/Picture.h"

namespace krl::player {

void writeText(const std::filesystem::path& path, const std::string& text) {
    std::error_code failure;
    std::filesystem::create_directories(path.parent_path(), failure);
    try {
        AtomicFile target(path);
        std::ofstream file(target.path(), std::ios::binary);
        file << text << std::flush;
        if (!file) throw CommandError("cannot write " + path.string());
        file.close();
        target.commit();
    } catch (const PictureError& error) {
        throw CommandError(error.what());
    }
}

}  // namespace krl::player
