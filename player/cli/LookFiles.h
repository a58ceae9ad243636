#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "look/Look.h"

namespace krl::player {

/// A look by its name.
struct NamedLook {
    std::string name;
    std::string text;
    std::filesystem::path file;  ///< empty for one that comes with the program
};

/// The looks that come with the program and those in the user's folder, by name; a user's look hides a
/// shipped one of the same name.
std::vector<NamedLook> knownLooks();

/// The user's folder of looks; empty where there is no home.
std::filesystem::path lookFolder();

/// The look of that name or in that file. Throws `CommandError`.
NamedLook requireLook(const std::string& nameOrFile);

/// Parses the text of a look; throws `CommandError` with the file's name and the line.
Look parsedLook(const NamedLook& look);

/// A look that is ready for pictures, with the pictures that it reads.
struct ReadyLook {
    std::string name;
    Look look;
    std::map<std::string, krl::Picture> pictures;
};

/// Looks by name or file with their parameters set by `NAME=VALUE`; each setting is for every look that has
/// the parameter. Throws `CommandError`, also for a setting that no look takes.
std::vector<ReadyLook> readyLooks(const std::vector<std::string>& names,
                                  const std::vector<std::string>& settings);

}  // namespace krl::player
