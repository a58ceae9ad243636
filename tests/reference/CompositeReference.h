#pragma once

#include "core/LookupTables.h"
#include "kernels/blend/BlendMode.h"
#include "krlimage/composite.h"
#include "support/Picture.h"

/// The compositor pixel by pixel and from the tables alone, beside which the runs are held.
namespace krl::test {

inline Pixel compositedPixel(Pixel behind, Pixel front, BlendMode mode, AlphaRule rule) {
    const LookupTables& tables = sharedTables();
    if (rule == AlphaRule::BackgroundAlphaNo) {
        Pixel result = behind;
        for (size_t c = 0; c < 3; ++c)
            result[c] = uint8_t(blendChannel(behind[c], front[c], mode, front.alpha, tables));
        return result;
    }
    const int32_t alpha = tables.overBlend[behind.alpha][front.alpha];
    if (alpha == 0) return behind;
    const float weight = float(double(tables.unitFromByte[behind.alpha]) * (255 - front.alpha));
    const float reciprocal = tables.reciprocal[alpha];
    Pixel result;
    for (size_t c = 0; c < 3; ++c) {
        const uint8_t seen = tables.scaleByte[behind[c]][behind.alpha];
        const ByteSquare<uint8_t>* table = blendTable(tables, mode);
        if (mode == BlendMode::Add && c > 0) table = &tables.blendScreen;
        const int32_t blended = table ? (*table)[front[c]][seen] : front[c];
        const double mixed = (behind[c] * double(weight) + blended * front.alpha) * double(reciprocal);
        result[c] = uint8_t(truncate(mixed < 0 ? 0 : mixed > 255 ? 255 : mixed));
    }
    result.alpha = uint8_t(alpha);
    return result;
}

inline Picture composited(const Picture& behind, const Picture& front, BlendMode mode, AlphaRule rule) {
    Picture result = behind;
    for (size_t i = 0; i < result.pixels().size(); ++i)
        result.pixels()[i] = compositedPixel(behind.pixels()[i], front.pixels()[i], mode, rule);
    return result;
}

}  // namespace krl::test
