#include <string>

#include "common/Roles.h"
#include "common/Titles.h"
#include "frei0r/Descriptions.h"
#include "frei0r/Parameters.h"

namespace krl::frei0r {

namespace {

/// A text in quotation marks. MLT knows no way to write one within.
std::string quoted(std::string text) {
    for (char& letter : text)
        if (letter == '"') letter = '\'';
    return '"' + text + '"';
}

std::string line(int depth, const std::string& key, const std::string& value) {
    return std::string(static_cast<size_t>(depth) * 2, ' ') + key + ": " + value + '\n';
}

/// Type, widget and range, and the default where it is no text.
std::string fieldsOf(const Parameter& parameter, const krl_argument_info& argument, const Setting& setting) {
    const auto field = [](const char* key, const std::string& value) { return line(2, key, value); };
    switch (parameter.type()) {
        case kFrei0rDouble:
            return field("type", "float") + field("minimum", "0") + field("maximum", "1") +
                   field("default", numberText(setting.number, kExactDigits)) + field("animation", "yes") +
                   field("widget", "slider");
        case kFrei0rBool:
            return field("type", "boolean") + field("default", numberText(setting.number, kExactDigits)) +
                   field("widget", "checkbox");
        case kFrei0rColor:
            return field("type", "color") + field("default", quoted('#' + colourText(setting.colour))) +
                   field("animation", "yes") + field("widget", "color");
        default:
            break;
    }
    std::string text = field("type", "string");
    if (parameter.kind != ParameterKind::ChoiceName) return text + field("widget", "text");
    text += field("widget", "combo") + "    values:\n";
    for (size_t i = 0; i < argument.choice_count; ++i)
        text += std::string("      - ") + argument.choices[i] + '\n';
    return text;
}

}  // namespace

std::string mltDescription(const krl_method_info& method, const char* type) {
    std::string text = "schema_version: 7.0\n" + line(0, "type", type) +
                       line(0, "identifier", std::string("frei0r.krl_") + method.name) +
                       line(0, "title", quoted(bindings::titleOf(method.name))) + line(0, "version", "1") +
                       line(0, "creator", "KRLImageXtra") + line(0, "language", "en") + "tags:\n  - Video\n" +
                       line(0, "description", quoted(method.summary));
    const std::vector<Parameter> parameters = parametersOf(method);
    if (!parameters.empty()) text += "parameters:\n";
    for (const Parameter& parameter : parameters) {
        const krl_argument_info& argument = *method.arguments[parameter.argument];
        const bindings::Value example(
            krl_example(method.name, parameter.argument, kUsualWidth, kUsualHeight));
        text += "  - identifier: " + parameter.name + '\n' +
                line(2, "title", quoted(bindings::titleOf(parameter.name.c_str()))) +
                line(2, "description", quoted(parameter.explanation)) + line(2, "mutable", "yes") +
                fieldsOf(parameter, argument,
                         settingOf(parameter.kind, {&argument, kUsualWidth, kUsualHeight}, *example));
    }
    return text;
}

}  // namespace krl::frei0r
