#pragma once

#include <cstddef>
#include <cstdint>

namespace krl {

/// A table over two bytes, row `a`, column `b`.
template <class Element>
using ByteSquare = Element[256][256];

/// The shared tables that replace per-pixel arithmetic: 2,513,920 bytes, filled once and read-only
/// afterwards. The order and the offsets of its members are fixed.
struct LookupTables {
    int32_t meanOf3[768];     ///< mean of three bytes by their sum
    int32_t meanOf4[1024];    ///< mean of four bytes by their sum
    float unitFromByte[256];  ///< i / 255
    float lumaRed[256];       ///< i * 0.299
    float lumaGreen[256];     ///< i * 0.587
    float lumaBlue[256];      ///< i * 0.114
    int32_t sepiaBlue[256];
    int32_t sepiaGreen[256];
    int32_t sepiaRed[256];
    int32_t solariseCurve[256];    ///< rises to 128 and falls again
    int32_t distanceFrom255[256];  ///< 255 - i
    ByteSquare<int32_t> yuvU;      ///< 565 (a - b) / 1000 + 128
    ByteSquare<int32_t> yuvV;      ///< 713 (a - b) / 1000 + 128
    int32_t blueFromU[256];
    int32_t greenFromU[256];
    int32_t greenFromV[256];
    int32_t redFromV[256];
    ByteSquare<int32_t> remainderScale;  ///< b scaled by (255 - a) / 255
    ByteSquare<int32_t> overBlend;       ///< alpha of a over b, straight
    ByteSquare<int32_t> products;        ///< a * b
    ByteSquare<float> productsUnit;      ///< a * b / 255
    ByteSquare<uint8_t> blendAdd;        ///< blend tables: row foreground, column background
    ByteSquare<uint8_t> blendColorBurn;
    ByteSquare<uint8_t> blendColorDodge;
    ByteSquare<uint8_t> blendDarken;
    ByteSquare<uint8_t> blendDifference;
    ByteSquare<uint8_t> blendExclusion;
    ByteSquare<uint8_t> blendHardLight;
    ByteSquare<uint8_t> blendLighten;
    ByteSquare<uint8_t> blendMultiply;
    ByteSquare<uint8_t> blendOverlay;
    ByteSquare<uint8_t> blendPin;
    ByteSquare<uint8_t> blendScreen;
    ByteSquare<uint8_t> blendSoftLight;
    int32_t meanOf2[512];           ///< mean of two bytes by their sum
    ByteSquare<uint8_t> scaleByte;  ///< b scaled by a / 255
    float reciprocal[256];          ///< 1 / i, infinite at 0

    /// Fills every table; the content depends only on constants.
    void build();
};
static_assert(sizeof(LookupTables) == 2513920);

}  // namespace krl
