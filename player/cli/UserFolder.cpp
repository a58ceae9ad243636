#include "player/cli/UserFolder.h"

#include <cstdlib>

namespace krl::player {

std::filesystem::path userFolder() {
    if (const char* configuration = std::getenv("XDG_CONFIG_HOME"); configuration && *configuration)
        return std::filesystem::path(configuration) / "krlimage";
    if (const char* home = std::getenv("HOME"); home && *home)
        return std::filesystem::path(home) / ".config" / "krlimage";
    return {};
}

}  // namespace krl::player
