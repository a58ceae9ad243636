#include "frei0r/Parameters.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "common/Roles.h"

namespace krl::frei0r {

namespace {

/// In explanations, for people.
constexpr int kExplainedDigits = 6;

ParameterKind kindOf(const krl_argument_info& argument) {
    switch (argument.kind) {
        case KRL_KIND_INTEGER:
        case KRL_KIND_REAL:
            return ParameterKind::Number;
        case KRL_KIND_SYMBOL:
            return bindings::isSwitch(argument) ? ParameterKind::Switch : ParameterKind::Choice;
        case KRL_KIND_COLOUR:
            return ParameterKind::Colour;
        case KRL_KIND_POINT:
            return ParameterKind::Place;
        default:
            return ParameterKind::Notation;
    }
}

/// Where choice `index` of an argument is between 0 and 1.
double stepOf(const krl_argument_info& argument, size_t index) {
    return argument.choice_count < 2 ? 0 : double(index) / double(argument.choice_count - 1);
}

std::string choicesText(const krl_argument_info& argument) {
    std::string text;
    for (size_t i = 0; i < argument.choice_count; ++i)
        text += (i ? ", " : "") + numberText(stepOf(argument, i), kExplainedDigits) + " is " +
                argument.choices[i];
    return text;
}

/// How the parameter's values are read.
std::string mappingOf(const krl_argument_info& argument, ParameterKind kind) {
    switch (kind) {
        case ParameterKind::Number:
            return "0 is " + numberText(argument.from, kExplainedDigits) + ", 1 is " +
                   numberText(argument.to, kExplainedDigits);
        case ParameterKind::Choice:
            return choicesText(argument);
        case ParameterKind::Place:
            return "0 to 1 over the width and the height";
        case ParameterKind::Notation:
            return std::string("such as ") + argument.example;
        case ParameterKind::ChoiceName:
            return "in place of the number, when it is not empty";
        default:
            return "";
    }
}

Parameter parameterOf(const krl_method_info& method, size_t index, ParameterKind kind) {
    const krl_argument_info& argument = *method.arguments[index];
    Parameter made = {index, kind, argument.name, argument.meaning};
    if (kind == ParameterKind::ChoiceName) {
        made.name += "Name";
        made.explanation = std::string(argument.name) + " by its name";
    }
    const std::string mapping = mappingOf(argument, kind);
    if (!made.explanation.empty() && !mapping.empty()) made.explanation += "; ";
    made.explanation += mapping;
    return made;
}

/// The number nearest to `number` from 0 to 1, said in `problem` where that is another one.
double unitOf(double number, std::string& problem) {
    if (number >= 0 && number <= 1) return number;
    problem = "expected a number from 0 to 1, got " + numberText(number, kExplainedDigits);
    return number > 1 ? 1 : 0;
}

uint8_t levelOf(float share) {
    return static_cast<uint8_t>(std::lround(255 * std::clamp(share >= 0 ? share : 0.0f, 0.0f, 1.0f)));
}

int32_t pixelOf(double share, int32_t size, std::string& problem) {
    return static_cast<int32_t>(std::lround(unitOf(share, problem) * size));
}

size_t choiceNamed(const krl_argument_info& argument, const char* name) {
    for (size_t i = 0; i < argument.choice_count; ++i)
        if (strcasecmp(argument.choices[i], name) == 0) return i;
    return argument.choice_count;
}

bindings::Value numberValue(const krl_argument_info& argument, double share, std::string& problem) {
    const double number = argument.from + unitOf(share, problem) * (argument.to - argument.from);
    return bindings::Value(argument.kind == KRL_KIND_REAL
                               ? krl_real(number)
                               : krl_integer(static_cast<int32_t>(std::lround(number))));
}

bindings::Value choiceValue(const krl_argument_info& argument, double share, std::string& problem) {
    const double last = double(argument.choice_count - 1);
    return bindings::Value(
        krl_symbol(argument.choices[static_cast<size_t>(std::lround(unitOf(share, problem) * last))]));
}

bindings::Value namedChoice(const krl_argument_info& argument, const std::string& name,
                            std::string& problem) {
    const size_t found = choiceNamed(argument, name.c_str() + (name[0] == '#'));
    if (found < argument.choice_count) return bindings::Value(krl_symbol(argument.choices[found]));
    problem = "expected one of";
    for (size_t i = 0; i < argument.choice_count; ++i)
        problem += std::string(i ? ", " : " ") + argument.choices[i];
    problem += ", got " + name;
    return nullptr;
}

bindings::Value notationValue(const std::string& text, std::string& problem) {
    char why[256] = "";
    bindings::Value value(krl_parse(text.c_str(), why, sizeof why));
    if (!value) problem = why;
    return value;
}

}  // namespace

std::string numberText(double number, int digits) {
    char text[32];
    std::snprintf(text, sizeof text, "%.*g", digits, number);
    return text;
}

std::string colourText(const f0r_param_color_t& colour) {
    char text[8];
    std::snprintf(text, sizeof text, "%02x%02x%02x", unsigned{levelOf(colour.r)}, unsigned{levelOf(colour.g)},
                  unsigned{levelOf(colour.b)});
    return text;
}

int Parameter::type() const {
    switch (kind) {
        case ParameterKind::Switch:
            return kFrei0rBool;
        case ParameterKind::Colour:
            return kFrei0rColor;
        case ParameterKind::Place:
            return kFrei0rPosition;
        case ParameterKind::Notation:
        case ParameterKind::ChoiceName:
            return kFrei0rString;
        default:
            return kFrei0rDouble;
    }
}

std::vector<Parameter> parametersOf(const krl_method_info& method) {
    std::vector<Parameter> made, names;
    for (size_t i = 0; i < method.argument_count; ++i) {
        const krl_argument_info& argument = *method.arguments[i];
        const bool isSize = bindings::roleOf(method) == bindings::Role::Source && bindings::isSize(argument);
        if (isSize || argument.kind == KRL_KIND_PICTURE) continue;
        const ParameterKind kind = kindOf(argument);
        made.push_back(parameterOf(method, i, kind));
        if (kind == ParameterKind::Choice) names.push_back(parameterOf(method, i, ParameterKind::ChoiceName));
    }
    made.insert(made.end(), names.begin(), names.end());
    return made;
}

Setting settingOf(ParameterKind kind, const Scale& scale, const krl_value& value) {
    Setting setting;
    const krl_argument_info& argument = *scale.argument;
    if (kind == ParameterKind::Number) {
        krl_get_real(&value, &setting.number);
        setting.number = (setting.number - argument.from) / (argument.to - argument.from);
    } else if (kind == ParameterKind::Switch) {
        setting.number = strcasecmp(krl_get_text(&value), "true") == 0;
    } else if (kind == ParameterKind::Choice) {
        setting.number = stepOf(argument, choiceNamed(argument, krl_get_text(&value)));
    } else if (kind == ParameterKind::Colour) {
        uint8_t red = 0, green = 0, blue = 0;
        krl_get_colour(&value, &red, &green, &blue);
        setting.colour = {float(red) / 255, float(green) / 255, float(blue) / 255};
    } else if (kind == ParameterKind::Place) {
        int32_t x = 0, y = 0;
        krl_get_point(&value, &x, &y);
        setting.place = {double(x) / scale.width, double(y) / scale.height};
    } else if (kind == ParameterKind::Notation) {
        setting.text.resize(krl_write(&value, nullptr, 0));
        krl_write(&value, setting.text.data(), setting.text.size() + 1);
    }
    return setting;
}

bindings::Value valueOf(ParameterKind kind, const Scale& scale, const Setting& setting,
                        std::string& problem) {
    switch (kind) {
        case ParameterKind::Number:
            return numberValue(*scale.argument, setting.number, problem);
        case ParameterKind::Choice:
            return choiceValue(*scale.argument, setting.number, problem);
        case ParameterKind::Switch:
            return bindings::Value(krl_symbol(unitOf(setting.number, problem) >= 0.5 ? "true" : "false"));
        case ParameterKind::Colour:
            return bindings::Value(
                krl_colour(levelOf(setting.colour.r), levelOf(setting.colour.g), levelOf(setting.colour.b)));
        case ParameterKind::Place:
            return bindings::Value(krl_point(pixelOf(setting.place.x, scale.width, problem),
                                             pixelOf(setting.place.y, scale.height, problem)));
        case ParameterKind::Notation:
            return notationValue(setting.text, problem);
        case ParameterKind::ChoiceName:
            return namedChoice(*scale.argument, setting.text, problem);
    }
    return nullptr;
}

}  // namespace krl::frei0r
