#include "player/cli/LookFiles.h"

#include <algorithm>
#include <cstring>

#include "catalogue/NearestName.h"
#include "player/cli/Commands.h"
#include "player/cli/TextFile.h"
#include "player/cli/UserFolder.h"
#include "player/host/SymbolTable.h"
#include "player/pictures/Picture.h"

namespace krl::player {

namespace fs = std::filesystem;

namespace {

bool namesFile(const std::string& word) { return fs::path(word).has_parent_path() || word.ends_with(".krl"); }

/// Pictures of a look are beside it or in folders there: a look from elsewhere reads nothing else.
krl::Picture pictureOf(const NamedLook& look, const std::string& name) {
    const fs::path path = fs::path(name).lexically_normal();
    if (look.file.empty() || path.is_absolute() || *path.begin() == "..")
        throw CommandError("look " + look.name + ": " + name +
                           " is outside the folder of the look, which reads pictures there alone");
    const Bitmap read = readPicture(look.file.parent_path() / path);
    krl::Picture picture = krl::Picture::blank(read.width, read.height);
    std::memcpy(picture.pixels, read.pixels.data(), read.pixels.size() * sizeof(Pixel));
    return picture;
}

/// Gives the setting to every look that has the parameter.
void set(std::vector<ReadyLook>& looks, const std::string& setting) {
    const size_t equals = setting.find('=');
    if (equals == std::string::npos || equals == 0)
        throw UsageError("--set " + setting + ": expected NAME=VALUE");
    const std::string name = setting.substr(0, equals);
    std::vector<std::string> known;
    bool isTaken = false;
    for (ReadyLook& ready : looks)
        for (const LookParameter& parameter : ready.look.parameters()) {
            known.push_back(parameter.name);
            if (folded(parameter.name) != folded(name)) continue;
            try {
                ready.look.set(name, setting.substr(equals + 1));
            } catch (const LookError& error) {
                throw CommandError("look " + ready.name + ": " + error.what());
            }
            isTaken = true;
            break;
        }
    if (isTaken) return;
    throw CommandError("--set " + setting + ": no look has a parameter " + name + didYouMean(name, known));
}

}  // namespace

fs::path lookFolder() {
    const fs::path folder = userFolder();
    return folder.empty() ? folder : folder / "looks";
}

std::vector<NamedLook> knownLooks() {
    std::map<std::string, NamedLook> looks;
    for (const ShippedLook& shipped : shippedLooks()) looks[shipped.name] = {shipped.name, shipped.text, {}};
    std::error_code missing;
    for (const auto& entry : fs::directory_iterator(lookFolder(), missing))
        if (entry.path().extension() == ".krl") {
            const std::string name = entry.path().stem().string();
            looks[name] = {name, readText(entry.path()), entry.path()};
        }
    std::vector<NamedLook> sorted;
    for (auto& [name, look] : looks) sorted.push_back(std::move(look));
    return sorted;
}

NamedLook requireLook(const std::string& nameOrFile) {
    if (namesFile(nameOrFile)) return {nameOrFile, readText(nameOrFile), nameOrFile};
    std::vector<std::string> names;
    for (NamedLook& look : knownLooks()) {
        if (folded(look.name) == folded(nameOrFile)) return look;
        names.push_back(look.name);
    }
    throw CommandError("there is no look " + nameOrFile + didYouMean(nameOrFile, names) +
                       "; krlimage look list shows all");
}

Look parsedLook(const NamedLook& look) {
    try {
        return Look::read(look.text);
    } catch (const LookError& error) {
        throw CommandError((look.file.empty() ? "look " + look.name : look.file.string()) + ", " +
                           error.what());
    }
}

std::vector<ReadyLook> readyLooks(const std::vector<std::string>& names,
                                  const std::vector<std::string>& settings) {
    std::vector<ReadyLook> looks;
    std::vector<NamedLook> sources;
    for (const std::string& name : names) {
        sources.push_back(requireLook(name));
        looks.push_back({sources.back().name, parsedLook(sources.back()), {}});
    }
    for (const std::string& setting : settings) set(looks, setting);
    for (size_t i = 0; i < looks.size(); ++i)
        for (const std::string& name : looks[i].look.pictureNames())
            looks[i].pictures[name] = pictureOf(sources[i], name);
    return looks;
}

}  // namespace krl::player
