#pragma once

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

namespace krl::player {

/// What a written file has to comply with.
struct AtomicFileRules {
    /// Whether the target's name has no links, and may have come to mean another place since it was checked:
    /// then nothing is written.
    bool isChecked = false;
    /// Nobody is let in whom these bits of a file's mode keep out; 0 keeps nobody out.
    unsigned permissions = 0;
};

/// The rules for a file made from `source`: who may not read that cannot read this either.
AtomicFileRules rulesFor(const std::filesystem::path& source);

/// A file that is written completely or not at all: under a temporary name beside its target, until
/// `commit` renames it. Without `commit`, or if the program is interrupted, nothing is left behind. If
/// the target is a pipe, a device or an open file, such as `/dev/stdout`, `commit` copies the content to
/// it instead. A file that is replaced
/// keeps its permissions.
class AtomicFile {
public:
    /// Creates the file beside `target`; throws `PictureError` on failure.
    explicit AtomicFile(const std::filesystem::path& target, const AtomicFileRules& rules = {});
    ~AtomicFile();
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    /// How the names of this process's unfinished files begin, up to a `_`.
    static const std::string& mark();

    /// The target, for messages.
    const std::filesystem::path& target() const { return target_; }
    void write(std::string_view bytes);
    /// The file descriptor, for code that writes directly; it can be read and seeked as well.
    int descriptor() const;
    /// Truncates the file.
    void restart();
    /// Reads what was written; false beyond the end.
    bool readAt(uint64_t place, uint8_t* bytes, size_t count) const;
    /// Replaces what was written, or adds to its end.
    void writeAt(uint64_t place, std::string_view bytes);
    uint64_t size() const;
    /// `whenInPlace` is called while signals are still blocked, and must be async-signal-safe.
    void commit(const std::function<void()>& whenInPlace = {});

private:
    friend void removeUnfinishedFiles() noexcept;

    void pour();
    void forget() noexcept;
    void openFolder(bool isChecked);
    void closeFolder() noexcept;
    /// Gives the file its name; returns 0 or why that failed.
    int rename() const;
    void create(unsigned permissions) noexcept;
    void removeTemporary() const noexcept;
    [[noreturn]] void fail(int error) const;

    std::filesystem::path target_;
    std::filesystem::path name_;       ///< of the target, in its folder
    std::filesystem::path temporary_;  ///< in the target's folder; empty if there is nothing to remove
    int folder_ = -1;                  ///< descriptor of that folder, for systems that have such
    std::FILE* stream_ = nullptr;
    int poured_ = -1;             ///< descriptor to copy the content to, or -1
    AtomicFile* next_ = nullptr;  ///< in the list of unfinished files
};

/// Removes all unfinished files, for a program that a signal is about to end. From then on, threads that
/// begin or finish a file block until the program ends.
void removeUnfinishedFiles() noexcept;

}  // namespace krl::player
