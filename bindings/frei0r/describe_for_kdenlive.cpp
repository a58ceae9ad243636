#include <cmath>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>

#include "common/Roles.h"
#include "frei0r/Parameters.h"

/// Writes a description of every filter and mixer into the folders `effects` and `transitions` of the folder
/// given, from which Kdenlive makes its dialogs. Numbers have the method's own scale where that begins at 0.
/// Lists and places have no field there, and keep the example.
namespace {

using namespace krl::bindings;
using namespace krl::frei0r;

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

std::string numberText(double number) {
    char text[32];
    std::snprintf(text, sizeof text, "%.9g", number);
    return text;
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
            return attribute("type", "animated") + attribute("default", numberText(setting.number)) +
                   attribute("min", "0") + attribute("max", isFromZero ? numberText(argument.to) : "1") +
                   attribute("factor", isFromZero ? numberText(argument.to) : "1") +
                   attribute("decimals", argument.kind == KRL_KIND_INTEGER && isFromZero ? "0" : "4");
        case ParameterKind::Choice:
            return attribute("type", "list") + attribute("default", numberText(setting.number)) +
                   attribute("paramlist", joined(argument, ";", [&](size_t i) {
                                 return numberText(double(i) / double(argument.choice_count - 1));
                             }));
        case ParameterKind::Switch:
            return attribute("type", "bool") + attribute("default", numberText(setting.number));
        case ParameterKind::Colour: {
            char text[16];
            std::snprintf(text, sizeof text, "0x%02lx%02lx%02lxff", std::lround(setting.colour.r * 255),
                          std::lround(setting.colour.g * 255), std::lround(setting.colour.b * 255));
            return attribute("type", "color") + attribute("default", text);
        }
        default:
            return "";
    }
}

std::string describe(const krl_method_info& method, const char* tag) {
    const std::string name = std::string("frei0r.krl_") + method.name;
    std::string text = "<?xml version=\"1.0\"?>\n<" + std::string(tag) + attribute("LC_NUMERIC", "C") +
                       attribute("tag", name) + attribute("id", name) + ">\n";
    text += element("name", std::string("KRL ") + method.name, 1);
    text += element("description", method.summary, 1);
    text += element("author", "KRLImageXtra", 1);
    for (const Parameter& parameter : parametersOf(method)) {
        const krl_argument_info& argument = *method.arguments[parameter.argument];
        const Value example(krl_example(method.name, parameter.argument, 960, 640));
        const std::string field =
            fieldOf(parameter, argument, settingOf(parameter.kind, {&argument, 960, 640}, *example));
        if (field.empty()) continue;
        text += "  <parameter" + attribute("name", parameter.name) + field + ">\n";
        text += element("name", parameter.name, 2);
        if (parameter.kind == ParameterKind::Choice)
            text +=
                element("paramlistdisplay",
                        joined(argument, ",", [&](size_t i) { return std::string(argument.choices[i]); }), 2);
        text += element("comment", parameter.explanation, 2) + "  </parameter>\n";
    }
    return text + "</" + tag + ">\n";
}

}  // namespace

int main(int count, char** words) {
    if (count != 2) {
        std::fprintf(stderr, "expected a folder with the folders effects and transitions\n");
        return 2;
    }
    bool isWritten = true;
    forEachWithRole([&](const krl_method_info& method, Role role) {
        if (role == Role::Source) return;
        const char* const tag = role == Role::Mixer ? "transition" : "effect";
        std::ofstream out(std::string(words[1]) + "/" + tag + "s/frei0r_krl_" + method.name + ".xml");
        out << describe(method, tag);
        isWritten &= out.flush().good();
    });
    if (!isWritten) std::fprintf(stderr, "cannot write descriptions into %s\n", words[1]);
    return isWritten ? 0 : 1;
}
