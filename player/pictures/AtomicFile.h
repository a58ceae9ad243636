#pragma once

#include <filesystem>

namespace krl::player {

/// A file that appears whole or not at all: it is written beside its place under another name, and
/// `commit` renames it. Without `commit`, and when the program is interrupted, nothing is left.
class AtomicFile {
public:
    /// Creates the file beside `target`; throws `PictureError` where that cannot be.
    explicit AtomicFile(const std::filesystem::path& target);
    ~AtomicFile();
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    /// Where to write; it has the target's extension.
    const std::filesystem::path& path() const { return temporary_; }
    /// Where it goes, as messages name it.
    const std::filesystem::path& target() const { return target_; }
    void commit();

private:
    std::filesystem::path target_, temporary_;
    bool committed_ = false;
};

/// Removes what is being written, for a program that is about to be ended by a signal.
void removeUnfinishedFiles() noexcept;

}  // namespace krl::player
