#pragma once

#include <unistd.h>

#include <filesystem>
#include <string>

namespace krl::fuzz {

/// A folder of this process alone, in memory where there is such a place; it is removed at the end.
inline const std::filesystem::path& scratchFolder() {
    namespace fs = std::filesystem;
    static const struct Folder {
        Folder() {
            const fs::path memory = "/dev/shm";
            path = (fs::is_directory(memory) ? memory : fs::temp_directory_path()) /
                   ("krlfuzz-" + std::to_string(getpid()));
            fs::create_directories(path);
        }
        ~Folder() {
            std::error_code ignored;
            fs::remove_all(path, ignored);
        }
        fs::path path;
    } folder;
    return folder.path;
}

}  // namespace krl::fuzz
