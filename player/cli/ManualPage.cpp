#include <map>

#include "player/cli/CommandList.h"
#include "player/cli/MethodFacts.h"
#include "player/cli/Settings.h"

namespace krl::player {

namespace {

/// Escapes text so that the formatter prints it literally.
std::string plain(const std::string& text) {
    std::string safe;
    for (const char letter : text) {
        if (letter == '\n')
            safe += ' ';
        else if (letter == '-')
            safe += "\\-";
        else if (letter == '\\')
            safe += "\\e";
        else
            safe += letter;
    }
    return !safe.empty() && (safe[0] == '.' || safe[0] == '\'') ? "\\&" + safe : safe;
}

std::string bold(const std::string& text) { return "\\fB" + plain(text) + "\\fR"; }
std::string slanted(const std::string& text) { return "\\fI" + plain(text) + "\\fR"; }

std::string synopsis(const CommandDescription& command) {
    std::string text = bold("krlimage " + command.name);
    if (!command.options.empty()) text += " [" + slanted("option") + "...]";
    for (const OptionDescription& option : command.options)
        if (option.required) text += " " + bold(option.names.front()) + " " + slanted(option.value);
    for (const OptionDescription& word : command.words) {
        const std::string shown = slanted(word.names.front()) + (word.several ? "..." : "");
        text += word.required ? " " + shown : " [" + shown + "]";
    }
    return text;
}

/// The text with exactly one full stop at its end.
std::string sentence(const std::string& text) { return plain(text) + (text.ends_with('.') ? "\n" : ".\n"); }

std::string item(const OptionDescription& option) {
    std::string names;
    for (const std::string& name : option.names) names += (names.empty() ? "" : ", ") + bold(name);
    if (!option.value.empty()) names += " " + slanted(option.value);
    return ".TP\n" + names + "\n" + sentence(option.meaning);
}

/// How options can be given once and for all.
std::string settings(const CommandList& commands) {
    std::map<std::string, std::string> users;  // commands, by the option that they share
    for (const CommandDescription& command : commands)
        for (const OptionDescription& option : command.options)
            if (option.settable) {
                std::string& names = users[option.names.back()];
                names += (names.empty() ? "" : ", ") + command.name;
            }
    std::string text =
        ".SH SETTINGS\nThe file ~/.config/krlimage/config gives options that need not be repeated, a line "
        "for "
        "each, such as\n.PP\n.RS\n.nf\nquality = 85\n[apply]\nstrip = true\n.fi\n.RE\n.PP\n"
        "Lines below the name of a command in brackets are for that command. Environment variables win over "
        "the file, and the command line wins over both.\n";
    for (const auto& [option, names] : users)
        text += ".TP\n" + bold(variableFor(option.substr(2))) + "\n" + bold(option) + " of " + plain(names) +
                ".\n";
    return text;
}

std::string status(const std::string& code, const std::string& meaning) {
    return ".TP\n" + bold(code) + "\n" + meaning + "\n";
}

}  // namespace

std::string manualPage(const CommandList& commands) {
    std::string page = ".TH KRLIMAGE 1 \"\" \"krlimage " KRL_VERSION
                       "\" \"User Commands\"\n"
                       ".SH NAME\nkrlimage \\- grade, key, warp and composite pictures\n.SH SYNOPSIS\n";
    for (const CommandDescription& command : commands) page += synopsis(command) + "\n.br\n";
    page +=
        ".SH DESCRIPTION\n"
        "Runs the effects of KRLImageXtra on pictures, using single calls or Lingo scripts. A call is a "
        "method's name and its arguments, quoted for the shell:\n.PP\n.RS\n.nf\n"
        "krlimage apply photo.jpg \\-o out.jpg 'brightness(40, #RGB)' 'vignette(blur: 40)'\n"
        ".fi\n.RE\n.PP\n"
        "Pictures are read and written as PNG, JPEG, TIFF, WebP, GIF, HEIC, AVIF and PAM, read as PGM and "
        "PPM "
        "and written as JPEG XL. "
        "Output files are written atomically: completely or not at all. No input is overwritten without "
        "\\-\\-in\\-place.\n.PP\n"
        "Lengths and points of a call may be in percent of the picture, and every call that rewrites the "
        "picture takes mix, mask, region and feather. A second picture of another size takes fit, scale and "
        "place. A look is a chain of calls in a file.\n.SH COMMANDS\n";
    for (const CommandDescription& command : commands) {
        page += ".SS " + synopsis(command) + "\n" + sentence(command.summary);
        for (const OptionDescription& word : command.words) page += item(word);
        for (const OptionDescription& option : command.options) page += item(option);
    }
    page += ".SH METHODS\n";
    for (const Family& group : catalogue().families()) {
        page += ".TP\n" + bold(group.heading) + "\n";
        for (const Method* method : group.methods)
            page += plain(method->shortName()) + (method == group.methods.back() ? ".\n" : ",\n");
    }
    return page + settings(commands) +
           ".SH FILES\n.TP\n~/.config/krlimage/config\nSettings.\n.TP\n~/.config/krlimage/looks/*.krl\n"
           "Looks of the user, by name.\n.PP\nXDG_CONFIG_HOME replaces ~/.config.\n"
           ".SH EXIT STATUS\n" +
           status("0", "Everything is done.") +
           status("1", "A script, a call or a picture failed, or pictures differ.") +
           status("2", "The command line is wrong.") +
           status("3", "A batch ended early, after \\-\\-max\\-failures.") +
           status("124", "The time of \\-\\-timeout is over.") +
           status("130", "Interrupted; other signals end with 128 and their number.");
}

}  // namespace krl::player
