#pragma once

#include "kernels/curve/ByteCurve.h"

namespace krl {

/// Contrast as a whole number of 1024ths.
constexpr int32_t contrastFactor(float contrast) { return truncate(contrast * 1024.0); }

/// The distance of every level from 127, scaled in whole numbers, which wrap, and divided toward zero.
inline ByteCurve contrastCurve(float contrast) {
    const int32_t factor = contrastFactor(contrast);
    return byteCurve([=](int32_t i) { return clampByte(wrapMultiply(i - 127, factor) / 1024 + 127); });
}

}  // namespace krl
