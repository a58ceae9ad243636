#include "player/cli/Sweep.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <optional>
#include <regex>
#include <string_view>

#include "player/cli/Commands.h"
#include "player/cli/MethodFacts.h"

namespace krl::player {

namespace {

/// An argument as it is written, with its values.
struct SweptArgument {
    std::string start;                ///< `blur: ` or nothing
    std::string name;                 ///< for labels
    std::vector<std::string> values;  ///< several if it varies
};

struct SweptCall {
    std::string name;
    std::vector<SweptArgument> arguments;
    bool hasBrackets = false;
};

std::string trimmed(std::string_view text) {
    const size_t first = text.find_first_not_of(" \t\n");
    if (first == std::string_view::npos) return "";
    return std::string(text.substr(first, text.find_last_not_of(" \t\n") + 1 - first));
}

/// The parts between dividers that are outside of quotation marks and brackets.
std::vector<std::string> split(std::string_view text, char divider) {
    std::vector<std::string> parts(1);
    int depth = 0;
    bool isQuoted = false;
    for (const char letter : text) {
        if (letter == '"') isQuoted = !isQuoted;
        if (!isQuoted && (letter == '(' || letter == '[')) ++depth;
        if (!isQuoted && (letter == ')' || letter == ']')) --depth;
        if (letter == divider && !isQuoted && depth == 0)
            parts.emplace_back();
        else
            parts.back() += letter;
    }
    return parts;
}

size_t decimalsOf(const std::string& number) {
    const size_t point = number.find('.');
    return point == std::string::npos ? 0 : number.size() - point - 1;
}

std::string numberText(double number, size_t decimals) {
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", static_cast<int>(decimals), number);
    return text;
}

/// The numbers of `20..200 by 30`, or nothing for another text.
std::optional<std::vector<std::string>> numbersOf(const std::string& text) {
    static const std::regex form(
        R"((-?\d*\.?\d+)(%?)\s*\.\.\s*(-?\d*\.?\d+)(%?)(?:\s+by\s+(\d*\.?\d+)(%?))?)");
    constexpr double usualSteps = 4;
    std::smatch parts;
    if (!std::regex_match(text, parts, form)) return std::nullopt;
    const double first = std::stod(parts[1]), last = std::stod(parts[3]);
    const double span = std::abs(last - first);
    const double step = parts[5].matched ? std::stod(parts[5]) : span / usualSteps;
    const double count = step > 0 ? std::floor(span / step + 1e-9) + 1 : 0;
    if (count < 2 || count > double(kMostVariants))
        throw UsageError(text + ": expected a step that makes 2 to " + std::to_string(kMostVariants) +
                         " values");
    const size_t decimals = std::max({decimalsOf(parts[1]), decimalsOf(parts[3]), decimalsOf(parts[5])});
    std::vector<std::string> numbers;
    for (double i = 0; i < count; ++i) {
        const double number = first + (last < first ? -i : i) * step;
        numbers.push_back(numberText(number, decimals) + (parts[4].length() > 0 ? "%" : ""));
    }
    return numbers;
}

SweptArgument readArgument(const std::string& text) {
    static const std::regex named(R"(\s*((\w+)\s*:\s*)([\s\S]*))");
    SweptArgument argument;
    std::smatch parts;
    std::string value = text;
    if (std::regex_match(text, parts, named)) {
        argument.start = parts[1];
        argument.name = parts[2];
        value = parts[3];
    }
    value = trimmed(value);
    if (const auto numbers = numbersOf(value)) {
        argument.values = *numbers;
        return argument;
    }
    for (const std::string& one : split(value, '|')) argument.values.push_back(trimmed(one));
    return argument;
}

SweptCall readSweptCall(const std::string& text) {
    SweptCall call;
    const size_t open = text.find('('), close = text.rfind(')');
    call.name = trimmed(text.substr(0, open));
    if (open == std::string::npos || close == std::string::npos || close < open) return call;
    call.hasBrackets = true;
    const std::string inside = text.substr(open + 1, close - open - 1);
    if (trimmed(inside).empty()) return call;
    const Method& method = requireMethod(call.name);
    for (const std::string& part : split(inside, ',')) {
        SweptArgument argument = readArgument(part);
        const size_t place = call.arguments.size();
        if (argument.name.empty() && place < method.arguments().size())
            argument.name = method.arguments()[place].name;
        call.arguments.push_back(std::move(argument));
    }
    return call;
}

/// Writes the call with the values that `places` chooses, from `next` on, and adds them to the label.
std::string writeCall(const SweptCall& call, const std::vector<size_t>& places, size_t& next,
                      std::string& label) {
    std::string text = call.name;
    for (const SweptArgument& argument : call.arguments) {
        const bool varies = argument.values.size() > 1;
        const std::string& value = argument.values[varies ? places[next++] : 0];
        text += (&argument == call.arguments.data() ? "(" : ", ") + argument.start + value;
        if (varies) label += (label.empty() ? "" : ",  ") + argument.name + ' ' + value;
    }
    if (call.hasBrackets) text += call.arguments.empty() ? "()" : ")";
    return text;
}

SweepVariant variantAt(const std::vector<SweptCall>& calls, const std::vector<size_t>& places) {
    SweepVariant variant;
    size_t next = 0;
    for (const SweptCall& call : calls) variant.calls.push_back(writeCall(call, places, next, variant.label));
    return variant;
}

/// Moves on to the next combination; false after the last.
bool advance(std::vector<size_t>& places, const std::vector<size_t>& counts) {
    for (size_t i = counts.size(); i-- > 0;) {
        if (++places[i] < counts[i]) return true;
        places[i] = 0;
    }
    return false;
}

}  // namespace

Sweep readSweep(const std::vector<std::string>& texts) {
    std::vector<SweptCall> calls;
    Sweep sweep;
    size_t all = 1;
    for (const std::string& text : texts) {
        calls.push_back(readSweptCall(text));
        for (const SweptArgument& argument : calls.back().arguments) {
            if (argument.values.size() < 2) continue;
            sweep.counts.push_back(argument.values.size());
            all = std::min(all, kMostVariants + 1) * argument.values.size();
        }
    }
    if (sweep.counts.empty())
        throw UsageError(
            "nothing varies: write a range, as in 'vignette(blur: 20..200 by 30)', or "
            "alternatives, as in 'brightness(40, #RGB | #Alpha)'");
    if (all > kMostVariants)
        throw UsageError("the ranges make more than " + std::to_string(kMostVariants) +
                         " variants: use larger steps");
    std::vector<size_t> places(sweep.counts.size());
    do sweep.variants.push_back(variantAt(calls, places));
    while (advance(places, sweep.counts));
    return sweep;
}

}  // namespace krl::player
