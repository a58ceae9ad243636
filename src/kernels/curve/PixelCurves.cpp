#include "kernels/curve/PixelCurves.h"

namespace krl {

namespace {

constexpr ByteCurve kUnchanged = [] {
    ByteCurve curve{};
    for (size_t i = 0; i < curve.size(); ++i) curve[i] = static_cast<uint8_t>(i);
    return curve;
}();

}  // namespace

PixelCurves::PixelCurves() : colours_{kUnchanged, kUnchanged, kUnchanged}, alpha_(kUnchanged) {}

void PixelCurves::append(const ChannelCurves& next) {
    ByteCurve* const curves[] = {&colours_.blue, &colours_.green, &colours_.red, &alpha_};
    for (size_t channel = 0; channel < next.size(); ++channel)
        if (next[channel])
            for (uint8_t& level : *curves[channel]) level = (*next[channel])[level];
    steps_ = SaturatedSteps::of({&colours_.blue, &colours_.green, &colours_.red, &alpha_});
}

void PixelCurves::apply(Pixel* first, Pixel* last) const {
    if (steps_) return steps_->apply(first, last);
    const bool isGrey = colours_.blue == colours_.green && colours_.green == colours_.red;
    if (!isGrey)
        applyCurves(first, last, colours_);
    else if (colours_.blue == alpha_)
        return applyCurveTo<0, 1, 2, 3>(first, last, alpha_);
    else if (colours_.blue != kUnchanged)
        applyCurveTo<0, 1, 2>(first, last, colours_.blue);
    if (alpha_ != kUnchanged) applyCurveTo<3>(first, last, alpha_);
}

}  // namespace krl
