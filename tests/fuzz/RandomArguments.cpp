#include "fuzz/RandomArguments.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "catalogue/ExampleCall.h"

namespace krl::fuzz {

namespace {

double randomNumber(Bytes& bytes, const NumberRange& range) {
    const auto within = [&] { return range.from + (range.to - range.from) * bytes.below(65536) / 65535.0; };
    switch (bytes.below(8)) {
        case 0:
            return bytes.below(2) ? range.from : range.to;
        case 1:
            return std::clamp(range.least, -1e9, 1e9) + bytes.below(5) - 2;
        case 2:
            return std::clamp(range.most, -1e9, 1e9) + bytes.below(5) - 2;
        case 3:
            return static_cast<int8_t>(bytes.byte());
        case 4:
            return 3 * within() - (range.to - range.from);
        default:
            return within();
    }
}

double extremeReal(Bytes& bytes) {
    using Limits = std::numeric_limits<double>;
    const double extremes[] = {
        Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity(), Limits::max(),     Limits::min(), -0.0,
        Limits::lowest(),    4294967296.0,       bytes.raw<double>(), bytes.raw<float>()};
    return extremes[bytes.below(std::size(extremes))];
}

int32_t extremeInteger(Bytes& bytes) {
    const int32_t extremes[] = {INT32_MIN, INT32_MAX, -1, 0, 1, 65536, bytes.raw<int32_t>()};
    return extremes[bytes.below(std::size(extremes))];
}

Colour randomColour(Bytes& bytes) { return Colour(bytes.byte(), bytes.byte(), bytes.byte()); }

Point randomPoint(Bytes& bytes, int32_t width, int32_t height) {
    if (bytes.oneIn(16)) return {extremeInteger(bytes), extremeInteger(bytes)};
    const auto within = [&](int32_t size) {
        return static_cast<int32_t>(bytes.below(static_cast<uint32_t>(3 * size))) - size;
    };
    return {within(height), within(width)};
}

Value anyLeaf(Bytes& bytes, int32_t width, int32_t height) {
    switch (bytes.below(8)) {
        case 0:
            return Value();
        case 1:
            return extremeInteger(bytes);
        case 2:
            return extremeReal(bytes);
        case 3:
            return Symbol{bytes.text(bytes.below(6))};
        case 4:
            return bytes.text(bytes.below(6));
        case 5:
            return randomColour(bytes);
        case 6:
            return randomPoint(bytes, width, height);
        default:
            return ListValue();
    }
}

/// Changes a few of the leaves of a tree.
void disturb(Bytes& bytes, Value& value, int32_t width, int32_t height) {
    if (auto* list = value.as<ListValue>()) {
        for (Value& item : *list) disturb(bytes, item, width, height);
        if (bytes.oneIn(16) && !list->empty()) list->pop_back();
    } else if (auto* keyed = value.as<PropertyListValue>()) {
        for (auto& [key, item] : *keyed) disturb(bytes, item, width, height);
        if (bytes.oneIn(16) && !keyed->empty()) keyed->erase(keyed->begin() + bytes.below(8) % keyed->size());
    } else if (value.as<PictureReference>()) {
        value = randomPicture(bytes, width, height);
    } else if (bytes.oneIn(8)) {
        if (const auto* number = value.as<int32_t>())
            value = *number + static_cast<int8_t>(bytes.byte());
        else if (const auto* real = value.as<double>())
            value = *real * static_cast<int8_t>(bytes.byte()) / 16.0;
        else if (value.as<Point>())
            value = randomPoint(bytes, width, height);
        else if (value.as<Colour>())
            value = randomColour(bytes);
    } else if (bytes.oneIn(64)) {
        value = anyLeaf(bytes, width, height);
    }
}

Value colourList(Bytes& bytes, const Argument& argument) {
    PropertyListValue list;
    for (uint32_t count = bytes.below(6); count > 0; --count) {
        const double key = bytes.below(120) - 10.0;
        list.emplace_back(argument.listKeys.real ? Value(key) : Value(static_cast<int32_t>(key)),
                          randomColour(bytes));
    }
    return list;
}

Value randomArgument(Bytes& bytes, const Argument& argument, int32_t width, int32_t height) {
    if (bytes.oneIn(48)) return anyLeaf(bytes, width, height);
    switch (argument.kind) {
        case ArgumentKind::Integer:
            if (bytes.oneIn(24)) return extremeInteger(bytes);
            return static_cast<int32_t>(std::clamp(randomNumber(bytes, argument.range), -1e9, 1e9));
        case ArgumentKind::Real:
            return bytes.oneIn(24) ? extremeReal(bytes) : randomNumber(bytes, argument.range);
        case ArgumentKind::Symbol:
            if (argument.choices.empty() || bytes.oneIn(24)) return Symbol{bytes.text(bytes.below(8))};
            return Symbol{argument.choices[bytes.below(static_cast<uint32_t>(argument.choices.size()))].name};
        case ArgumentKind::Colour:
            return randomColour(bytes);
        case ArgumentKind::Point:
            return randomPoint(bytes, width, height);
        case ArgumentKind::ColourList:
            return colourList(bytes, argument);
        case ArgumentKind::SecondImage:
            return bytes.oneIn(8) ? randomPicture(bytes, 1 + static_cast<int32_t>(bytes.below(20)),
                                                  1 + static_cast<int32_t>(bytes.below(20)))
                                  : randomPicture(bytes, width, height);
        case ArgumentKind::Value:
            break;
    }
    Value value = exampleValue(argument, {width, height, {}});
    disturb(bytes, value, width, height);
    return value;
}

}  // namespace

Picture randomPicture(Bytes& bytes, int32_t width, int32_t height) {
    Picture picture = Picture::blank(width, height);
    const uint32_t kind = bytes.below(4);
    uint32_t state = bytes.raw<uint32_t>();
    const auto count = static_cast<size_t>(width) * static_cast<size_t>(height) * sizeof(Pixel);
    for (size_t i = 0; i < count; ++i) {
        if (kind != 1 || i % 16 == 0) state = state * 1664525 + 1013904223;  // 1: runs of equal pixels
        picture.pixels[i] = static_cast<uint8_t>(state >> 24);
        if (i % 4 == 3 && kind == 2) picture.pixels[i] = 255;
        if (kind == 3) picture.pixels[i] = picture.pixels[i] < 128 ? 0 : 255;
    }
    return picture;
}

std::vector<Value> randomArguments(Bytes& bytes, const Method& method, int32_t width, int32_t height) {
    std::vector<Value> arguments;
    for (const Argument& argument : method.arguments())
        arguments.push_back(randomArgument(bytes, argument, width, height));
    return arguments;
}

}  // namespace krl::fuzz
