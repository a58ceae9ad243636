#include <string>
#include <variant>

#include "catalogue/Call.h"
#include "catalogue/Catalogue.h"
#include "effects/generate/LensFlare.h"

/// The lens flare: its description is a list of its own kind, read here property by property.
namespace krl {

namespace {

/// A setting that scripts give as an integer and the element holds as a real.
struct WholeReal {
    float FlareElement::*field;
};

using FlareField =
    std::variant<int32_t FlareElement::*, float FlareElement::*, Point FlareElement::*, WholeReal>;

/// One property of a kind, and the words for it when it cannot be read.
struct FlareProperty {
    const char* key;
    FlareField field;
    const char* words = key;
};

/// A kind of element and its properties in the order in which they are read.
struct FlareKindReader {
    const char* symbol;
    FlareKind kind;
    const char* words;
    std::vector<FlareProperty> properties;
    std::vector<std::string> failures{};  ///< by property
    std::string coloursFailure{}, blendFailure{};
};

constexpr const char* kColourWords = "colour list";

// Properties that several kinds have.
constexpr FlareProperty kOrigin{"origin", &FlareElement::origin};
constexpr FlareProperty kBrightness{"brightness", &FlareElement::brightness};
constexpr FlareProperty kTransparency{"transparency", &FlareElement::transparency};
constexpr FlareProperty kRadius{"radius", &FlareElement::radius};
constexpr FlareProperty kAngle{"angle", &FlareElement::angle};
constexpr FlareProperty kCount{"count", &FlareElement::count};
constexpr FlareProperty kSeed{"seed", &FlareElement::seed};
constexpr FlareProperty kLength{"length", &FlareElement::length};
constexpr FlareProperty kThickness{"thickness", &FlareElement::thickness};
constexpr FlareProperty kOuterThickness{"outerThickness", &FlareElement::outerThickness};
constexpr FlareProperty kInnerThickness{"innerThickness", &FlareElement::innerThickness};
constexpr FlareProperty kOuterFeather{"outerFeather", &FlareElement::outerFeather};
constexpr FlareProperty kInnerFeather{"innerFeather", &FlareElement::innerFeather};

constexpr std::initializer_list<FlareProperty> kRingProperties{
    kOrigin,       kRadius,       kOuterThickness, kInnerThickness,
    kOuterFeather, kInnerFeather, kBrightness,     kTransparency};

std::string invalid(const char* kindWords, const char* propertyWords) {
    return std::string("Invalid ") + kindWords + ' ' + propertyWords + " (LensFlare)";
}

std::vector<FlareKindReader> makeKinds() {
    std::vector<FlareKindReader> kinds{
        {"polyshape",
         FlareKind::Polyshape,
         "polygon",
         {kCount,
          kAngle,
          kBrightness,
          kRadius,
          {"expandshape", &FlareElement::expandShape, "expand"},
          {"shapeBlur", &FlareElement::shapeBlur, "blur"},
          kOrigin,
          kTransparency}},
        {"randomFan",
         FlareKind::RandomFan,
         "random fan",
         {kCount,
          kAngle,
          kBrightness,
          kRadius,
          {"aperture", &FlareElement::aperture},
          kOrigin,
          kSeed,
          kTransparency}},
        {"spike",
         FlareKind::Spike,
         "spike",
         {kCount, kAngle, kBrightness, kRadius, kOrigin, kSeed, kTransparency}},
        {"star",
         FlareKind::Star,
         "star",
         {kCount, {"width", &FlareElement::width}, kAngle, kBrightness, kRadius, kOrigin, kTransparency}},
        {"line",
         FlareKind::Line,
         "line",
         {kLength,
          kThickness,
          kAngle,
          kOrigin,
          {"brightness", WholeReal{&FlareElement::brightness}},
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
         {{"position", &FlareElement::position},
          kAngle,
          {"apogeeScale", &FlareElement::apogeeScale},
          {"softness", &FlareElement::softness},
          {"chromaSpread", &FlareElement::chromaSpread},
          {"density", &FlareElement::density},
          {"noise", &FlareElement::noise},
          {"arcCompleteness", &FlareElement::arcCompleteness},
          kSeed,
          kBrightness,
          kTransparency,
          kOrigin,
          {"handle", &FlareElement::handle}}},
    };
    for (FlareKindReader& kind : kinds) {
        for (const FlareProperty& property : kind.properties)
            kind.failures.push_back(invalid(kind.words, property.words));
        kind.coloursFailure = invalid(kind.words, kColourWords);
        // Scripts know a line's blend failure by the polygon's words.
        kind.blendFailure = invalid(kind.kind == FlareKind::Line ? "polygon" : kind.words, kColourWords);
    }
    return kinds;
}

const std::vector<FlareKindReader>& flareKinds() {
    static const std::vector<FlareKindReader> kinds = makeKinds();
    return kinds;
}

/// Reads one property into its field of `element`.
CallCode readProperty(const Call& call, const ValueHandle& settings, const FlareProperty& property,
                      FlareElement& element) {
    HeldValue value(call.caller());
    if (CallCode status = call.elementUnder(settings, property.key, value)) return status;
    if (const auto* wholeReal = std::get_if<WholeReal>(&property.field)) {
        int32_t whole = 0;
        const CallCode status = call.read(*value, whole);
        element.*wholeReal->field = static_cast<float>(whole);
        return status;
    }
    return std::visit(
        [&](auto field) {
            if constexpr (std::is_same_v<decltype(field), WholeReal>)
                return kCallOk;
            else
                return call.read(*value, element.*field);
        },
        property.field);
}

/// The element's colours at 0..255. A single colour stands at 0, whatever its property is.
CallCode readFlareColours(const Call& call, const ValueHandle& settings, std::vector<CurveKey>& keys) {
    HeldValue list(call.caller());
    if (CallCode status = call.elementUnder(settings, "colourList", list)) return status;
    if (call.countElements(*list) != 1)
        return call.readColourList(*list, {.real = true, .scale = kLevelsPerPercent}, keys);
    HeldValue entry(call.caller());
    Colour colour;
    if (CallCode status = call.element(*list, 1, entry)) return status;
    const CallCode status = call.read(*entry, colour);
    keys = {{colour.red(), colour.green(), colour.blue(), 0.0f}};
    return status;
}

CallCode readFlareBlend(const Call& call, const ValueHandle& settings, BlendMode& blend) {
    HeldValue value(call.caller());
    CallCode status = call.elementUnder(settings, "blendMethod", value);
    if (status != kCallOk) status = call.elementUnder(settings, "blendmethod", value);
    if (status != kCallOk) return status;
    SymbolId symbol = 0;
    if (CallCode unread = call.readSymbol(*value, symbol)) return unread;
    blend = call.is(symbol, "add")      ? BlendMode::Add
            : call.is(symbol, "screen") ? BlendMode::Screen
                                        : BlendMode::Normal;
    return kCallOk;
}

const FlareKindReader* findKind(const Call& call, SymbolId symbol) {
    for (const FlareKindReader& kind : flareKinds())
        if (call.is(symbol, kind.symbol)) return &kind;
    return nullptr;
}

/// Reads element `index` of the description and paints it.
Outcome paintElement(const Call& call, const ValueHandle& description, int32_t index, FlareCanvas& canvas) {
    constexpr const char* unknownKind = "Unknown shape type (LensFlare)";
    ValueHandle name;
    SymbolId symbol = 0;
    if (CallCode status = call.propertyAt(description, index, name)) return failure(unknownKind, status);
    if (CallCode status = call.readSymbol(name, symbol)) return failure(unknownKind, status);
    const FlareKindReader* kind = findKind(call, symbol);
    if (!kind) return failure(unknownKind);

    HeldValue settings(call.caller());
    call.element(description, index, settings);
    FlareElement element{.kind = kind->kind};
    for (size_t i = 0; i < kind->properties.size(); ++i)
        if (CallCode status = readProperty(call, *settings, kind->properties[i], element))
            return failure(kind->failures[i].c_str(), status);
    std::vector<CurveKey> colours;
    if (CallCode status = readFlareColours(call, *settings, colours))
        return failure(kind->coloursFailure.c_str(), status);
    if (CallCode status = readFlareBlend(call, *settings, element.blend))
        return failure(kind->blendFailure.c_str(), status);
    canvas.setColours(std::move(colours));
    canvas.draw(element);
    return succeeded();
}

/// Elements are read and painted one at a time: what stands before a faulty one stays painted.
Outcome paintFlare(Call& call) {
    const ValueHandle description = call.raw(0);
    FlareCanvas canvas = call.engine() ? FlareCanvas(*call.engine()) : FlareCanvas(1);
    const int32_t count = call.countElements(description);
    for (int32_t i = 1; i <= count; ++i)
        if (Outcome bad = paintElement(call, description, i, canvas); bad.message) return bad;
    return succeeded();
}

constexpr const char* kExampleFlare =
    "[#gradientCircle: [#origin: point(491, 238), #radius: 300.0, #brightness: 200.0, #transparency: 0, "
    "#colourList: [0: rgb(60, 10, 0), 45: rgb(255, 120, 40), 100: rgb(255, 245, 220)], "
    "#blendMethod: #screen], "
    "#star: [#count: 8, #width: 1, #angle: 11.0, #brightness: 150.0, #radius: 260.0, "
    "#origin: point(491, 238), #transparency: 0, #colourList: [0: rgb(255, 225, 180)], "
    "#blendMethod: #screen], "
    "#starCaustic: [#length: 1400.0, #thickness: 60.0, #angle: 0.0, #origin: point(491, 238), "
    "#brightness: 200.0, #transparency: 0, #colourList: [0: rgb(255, 150, 70)], #blendMethod: #screen], "
    "#polyshape: [#count: 6, #angle: 15.0, #brightness: 95.0, #radius: 62.0, #expandshape: 0, "
    "#shapeBlur: 6, #origin: point(340, 459), #transparency: 0, #colourList: [0: rgb(80, 220, 170)], "
    "#blendMethod: #screen]]";

}  // namespace

void describeFlareMethods(Catalogue& catalogue) {
    catalogue.add(
        method("krlImageLensFlare")
            .summary("Paints a lens flare, element by element, over the picture.")
            .value("flareElementsList", kExampleFlare,
                   "the elements in the order of painting, each a kind (#polyshape, #randomFan, #spike, "
                   "#star, #line, #filledCircle, #gradientCircle, #outlinedCircle, #fadedCircle, "
                   "#starCaustic or #chromaHoop) with a property list of its settings")
            .failed("Failed Lens Flare function (LensFlare)")
            .worksWithoutEngine()
            .does(paintFlare));
}

}  // namespace krl
