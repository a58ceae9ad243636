#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <functional>

#include "core/LookupTables.h"
#include "support/Picture.h"

namespace krl::test {
namespace {

const LookupTables& tables() { return sharedTables(); }

/// Expects `table[a][b] == entry(a, b)` everywhere.
template <class Element, class Entry>
void expectSquare(const ByteSquare<Element>& table, Entry entry) {
    int differing = 0;
    for (int a = 0; a < 256; ++a)
        for (int b = 0; b < 256; ++b) differing += table[a][b] != static_cast<Element>(entry(a, b));
    EXPECT_EQ(differing, 0);
}

/// Expects `table[i] == entry(i)` everywhere.
template <class Element, size_t count, class Entry>
void expectRow(const Element (&table)[count], Entry entry) {
    int differing = 0;
    for (int i = 0; i < int(count); ++i) differing += table[i] != static_cast<Element>(entry(i));
    EXPECT_EQ(differing, 0);
}

TEST(LookupTables, MeansReachPastTheLargestSum) {
    EXPECT_EQ(tables().meanOf3[765], 255);
    EXPECT_EQ(tables().meanOf3[767], 255);
    EXPECT_EQ(tables().meanOf4[1023], 255);
    EXPECT_EQ(tables().meanOf2[511], 255);
    EXPECT_EQ(tables().meanOf3[2], 0);
    EXPECT_EQ(tables().meanOf3[3], 1);
}

TEST(LookupTables, MeansAreTruncatedQuotients) {
    expectRow(tables().meanOf2, [](int sum) { return int(sum * 0.5L); });
    expectRow(tables().meanOf3, [](int sum) { return int(sum / 3.0L); });
    expectRow(tables().meanOf4, [](int sum) { return int(sum * 0.25L); });
}

TEST(LookupTables, FloatsAreRoundedOnceFromExtendedPrecision) {
    expectRow(tables().unitFromByte, [](int i) { return float(i / 255.0L); });
    expectRow(tables().lumaRed, [](int i) { return float(i * 0.299L); });
    expectRow(tables().lumaGreen, [](int i) { return float(i * 0.587L); });
    expectRow(tables().lumaBlue, [](int i) { return float(i * 0.114L); });
    expectRow(tables().reciprocal, [](int i) { return float(1.0L / i); });
    EXPECT_TRUE(std::isinf(tables().reciprocal[0]));
    EXPECT_GT(tables().reciprocal[0], 0.0f);
    expectSquare(tables().productsUnit, [](int a, int b) { return float(a * b / 255.0L); });
}

TEST(LookupTables, SameFloatsComeFromDoubleConstants) {
    expectRow(tables().lumaRed, [](int i) { return float(i * static_cast<long double>(0.299)); });
    expectRow(tables().lumaGreen, [](int i) { return float(i * static_cast<long double>(0.587)); });
    expectRow(tables().lumaBlue, [](int i) { return float(i * static_cast<long double>(0.114)); });
}

TEST(LookupTables, ScalingEqualsExtendedPrecision) {
    expectSquare(tables().scaleByte, [](int a, int b) { return int(b * (a / 255.0L)); });
    expectSquare(tables().remainderScale, [](int a, int b) { return int(b * ((255 - a) / 255.0L)); });
    expectSquare(tables().overBlend, [](int a, int b) { return std::lround(b * (255 - a) / 255.0L + a); });
    expectSquare(tables().products, [](int a, int b) { return a * b; });
}

TEST(LookupTables, ScalingByFullWeightIsIdentityAndByNoneIsZero) {
    for (int b = 0; b < 256; ++b) {
        EXPECT_EQ(tables().scaleByte[255][b], b);
        EXPECT_EQ(tables().scaleByte[0][b], 0);
        EXPECT_EQ(tables().remainderScale[255][b], 0);
        EXPECT_EQ(tables().overBlend[0][b], b);
        EXPECT_EQ(tables().overBlend[255][b], 255);
    }
    EXPECT_EQ(tables().scaleByte[128][100], 50);
    EXPECT_EQ(tables().overBlend[128][128], 192);
}

TEST(LookupTables, SolariseTurnsAfter128) {
    EXPECT_EQ(tables().solariseCurve[128], 128);
    EXPECT_EQ(tables().solariseCurve[129], 126);
    EXPECT_EQ(tables().solariseCurve[255], 0);
    EXPECT_EQ(tables().distanceFrom255[0], 255);
    EXPECT_EQ(tables().distanceFrom255[200], 55);
}

TEST(LookupTables, SepiaFloorsBlueAndGreenOnly) {
    EXPECT_EQ(tables().sepiaRed[0], 53);
    EXPECT_EQ(tables().sepiaGreen[0], 30);
    EXPECT_EQ(tables().sepiaBlue[0], 30);
    EXPECT_EQ(tables().sepiaBlue[255], 222);
    EXPECT_EQ(tables().sepiaBlue[63], 30);
    EXPECT_EQ(tables().sepiaBlue[64], 31);
    EXPECT_EQ(tables().sepiaGreen[11], 31);
    EXPECT_EQ(tables().sepiaGreen[235], 255);
    EXPECT_EQ(tables().sepiaGreen[236], 255);
    EXPECT_EQ(tables().sepiaRed[202], 255);
    EXPECT_EQ(tables().sepiaRed[203], 255);
}

TEST(LookupTables, VideoColourDividesTowardZero) {
    expectSquare(tables().yuvU, [](int a, int b) { return (565 * a - 565 * b) / 1000 + 128; });
    expectSquare(tables().yuvV, [](int a, int b) { return (713 * a - 713 * b) / 1000 + 128; });
    EXPECT_EQ(tables().yuvU[0][1], 128);  // -565 / 1000 is 0
    EXPECT_EQ(tables().yuvV[0][255], -53);
    EXPECT_EQ(tables().blueFromU[127], -1);
    EXPECT_EQ(tables().blueFromU[255], 224);
    EXPECT_EQ(tables().greenFromU[0], -44);
    EXPECT_EQ(tables().greenFromV[0], -91);
    EXPECT_EQ(tables().redFromV[255], 178);
    EXPECT_EQ(tables().redFromV[128], 0);
}

TEST(LookupTables, IntegerBlends) {
    expectSquare(tables().blendAdd, [](int f, int b) { return std::min(f + b, 255); });
    expectSquare(tables().blendDarken, [](int f, int b) { return std::min(f, b); });
    expectSquare(tables().blendLighten, [](int f, int b) { return std::max(f, b); });
    expectSquare(tables().blendDifference, [](int f, int b) { return std::abs(f - b); });
    expectSquare(tables().blendExclusion,
                 [](int f, int b) { return f + b - int(std::floor(2 * f * b / 255.0)); });
    expectSquare(tables().blendPin, [](int f, int b) { return f < 128 ? std::min(f, b) : std::max(f, b); });
    expectSquare(tables().blendColorBurn, [](int f, int b) {
        return f == 0 ? 0 : std::max(0, int(std::trunc(255 + (b - 255) * 255 / f)));
    });
    expectSquare(tables().blendColorDodge,
                 [](int f, int b) { return f == 255 ? 255 : std::min(255, b * 255 / (255 - f)); });
}

TEST(LookupTables, BurnAndDodgeKeepTheirOddCorners) {
    EXPECT_EQ(tables().blendColorBurn[0][255], 0);
    EXPECT_EQ(tables().blendColorBurn[255][255], 255);
    EXPECT_EQ(tables().blendColorDodge[255][0], 255);
    EXPECT_EQ(tables().blendColorDodge[254][1], 255);
    EXPECT_EQ(tables().blendPin[127][200], 127);
    EXPECT_EQ(tables().blendPin[128][200], 200);
}

/// A light blend stays within one of its exact value, and never above it.
void expectTruncationOf(const ByteSquare<uint8_t>& table,
                        const std::function<long double(long double, long double)>& exact) {
    for (int f = 0; f < 256; ++f)
        for (int b = 0; b < 256; ++b) {
            const long double value = exact(f, b);
            ASSERT_GE(table[f][b], value - 1.000001L) << f << ' ' << b;
            ASSERT_LE(table[f][b], value + 0.000001L) << f << ' ' << b;
        }
}

TEST(LookupTables, LightBlendsAreTruncated) {
    const auto multiplied = [](long double f, long double b) { return f * b / 255; };
    const auto screened = [](long double f, long double b) { return 255 - (255 - f) * (255 - b) / 255; };
    const auto contrasted = [](long double half, long double f, long double b) {
        return half < 128 ? 2 * f * b / 255 : 255 - 2 * (255 - f) * (255 - b) / 255;
    };
    expectTruncationOf(tables().blendMultiply, multiplied);
    expectTruncationOf(tables().blendScreen, screened);
    expectTruncationOf(tables().blendHardLight,
                       [&](long double f, long double b) { return contrasted(f, f, b); });
    expectTruncationOf(tables().blendOverlay,
                       [&](long double f, long double b) { return contrasted(b, f, b); });
    expectTruncationOf(tables().blendSoftLight, [&](long double f, long double b) {
        const long double m = multiplied(f, b);
        return m + b * (screened(f, b) - m) / 255;
    });
}

/// A byte from a double as the light blends store it.
int stored(double value) { return int(value < 0 ? 0 : value > 255 ? 255 : value); }

TEST(LookupTables, LightBlendsKeepTheirOrderInDoubles) {
    expectSquare(tables().blendMultiply, [](int f, int b) {
        const double foreground = f / 255.0;
        double m = b * foreground;
        m /= 255;
        m *= 255;
        return stored(m);
    });
    expectSquare(tables().blendHardLight, [](int f, int b) {
        double h = f < 128 ? b * (f / 255.0) : (255 - b) * ((255 - f) / 255.0);
        h /= 255;
        h *= 255;
        h *= 2;
        return stored(f < 128 ? h : 255 - h);
    });
    expectSquare(tables().blendOverlay, [](int f, int b) {
        double h = b < 128 ? b * (f / 255.0) : (255 - b) * ((255 - f) / 255.0);
        h /= 255;
        h *= 255;
        h *= 2;
        return stored(b < 128 ? h : 255 - h);
    });
    expectSquare(tables().blendScreen, [](int f, int b) {
        double shade = (255 - b) * ((255 - f) / 255.0);
        shade /= 255;
        shade *= 255;
        return stored(255 - shade);
    });
    expectSquare(tables().blendSoftLight, [](int f, int b) {
        const double p = f * b / 255.0, q = (255 - f) * (255 - b) / 255.0, s = 255 - q;
        double between = s - p;
        between *= b;
        between /= 255;
        return stored(p + between);
    });
}

TEST(LookupTables, OverlayTakesItsSecondBranchFrom128) {
    EXPECT_EQ(tables().blendOverlay[0][128], 1);  // 255 - 2 * 127 exactly 1
    EXPECT_EQ(tables().blendOverlay[0][127], 0);
    EXPECT_EQ(tables().blendHardLight[128][0], 1);
    EXPECT_EQ(tables().blendHardLight[127][0], 0);
}

}  // namespace
}  // namespace krl::test
