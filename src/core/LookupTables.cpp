#include "core/LookupTables.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

#include "core/Numbers.h"

namespace krl {

static_assert(offsetof(LookupTables, meanOf3) == 0x000000);
static_assert(offsetof(LookupTables, meanOf4) == 0x000C00);
static_assert(offsetof(LookupTables, unitFromByte) == 0x001C00);
static_assert(offsetof(LookupTables, lumaRed) == 0x002000);
static_assert(offsetof(LookupTables, lumaGreen) == 0x002400);
static_assert(offsetof(LookupTables, lumaBlue) == 0x002800);
static_assert(offsetof(LookupTables, sepiaBlue) == 0x002C00);
static_assert(offsetof(LookupTables, sepiaGreen) == 0x003000);
static_assert(offsetof(LookupTables, sepiaRed) == 0x003400);
static_assert(offsetof(LookupTables, solariseCurve) == 0x003800);
static_assert(offsetof(LookupTables, distanceFrom255) == 0x003C00);
static_assert(offsetof(LookupTables, yuvU) == 0x004000);
static_assert(offsetof(LookupTables, yuvV) == 0x044000);
static_assert(offsetof(LookupTables, blueFromU) == 0x084000);
static_assert(offsetof(LookupTables, greenFromU) == 0x084400);
static_assert(offsetof(LookupTables, greenFromV) == 0x084800);
static_assert(offsetof(LookupTables, redFromV) == 0x084C00);
static_assert(offsetof(LookupTables, remainderScale) == 0x085000);
static_assert(offsetof(LookupTables, overBlend) == 0x0C5000);
static_assert(offsetof(LookupTables, products) == 0x105000);
static_assert(offsetof(LookupTables, productsUnit) == 0x145000);
static_assert(offsetof(LookupTables, blendAdd) == 0x185000);
static_assert(offsetof(LookupTables, blendColorBurn) == 0x195000);
static_assert(offsetof(LookupTables, blendColorDodge) == 0x1A5000);
static_assert(offsetof(LookupTables, blendDarken) == 0x1B5000);
static_assert(offsetof(LookupTables, blendDifference) == 0x1C5000);
static_assert(offsetof(LookupTables, blendExclusion) == 0x1D5000);
static_assert(offsetof(LookupTables, blendHardLight) == 0x1E5000);
static_assert(offsetof(LookupTables, blendLighten) == 0x1F5000);
static_assert(offsetof(LookupTables, blendMultiply) == 0x205000);
static_assert(offsetof(LookupTables, blendOverlay) == 0x215000);
static_assert(offsetof(LookupTables, blendPin) == 0x225000);
static_assert(offsetof(LookupTables, blendScreen) == 0x235000);
static_assert(offsetof(LookupTables, blendSoftLight) == 0x245000);
static_assert(offsetof(LookupTables, meanOf2) == 0x255000);
static_assert(offsetof(LookupTables, scaleByte) == 0x255800);
static_assert(offsetof(LookupTables, reciprocal) == 0x265800);

namespace {

/// `table[i] = entry(i)`.
template <class Element, size_t count, class Entry>
void fill(Element (&table)[count], Entry entry) {
    for (size_t i = 0; i < count; ++i) table[i] = static_cast<Element>(entry(static_cast<int32_t>(i)));
}

/// `table[a][b] = entry(a, b)`.
template <class Element, class Entry>
void fill(ByteSquare<Element>& table, Entry entry) {
    for (int32_t a = 0; a < 256; ++a)
        for (int32_t b = 0; b < 256; ++b) table[a][b] = static_cast<Element>(entry(a, b));
}

/// Every exact quotient below is a division of two numbers that `float` holds exactly, so its one
/// rounding is the only one.
float quotient(int32_t numerator, int32_t denominator) {
    return static_cast<float>(numerator) / static_cast<float>(denominator);
}

void buildMeansAndWeights(LookupTables& t) {
    fill(t.meanOf2, [](int32_t sum) { return sum / 2; });
    fill(t.meanOf3, [](int32_t sum) { return sum / 3; });
    fill(t.meanOf4, [](int32_t sum) { return sum / 4; });
    fill(t.unitFromByte, [](int32_t i) { return quotient(i, 255); });
    fill(t.lumaRed, [](int32_t i) { return quotient(i * 299, 1000); });
    fill(t.lumaGreen, [](int32_t i) { return quotient(i * 587, 1000); });
    fill(t.lumaBlue, [](int32_t i) { return quotient(i * 114, 1000); });
    fill(t.reciprocal,
         [](int32_t i) { return i == 0 ? std::numeric_limits<float>::infinity() : quotient(1, i); });
}

/// The floor of 30 on blue and green and none on red is what tints the shadows.
void buildToneCurves(LookupTables& t) {
    fill(t.sepiaBlue, [](int32_t i) { return std::max(i - 33, 30); });
    fill(t.sepiaGreen, [](int32_t i) { return clampTo(i + 20, 30, 255); });
    fill(t.sepiaRed, [](int32_t i) { return std::min(i + 53, 255); });
    fill(t.solariseCurve, [](int32_t i) { return i <= 128 ? i : 255 - i; });
    fill(t.distanceFrom255, [](int32_t i) { return 255 - i; });
}

void buildVideoColour(LookupTables& t) {
    fill(t.yuvU, [](int32_t a, int32_t b) { return 565 * (a - b) / 1000 + 128; });
    fill(t.yuvV, [](int32_t a, int32_t b) { return 713 * (a - b) / 1000 + 128; });
    fill(t.blueFromU, [](int32_t i) { return 1770 * (i - 128) / 1000; });
    fill(t.greenFromU, [](int32_t i) { return 344 * (i - 128) / 1000; });
    fill(t.greenFromV, [](int32_t i) { return 714 * (i - 128) / 1000; });
    fill(t.redFromV, [](int32_t i) { return 1403 * (i - 128) / 1000; });
}

void buildAlphaArithmetic(LookupTables& t) {
    fill(t.scaleByte, [](int32_t a, int32_t b) { return a * b / 255; });
    fill(t.remainderScale, [](int32_t a, int32_t b) { return b * (255 - a) / 255; });
    fill(t.overBlend, [](int32_t a, int32_t b) { return (2 * b * (255 - a) + 255) / 510 + a; });
    fill(t.products, [](int32_t a, int32_t b) { return a * b; });
    fill(t.productsUnit, [](int32_t a, int32_t b) { return quotient(a * b, 255); });
}

void buildIntegerBlends(LookupTables& t) {
    fill(t.blendAdd, [](int32_t f, int32_t b) { return std::min(f + b, 255); });
    fill(t.blendColorBurn,
         [](int32_t f, int32_t b) { return f == 0 ? uint8_t{0} : clampByte(255 + (b - 255) * 255 / f); });
    fill(t.blendColorDodge,
         [](int32_t f, int32_t b) { return f == 255 ? uint8_t{255} : clampByte(b * 255 / (255 - f)); });
    fill(t.blendDarken, [](int32_t f, int32_t b) { return std::min(f, b); });
    fill(t.blendDifference, [](int32_t f, int32_t b) { return std::abs(f - b); });
    fill(t.blendExclusion, [](int32_t f, int32_t b) { return f + b - 2 * f * b / 255; });
    fill(t.blendLighten, [](int32_t f, int32_t b) { return std::max(f, b); });
    fill(t.blendPin, [](int32_t f, int32_t b) { return f < 128 ? std::min(f, b) : std::max(f, b); });
}

/// The three products that the light blends are made of. They are truncated to bytes, so their
/// order of operations, in doubles and no wider, decides some entries.
double multiplied(int32_t f, int32_t b) { return b * (f / 255.0) / 255 * 255; }
double screenShade(int32_t f, int32_t b) { return (255 - b) * ((255 - f) / 255.0) / 255 * 255; }
double softened(int32_t f, int32_t b) {
    const double product = f * b / 255.0;
    const double screen = 255 - (255 - f) * (255 - b) / 255.0;
    return product + (screen - product) * b / 255;
}

/// Hard light and overlay: `deciding` is the operand that picks the half.
double contrasted(int32_t deciding, int32_t f, int32_t b) {
    return deciding < 128 ? multiplied(f, b) * 2 : 255 - screenShade(f, b) * 2;
}

void buildLightBlends(LookupTables& t) {
    fill(t.blendMultiply, [](int32_t f, int32_t b) { return truncatedByte(multiplied(f, b)); });
    fill(t.blendScreen, [](int32_t f, int32_t b) { return truncatedByte(255 - screenShade(f, b)); });
    fill(t.blendHardLight, [](int32_t f, int32_t b) { return truncatedByte(contrasted(f, f, b)); });
    fill(t.blendOverlay, [](int32_t f, int32_t b) { return truncatedByte(contrasted(b, f, b)); });
    fill(t.blendSoftLight, [](int32_t f, int32_t b) { return truncatedByte(softened(f, b)); });
}

}  // namespace

void LookupTables::build() {
    buildMeansAndWeights(*this);
    buildToneCurves(*this);
    buildVideoColour(*this);
    buildAlphaArithmetic(*this);
    buildIntegerBlends(*this);
    buildLightBlends(*this);
}

}  // namespace krl
