#include "player/cli/MethodHelp.h"

#include <algorithm>

#include "catalogue/Arguments.h"
#include "player/cli/ExamplePictures.h"
#include "player/cli/MethodFacts.h"

namespace krl::player {

namespace {

using Rows = std::vector<std::vector<std::string>>;

/// Aligns cells in columns as wide as their widest cell. A cell wider than `widest` does not widen its
/// column: the row continues on the next line.
std::string columns(const Rows& rows, size_t widest = 34) {
    std::vector<size_t> widths;
    for (const auto& row : rows)
        for (size_t i = 0; i < row.size(); ++i) {
            if (widths.size() <= i) widths.push_back(0);
            if (row[i].size() <= widest) widths[i] = std::max(widths[i], row[i].size());
        }
    std::string text;
    for (const auto& row : rows) {
        std::string line;
        size_t column = 2;
        for (size_t i = 0; i < row.size(); ++i) {
            if (line.size() > column) {
                text += line + '\n';
                line.clear();
            }
            line.resize(column, ' ');
            line += row[i];
            column += widths[i] + 2;
        }
        text += line + '\n';
    }
    return text;
}

std::string section(const std::string& heading, const Rows& rows) {
    return rows.empty() ? "" : '\n' + heading + '\n' + columns(rows);
}

}  // namespace

std::string helpText(const Method& method) {
    Rows arguments, results, failures;
    for (const Argument& argument : method.arguments())
        arguments.push_back({argument.name, expectedText(argument), argument.meaning});
    if (!method.isSilent()) results.push_back({"error", "0 on success, otherwise the error message"});
    for (const ResultEntry& entry : method.resultEntries()) results.push_back({entry.key, entry.meaning});
    for (const MethodFailure& failure : failuresOf(method))
        failures.push_back({failure.message, failure.when});
    const std::string heading = outlineOf(method), name = method.name(), summary = method.summaryText();
    std::string text =
        heading + "\n  " + summary + "\n  " + method.heading() + "; " + name + " in scripts.\n";
    text += section("Arguments", arguments);
    Rows notes;
    for (const std::string& note : notesOf(method)) notes.push_back({note});
    text += section("Notes", notes);
    text += section("Example", {{"krlimage apply in.png -o out.png '" + shortExample(method) + "'"}});
    text += section("Result", results);
    text += section("Errors", failures);
    if (hasExamplePicture(method)) text += section("Picture", {{examplePictureAddress(method)}});
    return text;
}

namespace {

std::string listText(const Family& family, const std::string& word) {
    Rows rows;
    for (const Method* method : family.methods)
        if (isFound(*method, word)) rows.push_back({method->shortName(), method->summaryText()});
    return rows.empty() ? "" : family.heading + '\n' + columns(rows);
}

}  // namespace

std::string listText(const std::string& word) {
    std::string text;
    for (const Family& family : catalogue().families()) {
        const std::string one = listText(family, word);
        text += (text.empty() || one.empty() ? "" : "\n") + one;
    }
    return text;
}

std::string helpText(const Family& family) { return listText(family, ""); }

}  // namespace krl::player
