#pragma once

#include <atomic>
#include <chrono>
#include <filesystem>
#include <string>

namespace krl::test {

/// A folder of a test's own, gone at its end.
class ScratchFolder {
public:
    ScratchFolder() {
        static std::atomic<int> made{0};
        const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
        path_ = std::filesystem::temp_directory_path() /
                ("krlimage-" + std::to_string(now) + '-' + std::to_string(++made));
        std::filesystem::create_directories(path_);
    }
    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

}  // namespace krl::test
