#include "player/cli/MethodFacts.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <sstream>

#include "catalogue/Arguments.h"
#include "catalogue/ExampleCall.h"
#include "catalogue/NearestName.h"
#include "catalogue/Notation.h"
#include "core/Numbers.h"
#include "player/cli/Commands.h"

namespace krl::player {

std::vector<std::string> shortMethodNames() {
    std::vector<std::string> names;
    for (const Method* method : catalogue().methods()) names.push_back(method->shortName());
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
    // The eight letters of the prefix must not count as matching letters.
    constexpr std::string_view prefix = "krlimage";
    const bool prefixed = lowerCase(name.substr(0, prefix.size())) == prefix;
    const std::string_view bare = prefixed ? name.substr(prefix.size()) : name;
    return didYouMean(bare, shortMethodNames());
}

const Method& requireMethod(std::string_view name) {
    if (const Method* method = catalogue().find(name)) return *method;
    throw CommandError("there is no method " + std::string(name) + methodMeantBy(name));
}

const Family* familyCalled(const std::string& word) {
    const std::string wanted = lowerCase(word);
    const auto holds = [&](const Family& family) {
        std::istringstream words(lowerCase(family.heading));
        for (std::string one; words >> one;)
            if (one == wanted && one != "and") return true;
        return family.name == wanted || lowerCase(family.heading) == wanted;
    };
    const std::vector<Family>& families = catalogue().families();
    const auto found = std::find_if(families.begin(), families.end(), holds);
    return found == families.end() ? nullptr : &*found;
}

bool isFound(const Method& method, const std::string& word) {
    const std::string text = std::string(method.name()) + '\n' + method.heading() + '\n' +
                             method.summaryText() + '\n' + method.searchWords();
    return lowerCase(text).find(lowerCase(word)) != std::string::npos;
}

namespace {

std::string numberText(const Argument& argument, double value) {
    return argument.kind == ArgumentKind::Real ? realNotation(value) : std::to_string(truncate(value));
}

}  // namespace

std::string rangeText(const Argument& argument) {
    return numberText(argument, argument.range.from) + " to " + numberText(argument, argument.range.to);
}

std::string expectedText(const Argument& argument) {
    switch (argument.kind) {
        case ArgumentKind::Integer:
            return "integer, " + rangeText(argument);
        case ArgumentKind::Real:
            return "number, " + rangeText(argument);
        case ArgumentKind::Symbol:
            return choicesText(argument);
        case ArgumentKind::Colour:
            return "colour";
        case ArgumentKind::Point:
            return "point";
        case ArgumentKind::ColourList:
            return "property list of colours keyed by number";
        case ArgumentKind::SecondImage:
            return "image";
        case ArgumentKind::Value:
            return "value";
    }
    return "";
}

namespace {

/// `brightnessInt is limited to -255 to 255, and changes nothing at 0.`; empty for an argument without
/// either.
std::string limitsText(const Argument& argument) {
    const NumberRange& range = argument.range;
    const bool below = std::isfinite(range.least), above = std::isfinite(range.most);
    std::string text;
    if (below && above)
        text =
            " is limited to " + numberText(argument, range.least) + " to " + numberText(argument, range.most);
    else if (below)
        text = " is at least " + numberText(argument, range.least);
    else if (above)
        text = " is at most " + numberText(argument, range.most);
    if (!std::isnan(range.neutral))
        text += (text.empty() ? "" : " and") + std::string(" changes nothing at ") +
                numberText(argument, range.neutral);
    return text.empty() ? "" : argument.name + text + ".";
}

}  // namespace

std::vector<std::string> notesOf(const Method& method) {
    std::vector<std::string> notes;
    for (const Argument& argument : method.arguments())
        if (const std::string limits = limitsText(argument); !limits.empty()) notes.push_back(limits);
    if (method.resultDependsOnBands())
        notes.push_back(
            "The result depends on the number of bands: with #mt it differs from machine to machine, with "
            "#st and "
            "in apply it does not.");
    return notes;
}

std::string shortExample(const Method& method) {
    return method.shortName() + exampleCall(method).substr(std::strlen(method.name()));
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
            tell(argument.inputFailure, std::string(argument.name) + " is missing or of the wrong type");
    if (!method.arguments().empty())
        tell(method.inputFailureText(), "an argument is missing or of the wrong type");
    for (const Argument& argument : method.arguments()) {
        const std::string name = argument.name;
        if (argument.kind == ArgumentKind::Symbol)
            tell(argument.unknown.message, name + " is an unknown symbol");
        tell(argument.checkFailure, name + " is out of range");
        tell(argument.imageTests.heightFailure, name + " differs in height from the picture");
        tell(argument.imageTests.widthFailure, name + " differs in width from the picture");
    }
    tell(method.failedText(), "no picture is loaded, or memory ran out");
    return failures;
}

}  // namespace krl::player
