#include "kernels/curve/SaturatedSteps.h"

#include <algorithm>

#include "core/VectorLevels.h"

namespace krl {

namespace {

struct Step {
    uint8_t flip = 0, gain = 0, loss = 0;

    /// What is xored to a byte to leave its distance from 255 once it is flipped. The loop gets it as a number of its
    /// own, since a complement would make each round wait for the last one with the instruction that GCC chooses.
    constexpr uint8_t counterFlip() const { return 255 ^ flip; }
};

/// By the smaller of two bytes, which every processor has instructions for.
constexpr uint8_t stepped(uint8_t byte, uint8_t flip, uint8_t counterFlip, uint8_t gain, uint8_t loss) {
    const auto flipped = static_cast<uint8_t>(byte ^ flip), room = static_cast<uint8_t>(byte ^ counterFlip);
    const auto raised = static_cast<uint8_t>(flipped + (gain < room ? gain : room));
    return static_cast<uint8_t>(raised - (loss < raised ? loss : raised));
}

/// The step with the curve's ends, if it is the curve.
std::optional<Step> stepOf(const ByteCurve& curve, uint8_t flip) {
    const uint8_t low = curve[flip], high = curve[255 ^ flip];  // what 0 and 255 become once they are flipped
    const Step step{flip, low, static_cast<uint8_t>(low > 0 ? 0 : 255 - high)};
    for (int32_t i = 0; i < 256; ++i)
        if (stepped(static_cast<uint8_t>(i), flip, step.counterFlip(), step.gain, step.loss) != curve[size_t(i)])
            return std::nullopt;
    return step;
}

KRL_VECTOR_LEVELS
void stepBytes(const SaturatedSteps::Lanes& __restrict lanes, uint8_t* __restrict bytes, size_t count) {
    constexpr size_t kBytes = SaturatedSteps::Lanes::kBytes;
    const auto stepUp = [&](uint8_t* few, size_t i) {
        few[i] = stepped(few[i], lanes.flips[i], lanes.counterFlips[i], lanes.gains[i], lanes.losses[i]);
    };
    for (; count >= kBytes; bytes += kBytes, count -= kBytes)
        for (size_t i = 0; i < kBytes; ++i) stepUp(bytes, i);
    for (size_t i = 0; i < count; ++i) stepUp(bytes, i);
}

/// Pixels from `first` until a cache line begins: wide stores that lie in two take twice as long.
ptrdiff_t pixelsToLine(const Pixel* first) {
    constexpr uintptr_t kLine = 64;
    return static_cast<ptrdiff_t>(-reinterpret_cast<uintptr_t>(first) % kLine / sizeof(Pixel));
}

}  // namespace

std::optional<SaturatedSteps> SaturatedSteps::of(const ChannelCurves& curves) {
    SaturatedSteps steps;
    for (size_t channel = 0; channel < curves.size(); ++channel) {
        std::optional<Step> step = Step{};
        if (const ByteCurve* curve = curves[channel])
            if (!(step = stepOf(*curve, 0))) step = stepOf(*curve, 255);
        if (!step) return std::nullopt;
        for (size_t i = channel; i < Lanes::kBytes; i += curves.size()) {
            steps.lanes_.flips[i] = step->flip;
            steps.lanes_.counterFlips[i] = step->counterFlip();
            steps.lanes_.gains[i] = step->gain;
            steps.lanes_.losses[i] = step->loss;
        }
    }
    return steps;
}

void SaturatedSteps::apply(Pixel* first, Pixel* last) const {
    Pixel* const line = first + std::min(pixelsToLine(first), last - first);
    stepBytes(lanes_, firstByte(first), static_cast<size_t>(line - first) * sizeof(Pixel));
    stepBytes(lanes_, firstByte(line), static_cast<size_t>(last - line) * sizeof(Pixel));
}

}  // namespace krl
