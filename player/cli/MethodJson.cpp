#include <nlohmann/json.hpp>

#include "catalogue/ExampleCall.h"
#include "player/cli/MethodFacts.h"
#include "player/cli/MethodHelp.h"

namespace krl::player {

namespace {

using Json = nlohmann::ordered_json;

const char* kindName(ArgumentKind kind) {
    switch (kind) {
        case ArgumentKind::Integer:
            return "integer";
        case ArgumentKind::Real:
            return "float";
        case ArgumentKind::Symbol:
            return "symbol";
        case ArgumentKind::Colour:
            return "colour";
        case ArgumentKind::Point:
            return "point";
        case ArgumentKind::ColourList:
            return "colourList";
        case ArgumentKind::SecondImage:
            return "image";
        case ArgumentKind::Value:
            return "value";
    }
    return "";
}

Json argumentJson(const Argument& argument) {
    Json json = {{"name", argument.name}, {"kind", kindName(argument.kind)}, {"meaning", argument.meaning}};
    if (argument.kind == ArgumentKind::Integer || argument.kind == ArgumentKind::Real)
        json["range"] = {argument.range.from, argument.range.to};
    for (const SymbolChoice& choice : argument.choices) json["choices"].push_back(choice.name);
    json["example"] = exampleText(argument);
    return json;
}

Json summaryJson(const Method& method) {
    return {{"name", method.shortName()},
            {"method", method.name()},
            {"group", method.heading()},
            {"summary", method.summaryText()}};
}

}  // namespace

std::string helpJson(const Method& method) {
    Json json = summaryJson(method);
    json["arguments"] = Json::array();
    for (const Argument& argument : method.arguments()) json["arguments"].push_back(argumentJson(argument));
    json["example"] = shortExample(method);
    if (!notesOf(method).empty()) json["notes"] = notesOf(method);
    json["results"] = Json::object();
    for (const ResultEntry& entry : method.resultEntries()) json["results"][entry.key] = entry.meaning;
    json["errors"] = Json::object();
    for (const MethodFailure& failure : failuresOf(method)) json["errors"][failure.message] = failure.when;
    return json.dump(2) + '\n';
}

std::string listJson(const std::string& word) {
    Json json = Json::array();
    for (const Family& group : catalogue().families())
        for (const Method* method : group.methods)
            if (isFound(*method, word)) json.push_back(summaryJson(*method));
    return json.dump(2) + '\n';
}

}  // namespace krl::player
