#pragma once

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <string>

namespace krl::player {

/// The names in a list file or on standard input, read one by one: a list of any length takes little memory.
class InputList {
public:
    /// A place in the list: its offset, or for a pipe what was read of it and not yet taken.
    struct Place {
        int64_t offset = -1;
        std::string unread;
    };

    /// Opens `file`, or standard input for `-`. Names end with `separator`. Throws `CommandError`.
    InputList(const std::filesystem::path& file, char separator);
    ~InputList();
    InputList(const InputList&) = delete;
    InputList& operator=(const InputList&) = delete;

    /// The next name that is not empty, or nothing at the end. Throws `CommandError`.
    std::optional<std::string> next();
    Place place() const;
    /// Continues where another program, which this one replaces, was.
    void continueAt(const Place& place);

private:
    bool fill();

    std::filesystem::path file_;
    char separator_;
    std::FILE* stream_ = nullptr;
    int64_t start_ = -1;  ///< offset of the first byte in the buffer; negative for a pipe
    std::string buffer_;
    size_t taken_ = 0;  ///< bytes of the buffer
};

}  // namespace krl::player
