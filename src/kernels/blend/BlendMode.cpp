#include "kernels/blend/BlendMode.h"

namespace krl {

const ByteSquare<uint8_t>* blendTable(const LookupTables& tables, BlendMode mode) {
    switch (mode) {
        case BlendMode::Add:
            return &tables.blendAdd;
        case BlendMode::Darken:
            return &tables.blendDarken;
        case BlendMode::Multiply:
            return &tables.blendMultiply;
        case BlendMode::Screen:
            return &tables.blendScreen;
        case BlendMode::Lighten:
            return &tables.blendLighten;
        case BlendMode::HardLight:
            return &tables.blendHardLight;
        case BlendMode::Difference:
            return &tables.blendDifference;
        case BlendMode::PinLight:
            return &tables.blendPin;
        case BlendMode::Overlay:
            return &tables.blendOverlay;
        case BlendMode::Exclusion:
            return &tables.blendExclusion;
        case BlendMode::SoftLight:
            return &tables.blendSoftLight;
        case BlendMode::ColorBurn:
            return &tables.blendColorBurn;
        case BlendMode::ColorDodge:
            return &tables.blendColorDodge;
        default:
            return nullptr;
    }
}

int32_t blendChannel(int32_t background, int32_t foreground, BlendMode mode, int32_t opacity,
                     const LookupTables& tables) {
    if (mode == BlendMode::NoBlend) return foreground;
    const ByteSquare<uint8_t>* table = mode == BlendMode::PinLight ? nullptr : blendTable(tables, mode);
    const int32_t blended = table ? (*table)[foreground][background] : foreground;
    return background + (((blended - background) * opacity) >> 8);
}

}  // namespace krl
