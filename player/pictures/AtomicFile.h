#pragma once

#include <cstdio>
#include <filesystem>
#include <functional>
#include <string_view>

namespace krl::player {

/// A file that appears whole or not at all: it is written beside its place under another name, and
/// `commit` renames it. Without `commit`, and when the program is interrupted, nothing is left.
/// Where the name is that of a pipe, a device or an open file, such as `/dev/stdout`, `commit` pours
/// all into it.
class AtomicFile {
public:
    /// Creates the file beside `target`; throws `PictureError` where that cannot be.
    explicit AtomicFile(const std::filesystem::path& target);
    ~AtomicFile();
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    /// Where it goes, as messages name it.
    const std::filesystem::path& target() const { return target_; }
    void write(std::string_view bytes);
    /// For a writer of its own, instead of `write`: the descriptor of the file, which can be read and
    /// sought in as well.
    int descriptor() const;
    /// Empties the file again.
    void restart();
    /// `whenInPlace` is called before anything can interrupt the program, and does no more than a signal's
    /// handler may.
    void commit(const std::function<void()>& whenInPlace = {});

private:
    friend void removeUnfinishedFiles() noexcept;

    void pour();
    void forget() noexcept;
    [[noreturn]] void fail(int error) const;

    std::filesystem::path target_;
    std::filesystem::path temporary_;  ///< empty where there is nothing to remove
    std::FILE* stream_ = nullptr;
    int poured_ = -1;             ///< descriptor to pour into, or none
    AtomicFile* next_ = nullptr;  ///< of all that are being written
};

/// Removes what is being written, for a program that a signal is about to end. From then on whoever
/// begins or finishes a file waits for that end.
void removeUnfinishedFiles() noexcept;

}  // namespace krl::player
