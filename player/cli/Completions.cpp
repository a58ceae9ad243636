#include <algorithm>
#include <sstream>

#include "look/Look.h"
#include "player/cli/CommandList.h"
#include "player/cli/MethodFacts.h"

namespace krl::player {

namespace {

std::string joined(const std::vector<std::string>& words, const std::string& between) {
    std::string text;
    for (const std::string& word : words) text += (text.empty() ? "" : between) + word;
    return text;
}

/// Escapes text for use inside single quotes in a shell.
std::string quotable(const std::string& text) {
    std::string safe;
    for (const char letter : text) safe += letter == '\'' ? std::string("'\\''") : std::string(1, letter);
    return safe;
}

bool takesCalls(const OptionDescription& word) {
    return word.names.front().find("CALL") != std::string::npos;
}

/// Whether names of methods are among the positional arguments.
bool takesMethods(const CommandDescription& command) {
    const auto takes = [](const OptionDescription& word) {
        return word.names.front() == "METHOD" || takesCalls(word);
    };
    const auto hasChoices = [](const OptionDescription& word) { return !word.choices().empty(); };
    return command.name == "list" || (std::any_of(command.words.begin(), command.words.end(), takes) &&
                                      std::none_of(command.words.begin(), command.words.end(), hasChoices));
}

std::string lookNames() {
    std::vector<std::string> names;
    for (const ShippedLook& look : shippedLooks()) names.push_back(look.name);
    return joined(names, " ");
}

/// What completes the value of an option; nothing for a file.
std::string valuesOf(const OptionDescription& option) {
    return option.value == "LOOK" ? lookNames() : joined(option.choices(), " ");
}

/// The words that complete a command's positional arguments.
std::string bashWords(const CommandDescription& command) {
    if (takesMethods(command)) return "$methods";
    for (const OptionDescription& word : command.words)
        if (!word.choices().empty()) return joined(word.choices(), " ");
    return "";
}

std::string bashCase(const CommandDescription& command) {
    std::string options, values;
    for (const OptionDescription& option : command.options) {
        options += (options.empty() ? "" : " ") + joined(option.names, " ");
        if (!option.value.empty())
            values +=
                "            " + joined(option.names, " | ") + ") words='" + valuesOf(option) + "' ;;\n";
    }
    return "    " + command.name +
           ")\n"
           "        words=\"" +
           bashWords(command) +
           "\"\n"
           "        case $current in -*) words='" +
           options +
           "' ;; esac\n"
           "        case $before in\n" +
           values +
           "            *) ;;\n"
           "        esac ;;\n";
}

std::string bashScript(const CommandList& commands) {
    std::string names, cases;
    for (const CommandDescription& command : commands) {
        names += (names.empty() ? "" : " ") + command.name;
        cases += bashCase(command);
    }
    return "# bash completion for krlimage: eval \"$(krlimage completions bash)\"\n"
           "_krlimage() {\n"
           "    local current=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} words=\n"
           "    local methods='" +
           joined(shortMethodNames(), " ") +
           "'\n"
           "    [ \"$COMP_CWORD\" -eq 1 ] && { COMPREPLY=($(compgen -W '" +
           names +
           " --help --version' -- \"$current\")); return; }\n"
           "    case ${COMP_WORDS[1]} in\n" +
           cases +
           "    *) ;;\n"
           "    esac\n"
           "    [ -z \"$words\" ] || COMPREPLY=($(compgen -W \"$words\" -- \"$current\"))\n"
           "}\n"
           "complete -o default -o bashdefault -F _krlimage krlimage\n";
}

std::string zshArgument(const OptionDescription& option) {
    std::string action;
    if (!valuesOf(option).empty())
        action = ":" + option.value + ":(" + valuesOf(option) + ")";
    else if (!option.value.empty())
        action = ":" + option.value + ":_files";
    std::string text;
    for (const std::string& name : option.names)
        text += " \\\n            '" + name + "[" + quotable(option.meaning) + "]" + action + "'";
    return text;
}

std::string zshCase(const CommandDescription& command) {
    std::string text = "        " + command.name + ")\n            _arguments";
    for (const OptionDescription& option : command.options) text += zshArgument(option);
    const bool methods = takesMethods(command);
    for (const OptionDescription& word : command.words) {
        if (takesCalls(word))
            text += " \\\n            '*:picture or call:{compadd " + joined(shortMethodNames(), " ") +
                    "; _files}'";
        else if (methods && command.words.size() == 1)
            text += " \\\n            '*:method:(" + joined(shortMethodNames(), " ") + ")'";
        else if (!word.choices().empty())
            text += " \\\n            '1:" + word.names.front() + ":(" + joined(word.choices(), " ") + ")'";
        else if (&word == &command.words.back())
            text += " \\\n            '*:" + quotable(word.names.front()) + ":_files'";
    }
    return text + " ;;\n";
}

std::string zshScript(const CommandList& commands) {
    std::string names, cases;
    for (const CommandDescription& command : commands) {
        names += "        '" + command.name + ":" + quotable(command.summary) + "'\n";
        cases += zshCase(command);
    }
    return "#compdef krlimage\n"
           "# zsh completion for krlimage: source <(krlimage completions zsh)\n"
           "_krlimage() {\n"
           "    local -a commands=(\n" +
           names +
           "    )\n"
           "    (( CURRENT == 2 )) && { _describe command commands; return }\n"
           "    shift words\n"
           "    (( CURRENT-- ))\n"
           "    case $words[1] in\n" +
           cases +
           "    esac\n"
           "}\n"
           "compdef _krlimage krlimage\n";
}

}  // namespace

std::vector<std::string> OptionDescription::choices() const {
    std::vector<std::string> found;
    const bool literal = !value.empty() && !std::isupper(static_cast<unsigned char>(value.front()));
    std::istringstream text(literal ? value : "");
    for (std::string one; std::getline(text, one, '|');) found.push_back(one);
    return found;
}

std::string completionScript(const CommandList& commands, const std::string& shell) {
    return shell == "bash" ? bashScript(commands) : zshScript(commands);
}

}  // namespace krl::player
