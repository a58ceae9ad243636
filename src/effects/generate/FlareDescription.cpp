#include "effects/generate/FlareDescription.h"

#include <initializer_list>
#include <string>
#include <vector>

#include "catalogue/PropertyReader.h"

namespace krl {

namespace {

using FlareProperty = Property<FlareElement>;

// Properties that several kinds have.
constexpr auto kOrigin = property<&FlareElement::origin>("origin");
constexpr auto kBrightness = property<&FlareElement::brightness>("brightness");
constexpr auto kTransparency = property<&FlareElement::transparency>("transparency");
constexpr auto kRadius = property<&FlareElement::radius>("radius");
constexpr auto kAngle = property<&FlareElement::angle>("angle");
constexpr auto kCount = property<&FlareElement::count>("count");
constexpr auto kSeed = property<&FlareElement::seed>("seed");
constexpr auto kLength = property<&FlareElement::length>("length");
constexpr auto kThickness = property<&FlareElement::thickness>("thickness");
constexpr auto kOuterThickness = property<&FlareElement::outerThickness>("outerThickness");
constexpr auto kInnerThickness = property<&FlareElement::innerThickness>("innerThickness");
constexpr auto kOuterFeather = property<&FlareElement::outerFeather>("outerFeather");
constexpr auto kInnerFeather = property<&FlareElement::innerFeather>("innerFeather");

constexpr std::initializer_list<FlareProperty> kRingProperties{
    kOrigin,       kRadius,       kOuterThickness, kInnerThickness,
    kOuterFeather, kInnerFeather, kBrightness,     kTransparency};

/// The element's colours at 0..255. A single colour counts as at 0, whatever its property is.
CallCode storeColours(const Call& call, const ValueHandle& list, FlareElement& element) {
    if (call.countElements(list) != 1)
        return call.readColourList(list, {.real = true, .scale = kLevelsPerPercent}, element.colours);
    HeldValue entry(call.caller());
    Colour colour;
    if (CallCode status = call.element(list, 1, entry)) return status;
    const CallCode status = call.read(*entry, colour);
    element.colours = {{colour.red(), colour.green(), colour.blue(), 0.0f}};
    return status;
}

CallCode storeBlend(const Call& call, const ValueHandle& value, FlareElement& element) {
    SymbolId symbol = 0;
    if (CallCode status = call.readSymbol(value, symbol)) return status;
    element.blend = call.is(symbol, "add")      ? BlendMode::Add
                    : call.is(symbol, "screen") ? BlendMode::Screen
                                                : BlendMode::Normal;
    return kCallOk;
}

// What every kind ends with. Scripts know a failed blend by the words for the colours.
constexpr FlareProperty kColours{"colourList", storeColours, "colour list"};
constexpr FlareProperty kBlend{"blendMethod", storeBlend, "colour list", "blendmethod"};

/// A kind of element and how its settings are read.
struct KindReader {
    const char* symbol;
    FlareKind kind;
    PropertyReader<FlareElement> settings{};

    KindReader(const char* symbolName, FlareKind kindOf, const char* words,
               std::initializer_list<FlareProperty> properties)
        : symbol(symbolName), kind(kindOf) {
        for (const FlareProperty& property : properties) add(words, property);
        add(words, kColours);
        // Scripts know a line's blend failure by the polygon's words.
        add(kind == FlareKind::Line ? "polygon" : words, kBlend);
    }

private:
    void add(const char* words, const FlareProperty& property) {
        settings.add(property, std::string("Invalid ") + words + ' ' + property.words + " (LensFlare)");
    }
};

const std::vector<KindReader>& kindReaders() {
    static const std::vector<KindReader> readers{
        {"polyshape",
         FlareKind::Polyshape,
         "polygon",
         {kCount, kAngle, kBrightness, kRadius, property<&FlareElement::expandShape>("expandshape", "expand"),
          property<&FlareElement::shapeBlur>("shapeBlur", "blur"), kOrigin, kTransparency}},
        {"randomFan",
         FlareKind::RandomFan,
         "random fan",
         {kCount, kAngle, kBrightness, kRadius, property<&FlareElement::aperture>("aperture"), kOrigin, kSeed,
          kTransparency}},
        {"spike",
         FlareKind::Spike,
         "spike",
         {kCount, kAngle, kBrightness, kRadius, kOrigin, kSeed, kTransparency}},
        {"star",
         FlareKind::Star,
         "star",
         {kCount, property<&FlareElement::width>("width"), kAngle, kBrightness, kRadius, kOrigin,
          kTransparency}},
        {"line",
         FlareKind::Line,
         "line",
         {kLength, kThickness, kAngle, kOrigin, property<&FlareElement::brightness, int32_t>("brightness"),
          kTransparency}},
        {"filledCircle",
         FlareKind::FilledCircle,
         "filled circle",
         {kOrigin, kRadius, kOuterFeather, kBrightness, kTransparency}},
        {"gradientCircle",
         FlareKind::GradientCircle,
         "gradient circle",
         {kOrigin, kRadius, kBrightness, kTransparency}},
        {"outlinedCircle", FlareKind::OutlinedCircle, "outlined circle", kRingProperties},
        {"fadedCircle", FlareKind::FadedCircle, "faded circle", kRingProperties},
        {"starCaustic",
         FlareKind::StarCaustic,
         "star caustic",
         {kLength, kThickness, kAngle, kOrigin, kBrightness, kTransparency}},
        {"chromaHoop",
         FlareKind::ChromaHoop,
         "chroma hoop",
         {property<&FlareElement::position>("position"), kAngle,
          property<&FlareElement::apogeeScale>("apogeeScale"), property<&FlareElement::softness>("softness"),
          property<&FlareElement::chromaSpread>("chromaSpread"), property<&FlareElement::density>("density"),
          property<&FlareElement::noise>("noise"),
          property<&FlareElement::arcCompleteness>("arcCompleteness"), kSeed, kBrightness, kTransparency,
          kOrigin, property<&FlareElement::handle>("handle")}},
    };
    return readers;
}

const KindReader* findKind(const Call& call, SymbolId symbol) {
    for (const KindReader& reader : kindReaders())
        if (call.is(symbol, reader.symbol)) return &reader;
    return nullptr;
}

}  // namespace

Outcome readFlareElement(const Call& call, const ValueHandle& description, int32_t index,
                         FlareElement& element) {
    constexpr const char* unknownKind = "Unknown shape type (LensFlare)";
    ValueHandle name;
    SymbolId symbol = 0;
    if (CallCode status = call.propertyAt(description, index, name)) return failure(unknownKind, status);
    if (CallCode status = call.readSymbol(name, symbol)) return failure(unknownKind, status);
    const KindReader* reader = findKind(call, symbol);
    if (!reader) return failure(unknownKind);

    // Settings that are missing read as no list: the first property of the kind then fails.
    HeldValue settings(call.caller());
    call.element(description, index, settings);
    element.kind = reader->kind;
    return reader->settings.read(call, *settings, element);
}

}  // namespace krl
