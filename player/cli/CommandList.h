#pragma once

#include <string>
#include <vector>

/// A description of the command line, from which the completions and the manual page are generated.
namespace krl::player {

/// An option or a positional argument.
struct OptionDescription {
    std::vector<std::string> names;  ///< `-o`, `--output`; a positional argument has one name
    /// The option's value: its kind in capitals, `DIR`, or the choices in lower case or digits, `mt|st`;
    /// empty for a flag.
    std::string value;
    std::string meaning;
    bool required = false;
    bool several = false;  ///< a positional argument that can be repeated
    /// Whether the settings file and the environment can give it.
    bool settable = false;

    /// The allowed values, `mt` and `st`; empty unless `value` lists choices.
    std::vector<std::string> choices() const;
};

struct CommandDescription {
    std::string name;
    std::string summary;
    std::vector<OptionDescription> words;
    std::vector<OptionDescription> options;
};

using CommandList = std::vector<CommandDescription>;

/// A completion script for `bash` or `zsh`.
std::string completionScript(const CommandList& commands, const std::string& shell);

/// The manual page in roff.
std::string manualPage(const CommandList& commands);

}  // namespace krl::player
