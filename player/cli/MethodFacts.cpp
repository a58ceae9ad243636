#include "player/cli/MethodFacts.h"

#include <algorithm>
#include <cstring>

#include "core/Numbers.h"
#include "host/ExampleCall.h"
#include "player/cli/Commands.h"
#include "player/lingo/NearestName.h"

namespace krl::player {

using host::Argument;
using host::ArgumentKind;
using host::Method;

namespace {

/// Headings from the most used on. One that is not named here comes before those without a picture.
constexpr const char* kReadingOrder[] = {"Tone",
                                         "Colour",
                                         "Hue",
                                         "Film",
                                         "Blur and sharpen",
                                         "Directional blurs",
                                         "Edges",
                                         "Stylise",
                                         "Warps",
                                         "Glows",
                                         "Compositing",
                                         "Keys",
                                         "Alpha",
                                         "Generators",
                                         "",
                                         "Fields and sizes",
                                         "Engine",
                                         "Without effect"};

std::ptrdiff_t rankOf(const std::string& heading) {
    const auto found = std::find(std::begin(kReadingOrder), std::end(kReadingOrder), heading);
    const auto others = std::find(std::begin(kReadingOrder), std::end(kReadingOrder), std::string_view());
    return (found == std::end(kReadingOrder) ? others : found) - std::begin(kReadingOrder);
}

}  // namespace

std::vector<MethodGroup> methodGroups() {
    std::vector<MethodGroup> groups;
    for (const Method* method : host::methods()) {
        if (!method) continue;
        const auto found = std::find_if(groups.begin(), groups.end(), [&](const MethodGroup& group) {
            return group.heading == method->group();
        });
        if (found == groups.end())
            groups.push_back({method->group(), {method}});
        else
            found->methods.push_back(method);
    }
    std::stable_sort(groups.begin(), groups.end(), [](const MethodGroup& a, const MethodGroup& b) {
        return rankOf(a.heading) < rankOf(b.heading);
    });
    return groups;
}

std::vector<std::string> shortMethodNames() {
    std::vector<std::string> names;
    for (const Method* method : host::methods())
        if (method) names.push_back(method->shortName());
    return names;
}

namespace {

std::string lowerCase(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return lower;
}

}  // namespace

std::string methodMeantBy(std::string_view name) {
    // Whoever wrote the prefix should not have its eight letters counted as right ones.
    constexpr std::string_view prefix = "krlimage";
    const bool prefixed = lowerCase(name.substr(0, prefix.size())) == prefix;
    const std::string_view bare = prefixed ? name.substr(prefix.size()) : name;
    return didYouMean(bare, shortMethodNames());
}

const Method& requireMethod(std::string_view name) {
    if (const Method* method = host::findMethod(name)) return *method;
    throw CommandError("there is no method " + std::string(name) + methodMeantBy(name));
}

bool isFound(const Method& method, const std::string& word) {
    const std::string text = std::string(method.name()) + '\n' + method.group() + '\n' + method.summaryText();
    return lowerCase(text).find(lowerCase(word)) != std::string::npos;
}

namespace {

std::string spanText(const host::NumberRange& range, bool real) {
    const auto shown = [real](double value) {
        return real ? host::lingoReal(value) : std::to_string(truncate(value));
    };
    return shown(range.from) + " to " + shown(range.to);
}

std::string choicesText(const Argument& argument) {
    std::string text;
    const size_t count = argument.choices.size();
    for (size_t i = 0; i < count; ++i) {
        if (i > 0) text += i + 1 == count ? " or " : ", ";
        text += std::string("#") + argument.choices[i].name;
    }
    return text;
}

}  // namespace

std::string wantedText(const Argument& argument) {
    switch (argument.kind) {
        case ArgumentKind::Integer:
            return "integer, " + spanText(argument.range, false);
        case ArgumentKind::Real:
            return "number, " + spanText(argument.range, true);
        case ArgumentKind::Symbol:
            return choicesText(argument);
        case ArgumentKind::Colour:
            return "colour";
        case ArgumentKind::Point:
            return "point";
        case ArgumentKind::ColourList:
            return "list of colours under numbers";
        case ArgumentKind::SecondImage:
            return "image";
        case ArgumentKind::Value:
            return "value";
    }
    return "";
}

std::string outlineOf(const Method& method) {
    std::string text = method.shortName() + "(";
    for (const Argument& argument : method.arguments()) {
        if (text.back() != '(') text += ", ";
        text += argument.name;
    }
    return text + ")";
}

std::string countComplaint(const Method& method, size_t given) {
    const size_t wanted = method.arguments().size();
    if (given == wanted) return "";
    return outlineOf(method) + " takes " + std::to_string(wanted) +
           (wanted == 1 ? " argument, " : " arguments, ") + std::to_string(given) +
           (given == 1 ? " was given" : " were given");
}

std::string shortExample(const Method& method) {
    return method.shortName() + host::exampleCall(method).substr(std::strlen(method.name()));
}

std::vector<MethodFailure> failuresOf(const Method& method) {
    std::vector<MethodFailure> failures;
    const auto tell = [&](const char* message, const std::string& when) {
        if (!message) return;
        const auto same = std::find_if(failures.begin(), failures.end(),
                                       [&](const MethodFailure& told) { return told.message == message; });
        if (same == failures.end())
            failures.push_back({message, when});
        else if (same->when.find(when) == std::string::npos)
            same->when += "; " + when;
    };
    tell(method.engineFailureText(), "krlImageCreateLookupTables was not called");
    for (const Argument& argument : method.arguments())
        if (argument.inputFailure)
            tell(argument.inputFailure, std::string(argument.name) + " is missing or of another kind");
    if (!method.arguments().empty())
        tell(method.inputFailureText(), "an argument is missing or of another kind");
    for (const Argument& argument : method.arguments()) {
        const std::string name = argument.name;
        if (argument.kind == ArgumentKind::Symbol)
            tell(argument.unknown.message, name + " is another symbol");
        tell(argument.checkFailure, name + " is out of its limits");
        tell(argument.imageTests.heightFailure, name + " is of another height than the picture");
        tell(argument.imageTests.widthFailure, name + " is of another width than the picture");
    }
    tell(method.failedText(), "there is no picture to work on, or no memory");
    return failures;
}

bool managesEngine(const Method& method) {
    return std::strcmp(method.group(), "Engine") == 0 && !method.isSilent();
}

std::pair<bool, std::string> newPictureOf(const Method& method) {
    for (const host::ResultEntry& entry : method.resultEntries())
        if (std::strstr(entry.meaning, "new picture")) return {true, entry.key};
    return {std::strcmp(method.name(), "krlImageBroadcastSplit") == 0, ""};
}

}  // namespace krl::player
