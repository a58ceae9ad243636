#include <string>

#include "common/Roles.h"
#include "common/Titles.h"
#include "frei0r/Descriptions.h"
#include "frei0r/Parameters.h"

namespace krl::frei0r {

namespace {

using namespace bindings;

std::string escaped(const std::string& text) {
    std::string safe;
    for (const char c : text) switch (c) {
            case '&':
                safe += "&amp;";
                break;
            case '<':
                safe += "&lt;";
                break;
            case '>':
                safe += "&gt;";
                break;
            case '"':
                safe += "&quot;";
                break;
            default:
                safe += c;
        }
    return safe;
}

std::string attribute(const char* name, const std::string& value) {
    return std::string(" ") + name + "=\"" + escaped(value) + "\"";
}

std::string element(const char* name, const std::string& text, int depth) {
    return std::string(size_t(depth) * 2, ' ') + "<" + name + ">" + escaped(text) + "</" + name + ">\n";
}

/// A list's entries, joined by `separator`.
template <class Entry>
std::string joined(const krl_argument_info& argument, const char* separator, Entry&& entry) {
    std::string text;
    for (size_t i = 0; i < argument.choice_count; ++i) text += (i ? separator : "") + entry(i);
    return text;
}

/// The attributes of a parameter that say what it takes; empty for one that has no field.
std::string fieldOf(const Parameter& parameter, const krl_argument_info& argument, const Setting& setting) {
    const bool isFromZero = argument.from == 0 && argument.to > 0;
    switch (parameter.kind) {
        case ParameterKind::Number:
            return attribute("type", "animated") +
                   attribute("default", numberText(setting.number, kExactDigits)) + attribute("min", "0") +
                   attribute("max", isFromZero ? numberText(argument.to, kExactDigits) : "1") +
                   attribute("factor", isFromZero ? numberText(argument.to, kExactDigits) : "1") +
                   attribute("decimals", argument.kind == KRL_KIND_INTEGER && isFromZero ? "0" : "4");
        case ParameterKind::Choice:
            return attribute("type", "list") +
                   attribute("default", numberText(setting.number, kExactDigits)) +
                   attribute("paramlist", joined(argument, ";", [&](size_t i) {
                                 return numberText(double(i) / double(argument.choice_count - 1),
                                                   kExactDigits);
                             }));
        case ParameterKind::Switch:
            return attribute("type", "bool") + attribute("default", numberText(setting.number, kExactDigits));
        case ParameterKind::Colour:
            return attribute("type", "color") +
                   attribute("default", "0x" + colourText(setting.colour) + "ff");
        default:
            return "";
    }
}

}  // namespace

std::string kdenliveDescription(const krl_method_info& method, const char* tag) {
    const std::string name = std::string("frei0r.krl_") + method.name;
    std::string text = "<?xml version=\"1.0\"?>\n<" + std::string(tag) + attribute("LC_NUMERIC", "C") +
                       attribute("tag", name) + attribute("id", name) + ">\n";
    text += element("name", "KRL " + titleOf(method.name), 1);
    text += element("description", method.summary, 1);
    text += element("author", "KRLImageXtra", 1);
    for (const Parameter& parameter : parametersOf(method)) {
        const krl_argument_info& argument = *method.arguments[parameter.argument];
        const Value example(krl_example(method.name, parameter.argument, kUsualWidth, kUsualHeight));
        const std::string field = fieldOf(
            parameter, argument, settingOf(parameter.kind, {&argument, kUsualWidth, kUsualHeight}, *example));
        if (field.empty()) continue;
        text += "  <parameter" + attribute("name", parameter.name) + field + ">\n";
        text += element("name", titleOf(parameter.name.c_str()), 2);
        if (parameter.kind == ParameterKind::Choice)
            text +=
                element("paramlistdisplay",
                        joined(argument, ",", [&](size_t i) { return std::string(argument.choices[i]); }), 2);
        text += element("comment", parameter.explanation, 2) + "  </parameter>\n";
    }
    return text + "</" + tag + ">\n";
}

}  // namespace krl::frei0r
