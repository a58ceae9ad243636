#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace krl::player {

/// The folders that a script may access, and the order in which they are searched.
class Sandbox {
public:
    Sandbox() = default;
    /// `castFolder` and `outputFolder` may be empty.
    Sandbox(std::filesystem::path castFolder, std::filesystem::path outputFolder,
            const std::vector<std::filesystem::path>& allowed);

    /// The script's folder, which is allowed and searched first.
    void setScriptFolder(const std::filesystem::path& folder);
    const std::filesystem::path& scriptFolder() const { return scriptFolder_; }

    /// The file to read: in the script's folder, the cast, the output folder, the current folder if
    /// that is allowed, or another allowed folder. Throws `HostError` for files elsewhere or missing.
    std::filesystem::path toRead(const std::string& name) const;
    /// The names of the files and folders in `folder`, in the same order on every system and without hidden
    /// ones; none if there is no such folder. Throws `HostError` for a folder elsewhere.
    std::vector<std::string> namesIn(const std::string& folder) const;
    /// The file to write: in the output folder, or in the script's folder. Throws `HostError`.
    std::filesystem::path toWrite(const std::string& name) const;
    /// The first file in the script's folder and the cast whose name without extension is `name`,
    /// ignoring case, and whose extension is among `extensions`; empty if there is none.
    std::filesystem::path member(const std::string& name, const std::vector<std::string>& extensions) const;
    /// Where a file is that `member` found, without links. Throws `HostError` if that is elsewhere by now.
    std::filesystem::path placeOf(const std::filesystem::path& file) const;
    /// The names that `member` would find, without extensions, for messages.
    std::vector<std::string> memberNames(const std::vector<std::string>& extensions) const;

private:
    /// As `toRead`, but empty for a file that is missing.
    std::filesystem::path found(const std::filesystem::path& wanted) const;
    bool allows(const std::filesystem::path& file) const;
    /// Whether a file without links is in an allowed folder.
    bool holds(const std::filesystem::path& real) const;
    std::vector<std::filesystem::path> castFolders() const;
    [[noreturn]] void refuse(const std::filesystem::path& file) const;

    std::filesystem::path scriptFolder_, castFolder_, outputFolder_;
    std::vector<std::filesystem::path> allowed_;
};

}  // namespace krl::player
