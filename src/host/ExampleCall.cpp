#include "host/ExampleCall.h"

#include <charconv>

#include "core/Numbers.h"

namespace krl::host {

namespace {

std::string colourText(Colour colour) {
    return "rgb(" + std::to_string(colour.red()) + ", " + std::to_string(colour.green()) + ", " +
           std::to_string(colour.blue()) + ")";
}

std::string listText(const Argument& argument) {
    std::string text = "[";
    for (const ColourStop& stop : argument.stops) {
        if (text.size() > 1) text += ", ";
        text += std::to_string(stop.percent) + ": " + colourText(stop.colour);
    }
    return argument.stops.empty() ? "[:]" : text + "]";
}

std::string pointText(PlaceExample place, const ExampleSetting& setting) {
    return "point(" + std::to_string(truncate(place.x * setting.width)) + ", " +
           std::to_string(truncate(place.y * setting.height)) + ")";
}

}  // namespace

std::string lingoReal(double value) {
    char buffer[64];
    const auto end = std::to_chars(buffer, buffer + sizeof(buffer), value, std::chars_format::fixed).ptr;
    std::string text(buffer, end);
    return text.find('.') == std::string::npos ? text + ".0" : text;
}

std::string exampleText(const Argument& argument, const ExampleSetting& setting) {
    switch (argument.kind) {
        case ArgumentKind::Integer:
            return std::to_string(truncate(argument.range.example));
        case ArgumentKind::Real:
            return lingoReal(argument.range.example);
        case ArgumentKind::Symbol:
            return std::string("#") + argument.example;
        case ArgumentKind::Colour:
            return colourText(argument.colourExample);
        case ArgumentKind::Point:
            return pointText(argument.placeExample, setting);
        case ArgumentKind::ColourList:
            return listText(argument);
        case ArgumentKind::SecondImage:
            return setting.image ? setting.image(argument.example)
                                 : "image(\"" + std::string(argument.example) + "\")";
        case ArgumentKind::Value:
            return argument.example;
    }
    return "";
}

std::string exampleCall(const Method& method, const ExampleSetting& setting) {
    std::string text = method.name();
    text += '(';
    for (size_t i = 0; i < method.arguments().size(); ++i) {
        if (i != 0) text += ", ";
        text += exampleText(method.arguments()[i], setting);
    }
    return text + ')';
}

}  // namespace krl::host
