#pragma once

#include <cstdint>
#include <cstdio>
#include <filesystem>

namespace krl::player {

/// A picture file that is open for reading: what is read is what was opened, whatever becomes of its name.
class InputFile {
public:
    /// Throws `PictureError` for a file that cannot be read, and for all that is no file; `/dev/stdin` may be
    /// a pipe, of which a copy is read.
    explicit InputFile(const std::filesystem::path& path);
    ~InputFile();
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    /// The name, for messages.
    const std::filesystem::path& path() const { return path_; }
    /// The stream, at its beginning.
    std::FILE* fromStart() const;
    /// The file descriptor, at its beginning.
    int descriptor() const;
    /// Its bytes, as the system says.
    uint64_t size() const;
    /// Reads at a place without moving the one that the descriptor reads from; false beyond the end.
    bool readAt(uint64_t place, uint8_t* bytes, size_t count) const;
    /// Where the open file is, all links resolved; empty where the system does not say.
    std::filesystem::path place() const;

private:
    [[noreturn]] void refuse(const char* why) const;
    void copyStandardInput();

    std::filesystem::path path_;
    std::FILE* stream_ = nullptr;
};

}  // namespace krl::player
