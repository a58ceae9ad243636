#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

/// Options that the user need not repeat. A settings file has lines such as `quality = 85`, those for one
/// command below its name in brackets, `[apply]`. Environment variables such as `KRLIMAGE_QUALITY` win over
/// the file, and the command line wins over both. Options that are declared configurable can be set.
namespace krl::player {

/// The value of an option and where it comes from.
struct Setting {
    std::string source;  ///< the file or the variable
    const CLI::Option* option;
    std::string value;

    /// `--quality`.
    std::string name() const { return "--" + option->get_lnames().front(); }
    std::string word() const { return name() + '=' + value; }
    /// Whether a word of the command line gives the option too: `--quality=5`, `--quality`, `-j4`.
    bool isGivenBy(const std::string& word) const {
        if (word.starts_with("--")) return option->check_lname(word.substr(2, word.find('=') - 2));
        return word.size() > 1 && word[0] == '-' && option->check_sname(word.substr(1, 1));
    }
};

/// What the user's file and the environment set for a command, the strongest last. Throws `UsageError` for a
/// file that sets what cannot be set.
std::vector<Setting> settingsFor(const CLI::App& program, const CLI::App& command);

/// `KRLIMAGE_QUALITY` for `quality`.
std::string variableFor(const std::string& option);

}  // namespace krl::player
