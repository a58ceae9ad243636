#include "effects/generate/FlareDescription.h"

#include <algorithm>
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
    const bool adds = call.is(symbol, "add"), screens = call.is(symbol, "screen");
    element.blend = adds ? BlendMode::Add : screens ? BlendMode::Screen : BlendMode::Normal;
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

/// Words that hosts see interned beside the kinds; no setting has them.
constexpr const char* kUnusedWords[] = {"creationType", "pointType",   "photon", "manual", "automatic",
                                        "standard",     "antialiased", "sine",   "linear", "curved"};

}  // namespace

FlareDescription::FlareDescription(const Call& call, const ValueHandle& list) : call_(call), list_(list) {
    for (const KindReader& reader : kindReaders()) kinds_.push_back(call.caller().symbol(reader.symbol));
    for (const char* word : kUnusedWords) call.caller().symbol(word);
}

Outcome FlareDescription::read(int32_t index, FlareElement& element) const {
    constexpr const char* unknownKind = "Unknown shape type (LensFlare)";
    ValueHandle name;
    SymbolId symbol = 0;
    if (CallCode status = call_.propertyAt(list_, index, name)) return failure(unknownKind, status);
    if (CallCode status = call_.readSymbol(name, symbol)) return failure(unknownKind, status);
    const auto kind = std::ranges::find(kinds_, symbol);
    if (kind == kinds_.end()) return failure(unknownKind);
    const KindReader& reader = kindReaders()[static_cast<size_t>(kind - kinds_.begin())];

    // Settings that are missing read as no list: the first property of the kind then fails.
    HeldValue settings(call_.caller());
    call_.element(list_, index, settings);
    element.kind = reader.kind;
    return reader.settings.read(call_, *settings, element);
}

}  // namespace krl
