#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "core/LookupTables.h"
#include "core/Numbers.h"
#include "krlimage/options.h"
#include "krlimage/pixel.h"

/// The blend modes, for every effect that lays one picture or one light over another.
///
/// Two alpha arithmetics exist by design. The shift form (`blendChannel`, and `BlendFunction.h` for whole
/// spans) takes an opacity, divides by 256 and leaves alpha alone. The straight-alpha form (`layOver`)
/// composes both alphas, and its colour is never left premultiplied.
namespace krl {

/// A mode by the symbol that scripts select it with.
struct BlendSymbol {
    const char* symbol;
    BlendMode mode;
};

/// The modes that the composites offer; `pinlight` is not among them.
inline constexpr std::array<BlendSymbol, 14> kCompositeBlends{{
    {"noBlend", BlendMode::NoBlend},
    {"normal", BlendMode::Normal},
    {"add", BlendMode::Add},
    {"darken", BlendMode::Darken},
    {"multiply", BlendMode::Multiply},
    {"screen", BlendMode::Screen},
    {"lighten", BlendMode::Lighten},
    {"hardlight", BlendMode::HardLight},
    {"difference", BlendMode::Difference},
    {"overlay", BlendMode::Overlay},
    {"exclusion", BlendMode::Exclusion},
    {"softlight", BlendMode::SoftLight},
    {"colorburn", BlendMode::ColorBurn},
    {"colordodge", BlendMode::ColorDodge},
}};
/// The same without `noBlend`.
inline constexpr auto kLightBlends = std::span(kCompositeBlends).subspan<1>();

/// The mode's table, row foreground and column background; null for the modes that have none.
const ByteSquare<uint8_t>* blendTable(const LookupTables& tables, BlendMode mode);

/// The blend of one colour byte in the shift form:
/// `background + (((blended - background) * opacity) >> 8)`. The divisor is 256, so full opacity, 255,
/// falls one level short of a brighter colour and reaches a darker one. `NoBlend` ignores `opacity`.
int32_t blendChannel(int32_t background, int32_t foreground, BlendMode mode, int32_t opacity,
                     const LookupTables& tables);

/// What one straight-alpha over does to every colour byte of a pixel: the weights that depend on the
/// two alphas alone.
class StraightOver {
public:
    StraightOver(const LookupTables& tables, uint8_t behindAlpha, uint8_t frontAlpha)
        : alpha_(tables.overBlend[behindAlpha][frontAlpha]),
          behindWeight_(tables.unitFromByte[behindAlpha] * static_cast<float>(255 - frontAlpha)),
          frontWeight_(frontAlpha),
          reciprocal_(tables.reciprocal[alpha_]) {}

    /// Alpha of the two together. Where it is 0 there is no colour to speak of, and pixels stay as they are.
    uint8_t alpha() const { return static_cast<uint8_t>(alpha_); }
    /// Colour byte of `front` over `behind`.
    uint8_t mix(uint8_t behind, uint8_t front) const {
        return truncatedByte((behind * behindWeight_ + front * frontWeight_) * reciprocal_);
    }

private:
    int32_t alpha_;
    double behindWeight_;  // a single-precision product
    double frontWeight_;
    double reciprocal_;
};

/// The colour that `front` shows over `behind` in `mode` before alpha mixes the two. The mode's table sees
/// the background scaled by its own alpha. `Add` has a quirk kept for compatibility: blue adds, green
/// and red screen.
inline Pixel blendedOver(Pixel behind, Pixel front, BlendMode mode, const LookupTables& tables) {
    const ByteSquare<uint8_t>* table = blendTable(tables, mode);
    if (!table) return front;
    const ByteSquare<uint8_t>& rest = mode == BlendMode::Add ? tables.blendScreen : *table;
    const auto seen = [&](uint8_t colour) { return tables.scaleByte[colour][behind.alpha]; };
    return {(*table)[front.blue][seen(behind.blue)], rest[front.green][seen(behind.green)],
            rest[front.red][seen(behind.red)], front.alpha};
}

/// Lays `front` over `pixel` in straight alpha: colour, blend and alpha. False where nothing is left to
/// see, and `pixel` is then untouched, colour included.
inline bool layOver(Pixel& pixel, Pixel front, BlendMode mode, const LookupTables& tables) {
    const StraightOver over(tables, pixel.alpha, front.alpha);
    if (over.alpha() == 0) return false;
    const Pixel blended = blendedOver(pixel, front, mode, tables);
    pixel = {over.mix(pixel.blue, blended.blue), over.mix(pixel.green, blended.green),
             over.mix(pixel.red, blended.red), over.alpha()};
    return true;
}

}  // namespace krl
