#include "catalogue/NearestName.h"
#include "core/Numbers.h"
#include "player/host/HostError.h"
#include "player/host/SymbolTable.h"
#include "player/lingo/Arithmetic.h"
#include "player/lingo/ImageTools.h"

/// The property list that `copyPixels` takes.
namespace krl::player {

namespace {

constexpr int32_t kOpaque = 255;

[[noreturn]] void mismatch(const char* name, const char* expected, const Value& value) {
    throw HostError(std::string("copyPixels: expected ") + expected + " under #" + name + ", not " +
                    kindName(value.kind()));
}

int32_t numberUnder(const char* name, const Value& value) {
    if (!value.isNumber()) mismatch(name, "a number", value);
    return value.isInteger() ? value.integer() : rounded(value.number());
}

Pixel colourUnder(const char* name, const Value& value) {
    if (!value.is(Kind::Colour)) mismatch(name, "a colour", value);
    const Colour colour = value.colour();
    return {colour.blue(), colour.green(), colour.red(), kOpaque};
}

void setInk(const Runtime& runtime, CopyOptions& options, const Value& value) {
    options.ink = inkOf(runtime, value);
}

void setBlend(const Runtime&, CopyOptions& options, const Value& value) {
    if (!options.levelIsSet)
        options.blendLevel = rounded(clampTo(numberUnder("blend", value), 0, 100) * 2.55);
}

void setBlendLevel(const Runtime&, CopyOptions& options, const Value& value) {
    options.blendLevel = clampTo(numberUnder("blendLevel", value), 0, kOpaque);
    options.levelIsSet = true;
}

void setColor(const Runtime&, CopyOptions& options, const Value& value) {
    options.colours.front = colourUnder("color", value);
    options.colours.tinted = true;
}

void setBackground(const Runtime&, CopyOptions& options, const Value& value) {
    options.colours.back = colourUnder("bgColor", value);
    options.colours.tinted = true;
}

void setMask(const Runtime&, CopyOptions& options, const Value& value) {
    options.mask = value.as<ImageObject>();
    if (!options.mask) mismatch("maskImage", "an image", value);
}

void setMaskOffset(const Runtime&, CopyOptions& options, const Value& value) {
    const auto* point = value.as<PointObject>();
    if (!point) mismatch("maskOffset", "a point", value);
    options.maskX = numberUnder("maskOffset", point->values[0]);
    options.maskY = numberUnder("maskOffset", point->values[1]);
}

void setFastQuads(const Runtime&, CopyOptions& options, const Value& value) {
    options.bilinear = truthOf(value);
}

/// The nearest colour is always taken.
void ignore(const Runtime&, CopyOptions&, const Value&) {}

struct Option {
    const char* name;
    void (*set)(const Runtime&, CopyOptions&, const Value&);
};

constexpr Option kOptions[] = {
    {"ink", setInk},
    {"blend", setBlend},
    {"blendLevel", setBlendLevel},
    {"color", setColor},
    {"bgColor", setBackground},
    {"maskImage", setMask},
    {"maskOffset", setMaskOffset},
    {"dither", ignore},
    {"useFastQuads", setFastQuads},
};

}  // namespace

CopyOptions copyOptionsOf(const Runtime& runtime, const PropertyListObject& list) {
    CopyOptions options;
    for (const auto& [key, value] : list.entries) {
        const std::string name = runtime.plain(key);
        const Option* found = nullptr;
        for (const Option& option : kOptions)
            if (sameText(name, option.name)) found = &option;
        if (!found)
            throw HostError("copyPixels: there is no option #" + name + didYouMean(name, copyOptionNames()));
        if (!value.isVoid()) found->set(runtime, options, value);
    }
    return options;
}

std::vector<std::string> copyOptionNames() {
    std::vector<std::string> names;
    for (const Option& option : kOptions) names.emplace_back(option.name);
    return names;
}

}  // namespace krl::player
