#include "catalogue/ExampleCall.h"

#include "catalogue/Notation.h"
#include "core/Numbers.h"

namespace krl {

namespace {

PropertyListValue stopsOf(const Argument& argument) {
    PropertyListValue list;
    for (const ColourStop& stop : argument.stops) list.emplace_back(stop.percent, stop.colour);
    return list;
}

Point placeOf(PlaceExample place, const ExampleSetting& setting) {
    return {.y = truncate(place.y * setting.height), .x = truncate(place.x * setting.width)};
}

}  // namespace

Value exampleValue(const Argument& argument, const ExampleSetting& setting) {
    switch (argument.kind) {
        case ArgumentKind::Integer:
            return truncate(argument.range.example);
        case ArgumentKind::Real:
            return argument.range.example;
        case ArgumentKind::Symbol:
            return Symbol{argument.example};
        case ArgumentKind::Colour:
            return argument.colourExample;
        case ArgumentKind::Point:
            return placeOf(argument.placeExample, setting);
        case ArgumentKind::ColourList:
            return stopsOf(argument);
        case ArgumentKind::SecondImage:
            return PictureReference{argument.example, 0, 0};
        case ArgumentKind::Value:
            return readNotation(argument.example);
    }
    return {};
}

std::string exampleText(const Argument& argument, const ExampleSetting& setting) {
    if (argument.kind == ArgumentKind::SecondImage && setting.image) return setting.image(argument.example);
    if (argument.kind == ArgumentKind::Value) return argument.example;
    return writeNotation(exampleValue(argument, setting));
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

}  // namespace krl
