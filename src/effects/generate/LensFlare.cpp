#include "effects/generate/LensFlare.h"

#include <utility>

#include "core/LookupTables.h"
#include "effects/generate/FlareElements.h"

namespace krl {

namespace {

/// The last place of a ramp.
constexpr int32_t kRampEnd = 255;

/// A ramp takes as many samples as its keys lie apart, so places that no ramp can show are drawn in.
constexpr float kFarthestKey = 1 << 20;

float limitedPosition(float position) {
    return position == position ? clampTo(position, -kFarthestKey, kFarthestKey) : 0.0f;
}

}  // namespace

FlareCanvas::FlareCanvas(const ImageEngine& engine) : FlareCanvas(engine.getThreadCount()) {
    setImage(engine.imageStatus() ? nullptr : engine.getPixels(), engine.getImageInfo(), engine.getTables());
}

void FlareCanvas::setImage(uint8_t* pixels, const ImageInfo& info, const LookupTables* tables) {
    state_.image = {pixels, info.height, info.width, info.rowBytes, nullptr};
    state_.tables = tables;
}

void FlareCanvas::setColours(std::vector<CurveKey> keys) {
    releaseColours();
    state_.colourKeys = std::move(keys);
    buildCurves();
}

void FlareCanvas::buildCurves() {
    if (state_.colourKeys.size() < 2) return;
    std::vector<CurveKey> keys = state_.colourKeys;
    for (CurveKey& key : keys) key.position = limitedPosition(key.position);
    for (size_t channel = 0; channel < state_.samples.size(); ++channel) {
        state_.samples[channel] = buildChannelCurve(keys, static_cast<int32_t>(channel), kRampEnd);
        state_.sampleStep[channel] = static_cast<int32_t>(state_.samples[channel].size()) / 256;
    }
}

void FlareCanvas::releaseColours() {
    state_.colourKeys.clear();
    for (std::vector<CurveSample>& list : state_.samples) list.clear();
    state_.sampleStep = {};
}

void FlareCanvas::draw(const FlareElement& element) const {
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

}  // namespace krl
