#pragma once

#include <string>
#include <vector>

/// The command line described by itself, for what is generated from it.
namespace krl::player {

/// An option or a word in its place.
struct OptionDescription {
    std::vector<std::string> names;  ///< `-o`, `--output`; of a word in its place its one name
    /// What follows the name: in capitals what it stands for, `DIR`; in small letters the words
    /// themselves, `mt|st`; empty for a switch.
    std::string value;
    std::string meaning;
    bool required = false;
    bool several = false;  ///< of a word in its place: more may follow

    /// The words that can follow, where it is given words: `mt`, `st`.
    std::vector<std::string> choices() const;
};

struct CommandDescription {
    std::string name;
    std::string summary;
    std::vector<OptionDescription> words;
    std::vector<OptionDescription> options;
};

using CommandList = std::vector<CommandDescription>;

/// Completion for `bash` or `zsh`, to be read by the shell.
std::string completionScript(const CommandList& commands, const std::string& shell);

/// The manual page, as `man` reads it.
std::string manualPage(const CommandList& commands);

}  // namespace krl::player
