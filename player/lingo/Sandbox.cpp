#include "player/lingo/Sandbox.h"

#include <algorithm>

#include "player/host/HostError.h"
#include "player/host/SymbolTable.h"

namespace krl::player {

namespace fs = std::filesystem;

namespace {

/// Resolves links and dots, so that no path escapes a folder unnoticed.
fs::path resolved(const fs::path& path) {
    std::error_code failed;
    fs::path real = fs::weakly_canonical(fs::absolute(path), failed);
    if (failed) return {};
    return real.has_filename() ? real : real.parent_path();
}

bool isThere(const fs::path& file) {
    std::error_code failed;
    return fs::exists(file, failed);
}

/// Rejects control characters: the system ends names at a zero byte, and terminals interpret the others.
void requirePlainName(const std::string& name) {
    const auto control = std::find_if(name.begin(), name.end(),
                                      [](unsigned char letter) { return letter < ' ' || letter == 0x7F; });
    if (control != name.end())
        throw HostError("the file name contains a control character, code " +
                        std::to_string(static_cast<unsigned char>(*control)) + ", after \"" +
                        std::string(name.begin(), control) + '"');
}

fs::path pathOf(const std::string& name) {
    requirePlainName(name);
    return std::u8string(name.begin(), name.end());
}

bool within(const fs::path& file, const fs::path& folder) {
    const auto [folderEnd, rest] = std::mismatch(folder.begin(), folder.end(), file.begin(), file.end());
    static_cast<void>(rest);  // a file may be allowed itself
    return folderEnd == folder.end();
}

}  // namespace

Sandbox::Sandbox(fs::path castFolder, fs::path outputFolder, const std::vector<fs::path>& allowed)
    : castFolder_(std::move(castFolder)), outputFolder_(std::move(outputFolder)) {
    for (const fs::path& folder : allowed) allowed_.push_back(resolved(folder));
    for (const fs::path* folder : {&castFolder_, &outputFolder_})
        if (!folder->empty()) allowed_.push_back(resolved(*folder));
}

void Sandbox::setScriptFolder(const fs::path& folder) {
    scriptFolder_ = folder.empty() ? fs::path(".") : folder;
    allowed_.push_back(resolved(scriptFolder_));
}

bool Sandbox::allows(const fs::path& file) const { return holds(resolved(file)); }

bool Sandbox::holds(const fs::path& real) const {
    return std::any_of(allowed_.begin(), allowed_.end(),
                       [&](const fs::path& folder) { return !folder.empty() && within(real, folder); });
}

void Sandbox::refuse(const fs::path& file) const {
    throw HostError(file.string() +
                    " is outside the folders that this script may access (--allow DIR adds one)");
}

fs::path Sandbox::found(const fs::path& wanted) const {
    std::vector<fs::path> places;
    if (wanted.is_absolute()) {
        places = {wanted};
    } else {
        for (const fs::path& folder : castFolders()) places.push_back(folder / wanted);
        if (!outputFolder_.empty()) places.push_back(outputFolder_ / wanted);
        places.push_back(wanted);
        for (const fs::path& folder : allowed_) places.push_back(folder / wanted);
    }
    bool isElsewhere = false;
    for (const fs::path& place : places) {
        if (!isThere(place)) continue;
        // Resolved once: a second time, it could lead elsewhere.
        if (const fs::path real = resolved(place); holds(real)) return real;
        isElsewhere = true;
    }
    if (isElsewhere ||
        std::none_of(places.begin(), places.end(), [this](const fs::path& place) { return allows(place); }))
        refuse(wanted);
    return {};
}

fs::path Sandbox::toRead(const std::string& name) const {
    fs::path file = found(pathOf(name));
    if (file.empty()) throw HostError("there is no file " + pathOf(name).string());
    return file;
}

std::vector<std::string> Sandbox::namesIn(const std::string& folder) const {
    std::vector<std::string> names;
    const fs::path place = found(pathOf(folder));
    std::error_code failed;
    if (place.empty()) return names;
    for (const fs::directory_entry& entry : fs::directory_iterator(place, failed)) {
        const std::u8string name = entry.path().filename().u8string();
        if (!name.starts_with(u8'.')) names.emplace_back(name.begin(), name.end());
    }
    std::sort(names.begin(), names.end());
    return names;
}

fs::path Sandbox::toWrite(const std::string& name) const {
    const fs::path wanted = pathOf(name);
    if (!wanted.has_filename()) throw HostError("expected a file name, got \"" + name + '"');
    fs::path place = wanted;
    if (!wanted.is_absolute() && !outputFolder_.empty())
        place = outputFolder_ / wanted;
    else if (!wanted.is_absolute() && !allows(wanted))
        place = scriptFolder_ / wanted;
    if (!allows(place)) refuse(wanted);
    // Not the file's own link, if it is one: that is replaced, and not what it points at.
    const fs::path folder = place.has_parent_path() ? place.parent_path() : fs::path(".");
    const fs::path real = resolved(folder);
    if (!holds(real) && !holds(real / place.filename())) refuse(wanted);
    return real / place.filename();
}

std::vector<fs::path> Sandbox::castFolders() const {
    std::vector<fs::path> folders;
    for (const fs::path* folder : {&scriptFolder_, &castFolder_})
        if (!folder->empty()) folders.push_back(*folder);
    return folders;
}

fs::path Sandbox::member(const std::string& name, const std::vector<std::string>& extensions) const {
    requirePlainName(name);
    for (const fs::path& folder : castFolders()) {
        std::vector<fs::path> found;
        std::error_code failed;
        for (const fs::directory_entry& entry : fs::directory_iterator(folder, failed)) {
            const std::string extension = folded(entry.path().extension().string());
            const bool wanted =
                folded(entry.path().stem().string()) == folded(name) &&
                std::find(extensions.begin(), extensions.end(), extension) != extensions.end();
            if (wanted && allows(entry.path())) found.push_back(entry.path());
        }
        // Directory order varies between systems: choose the same file everywhere.
        if (!found.empty()) return *std::min_element(found.begin(), found.end());
    }
    return {};
}

fs::path Sandbox::placeOf(const fs::path& file) const {
    const fs::path real = resolved(file);
    if (!holds(real)) refuse(file);
    return real;
}

std::vector<std::string> Sandbox::memberNames(const std::vector<std::string>& extensions) const {
    std::vector<std::string> names;
    for (const fs::path& folder : castFolders()) {
        std::error_code failed;
        for (const fs::directory_entry& entry : fs::directory_iterator(folder, failed)) {
            const std::string extension = folded(entry.path().extension().string());
            if (std::find(extensions.begin(), extensions.end(), extension) != extensions.end())
                names.push_back(entry.path().stem().string());
        }
    }
    return names;
}

}  // namespace krl::player
