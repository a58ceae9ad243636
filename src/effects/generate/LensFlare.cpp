#include "catalogue/Catalogue.h"
#include "core/LookupTables.h"
#include "effects/generate/FlareCanvas.h"
#include "effects/generate/FlareDescription.h"
#include "effects/generate/FlareElements.h"

/// Paints a lens flare, element by element, over the picture.
namespace krl {

namespace {

/// The last place of a ramp.
constexpr int32_t kRampEnd = 255;

/// A ramp has as many samples as its keys are apart, so keys beyond any that a ramp can show are moved in.
constexpr float kFarthestKey = 1 << 20;

float limitedPosition(float position) {
    return position == position ? clampTo(position, -kFarthestKey, kFarthestKey) : 0.0f;
}

}  // namespace

FlareCanvas::FlareCanvas(const ImageEngine& engine) {
    if (engine.imageStatus()) return;
    state_.engine = &engine;
    state_.image = *engine.buffer();
    state_.tables = engine.getTables();
}

void FlareCanvas::takeColours(const std::vector<CurveKey>& keys) {
    state_.colourKeys = keys;
    state_.samples = {};
    state_.sampleStep = {};
    if (keys.size() < 2) return;
    std::vector<CurveKey> limited = keys;
    for (CurveKey& key : limited) key.position = limitedPosition(key.position);
    for (size_t channel = 0; channel < state_.samples.size(); ++channel) {
        state_.samples[channel] = buildChannelCurve(limited, static_cast<int32_t>(channel), kRampEnd);
        state_.sampleStep[channel] = static_cast<int32_t>(state_.samples[channel].size()) / 256;
    }
}

void FlareCanvas::draw(const FlareElement& element) {
    takeColours(element.colours);
    if (!state_.image.pixels || !state_.tables || state_.image.width < 1 || state_.image.height < 1) return;
    switch (element.kind) {
        case FlareKind::Polyshape:
            return paintPolygon(state_, element);
        case FlareKind::RandomFan:
        case FlareKind::Spike:
        case FlareKind::Star:
            return paintRays(state_, element);
        case FlareKind::Line:
        case FlareKind::StarCaustic:
            return paintBar(state_, element);
        case FlareKind::ChromaHoop:
            return paintHoop(state_, element);
        case FlareKind::FilledCircle:
        case FlareKind::GradientCircle:
        case FlareKind::OutlinedCircle:
            return paintRings(state_, element);
        case FlareKind::FadedCircle:
            return paintFadedCircle(state_, element);
    }
}

FlarePlot::FlarePlot(const FlareState& state, const FlareElement& element)
    : tables_(*state.tables), blend_(element.blend), transparency_(element.transparency) {
    for (size_t value = 0; value < ramp_.size(); ++value)
        ramp_[value] = state.rampColour([&](size_t channel) {
            const auto last = static_cast<double>(state.samples[channel].size()) - 1;
            return truncate(last * tables_.unitFromByte[value]);
        });
}

Status lensFlare(ImageEngine& engine, std::span<const FlareElement> elements) {
    if (Status state = engine.imageStatus()) return state;
    FlareCanvas canvas(engine);
    for (const FlareElement& element : elements) canvas.draw(element);
    return kStatusOk;
}

namespace {

/// Elements are read and painted one at a time: what precedes a faulty one stays painted. With no engine and
/// with no picture, the description is read and checked all the same.
Outcome paintFlare(Call& call) {
    const FlareDescription description(call, call.raw(0));
    FlareCanvas canvas = call.engine() ? FlareCanvas(*call.engine()) : FlareCanvas();
    const int32_t count = description.count();
    for (int32_t i = 1; i <= count; ++i) {
        FlareElement element;
        if (Outcome bad = description.read(i, element); bad.message) return bad;
        canvas.draw(element);
    }
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

void describeLensFlare(Catalogue& catalogue) {
    catalogue.add("krlImageLensFlare")
        .summary("Paints a lens flare, element by element, over the picture.")
        .words("sun, light, halo, rays, glare, star")
        .value("flareElementsList", kExampleFlare,
               "the elements in the order of painting, each a kind (#polyshape, #randomFan, #spike, "
               "#star, #line, #filledCircle, #gradientCircle, #outlinedCircle, #fadedCircle, "
               "#starCaustic or #chromaHoop) with a property list of its settings")
        .failed("Failed Lens Flare function (LensFlare)")
        .worksWithoutEngine()
        .does(paintFlare);
}

}  // namespace krl
