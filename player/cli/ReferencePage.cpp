#include "player/cli/MethodFacts.h"
#include "player/cli/MethodHelp.h"

namespace krl::player {

namespace {

/// A heading's anchor, as Markdown viewers make it.
std::string anchorOf(const std::string& heading) {
    std::string anchor;
    for (const char letter : heading) {
        if (letter == ' ')
            anchor += '-';
        else if (std::isalnum(static_cast<unsigned char>(letter)) || letter == '-')
            anchor += static_cast<char>(std::tolower(letter));
    }
    return anchor;
}

/// Symbols and numbers of the column "takes" as code, since a viewer might take `#` for its own.
std::string takesText(const Argument& argument) {
    const std::string wanted = expectedText(argument);
    return argument.kind == ArgumentKind::Symbol ? "`" + wanted + "`" : wanted;
}

std::string methodSection(const Method& method) {
    std::string text = "### " + method.shortName() + "\n\n" + method.summaryText() + "\n\n```\n" +
                       shortExample(method) + "\n```\n\n";
    if (!method.arguments().empty()) {
        text += "| Argument | Takes | Meaning |\n|---|---|---|\n";
        for (const Argument& argument : method.arguments())
            text += std::string("| `") + argument.name + "` | " + takesText(argument) + " | " +
                    argument.meaning + " |\n";
        text += '\n';
    }
    for (const ResultEntry& entry : method.resultEntries())
        text += std::string("Its result has `") + entry.key + "`: " + entry.meaning + ".\n\n";
    const auto failures = failuresOf(method);
    for (const MethodFailure& failure : failures)
        text += "- `" + failure.message + "`: " + failure.when + ".\n";
    return failures.empty() ? text : text + '\n';
}

}  // namespace

std::string referencePage() {
    std::string text =
        "# Methods\n\n"
        "Every method of the plug-in, as `krlimage help NAME` tells it. In a script a method's name has\n"
        "the prefix `krlImage`, as in `krlImageBrightness(40, #RGB)`; on the command line it may be left\n"
        "out. The result is a property list whose `error` is 0 or one of the messages below the method.\n"
        "Ranges are what is sensible to try; values beyond them are taken as well.\n\n"
        "This page is written by `krlimage docs -o docs`.\n\n";
    const auto& groups = catalogue().families();
    for (const Family& group : groups) {
        text += "- [" + group.heading + "](#" + anchorOf(group.heading) + "):";
        for (const Method* method : group.methods) {
            const std::string name = method->shortName();
            text += (method == group.methods.front() ? " [" : ", [") + name + "](#" + anchorOf(name) + ")";
        }
        text += '\n';
    }
    for (const Family& group : groups) {
        text += "\n## " + group.heading + "\n\n";
        for (const Method* method : group.methods) text += methodSection(*method);
        text.pop_back();
    }
    return text;
}

}  // namespace krl::player
