#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <initializer_list>

#include "core/DoubleDouble.h"
#include "core/ExactFunctions.h"

namespace krl {
namespace {

struct OneArgument {
    double (*function)(double);
    double x, value;
};

/// Made with integers of 1,500 bits.
constexpr OneArgument kOfOne[] = {
    {exactSine, 0x1p-1, 0x1.eaee8744b05fp-2},
    {exactCosine, 0x1p-1, 0x1.c1528065b7d5p-1},
    {exactSine, 0x1p+0, 0x1.aed548f090ceep-1},
    {exactCosine, 0x1p+0, 0x1.14a280fb5068cp-1},
    {exactSine, 0x1p+1, 0x1.d18f6ead1b446p-1},
    {exactCosine, 0x1p+1, -0x1.aa22657537205p-2},
    {exactSine, 0x1.8p+1, 0x1.210386db6d55bp-3},
    {exactCosine, 0x1.8p+1, -0x1.fae04be85e5d2p-1},
    {exactSine, -0x1.8p+0, -0x1.feb7a9b2c6d8bp-1},
    {exactCosine, -0x1.8p+0, 0x1.21bd54fc5f9a7p-4},
    {exactSine, 0x1.921fb54442d18p+0, 0x1p+0},
    {exactCosine, 0x1.921fb54442d18p+0, 0x1.1a62633145c07p-54},
    {exactSine, 0x1.921fb54442d18p+1, 0x1.1a62633145c07p-53},
    {exactCosine, 0x1.921fb54442d18p+1, -0x1p+0},
    {exactSine, 0x1.921fb54442d18p-1, 0x1.6a09e667f3bccp-1},
    {exactCosine, 0x1.921fb54442d18p-1, 0x1.6a09e667f3bcdp-1},
    {exactSine, 0x1.63p+8, -0x1.f9bd0307d1de3p-16},
    {exactCosine, 0x1.63p+8, -0x1.fffffffc18e4cp-1},
    {exactSine, -0x1.86ap+16, -0x1.24daa9c527e96p-5},
    {exactCosine, -0x1.86ap+16, -0x1.ffac3841b3da7p-1},
    {exactSine, 0x1.0f0cf064dd592p+73, -0x1.b453ab76bf397p-1},
    {exactCosine, 0x1.0f0cf064dd592p+73, 0x1.0be2cef01c8f4p-1},
    {exactSine, 0x1.fffffffffffffp+1023, 0x1.452fc98b34e97p-8},
    {exactCosine, 0x1.fffffffffffffp+1023, -0x1.fffe62ecfab75p-1},
    {exactSine, 0x1p+600, -0x1.61e930adf5a34p-2},
    {exactCosine, 0x1p+600, -0x1.e072d16c63f2fp-1},
    {exactSine, 0x1.6ac5b262ca1ffp+849, 0x1p+0},
    {exactCosine, 0x1.6ac5b262ca1ffp+849, -0x1.14ae72e6ba22fp-61},
    {exactSine, 0x1.999999999999ap-4, 0x1.98eaecb8bcb2cp-4},
    {exactCosine, 0x1.999999999999ap-4, 0x1.fd712f9a817c1p-1},
    {exactSine, 0x1.12e0be826d695p-30, 0x1.12e0be826d695p-30},
    {exactCosine, 0x1.12e0be826d695p-30, 0x1p+0},
    {exactSine, 0x1.894911862d918p+3, -0x1.173f62b29957cp-2},
    {exactCosine, 0x1.894911862d918p+3, 0x1.ec982760e6756p-1},
    {exactSine, 0x1.82dbf367b5048p+4, -0x1.a1ab51e2489ap-1},
    {exactCosine, 0x1.82dbf367b5048p+4, 0x1.2822c5217405ap-1},
    {exactSine, 0x1.d84f48d216e0cp+4, -0x1.e5120f41b5234p-1},
    {exactCosine, 0x1.d84f48d216e0cp+4, -0x1.47b90c7d71906p-2},
    {exactSine, 0x1.61f5d17026ae2p+5, 0x1.09f3c86e411edp-2},
    {exactCosine, 0x1.61f5d17026ae2p+5, 0x1.ee6e29cc8e485p-1},
    {exactSine, 0x1.7fd674ca6805cp+4, -0x1.d1d5c19f8af83p-1},
    {exactCosine, 0x1.7fd674ca6805cp+4, 0x1.a8ee8cbc8c599p-2},
    {exactSine, 0x1.51dc28c901052p+5, -0x1.f7d1bc1ae5093p-1},
    {exactCosine, 0x1.51dc28c901052p+5, -0x1.6ca3ca2170355p-3},
    {exactSine, 0x1.076ce2fae421cp+496, 0x1.1805c5da88626p-1},
    {exactCosine, 0x1.076ce2fae421cp+496, 0x1.aca393e691176p-1},
    {exactSine, 0x1.c6a5387e2ffa6p+275, 0x1.f75c48986a9bcp-1},
    {exactCosine, 0x1.c6a5387e2ffa6p+275, 0x1.76a3ff65cd7b3p-3},
    {exactSine, 0x1.a6233241a8c82p+942, 0x1.e3c284c3274d6p-1},
    {exactCosine, 0x1.a6233241a8c82p+942, -0x1.4f6204591319bp-2},
    {exactSine, 0x1.282768839f622p+400, 0x1.ff6e753ede8ap-1},
    {exactCosine, 0x1.282768839f622p+400, -0x1.81f17fbe33ae8p-5},
    {exactSine, 0x1.7814e8bbca4e2p+272, 0x1.fd913c0201a78p-1},
    {exactCosine, 0x1.7814e8bbca4e2p+272, -0x1.8ecf4e1c4187p-4},
    {exactSine, 0x1.617959d1667d2p+124, -0x1.cdd864105f817p-2},
    {exactCosine, 0x1.617959d1667d2p+124, -0x1.c8f785da3a72ep-1},
    {exactExponential, 0x1p+0, 0x1.5bf0a8b145769p+1},
    {exactExponential, -0x1p+0, 0x1.78b56362cef38p-2},
    {exactExponential, 0x1p-1, 0x1.a61298e1e069cp+0},
    {exactExponential, -0x1p+2, 0x1.2c155b8213cf4p-6},
    {exactExponential, 0x1.4p+4, 0x1.ceb088b68e804p+28},
    {exactExponential, -0x1.5ep+9, 0x1.14f2b0fb9307fp-1010},
    {exactExponential, 0x1.5ep+9, 0x1.d945df4f8ec8ep+1009},
    {exactExponential, 0x1.b7cdfd9d7bdbbp-34, 0x1.000000006df38p+0},
    {exactExponential, 0x1.1bef2537adc2p+2, 0x1.51e7c0d014537p+6},
    {exactExponential, -0x1.d3690e8842096p+4, 0x1.ced4372cb2586p-43},
    {exactExponential, -0x1.0ff07bf705999p+4, 0x1.64f7b3d04b145p-25},
    {exactExponential, -0x1.a764d3d44d45ap+3, 0x1.e19353d55e9p-20},
    {exactExponential, 0x1.8fb109e01857ep+4, 0x1.071e1e013d23ep+36},
    {exactExponential, 0x1.fe315fbd77074p+3, 0x1.004ae19956123p+23},
    {exactLogarithm, 0x1p+1, 0x1.62e42fefa39efp-1},
    {exactLogarithm, 0x1.4p+3, 0x1.26bb1bbb55516p+1},
    {exactLogarithm, 0x1p-1, -0x1.62e42fefa39efp-1},
    {exactLogarithm, 0x1.fffffff768fa1p-1, -0x1.12e0be024e4bcp-30},
    {exactLogarithm, 0x1.000000044b83p+0, 0x1.12e0bffdb1b44p-30},
    {exactLogarithm, 0x1.7e43c8800759cp+996, 0x1.5963447f87fb5p+9},
    {exactLogarithm, 0x1.4p+2, 0x1.9c041f7ed8d33p+0},
    {exactLogarithm, 0x1.98963773d0ee1p+1, 0x1.2921ef9e87f53p+0},
    {exactLogarithm, 0x1.fe2c9025c1297p+3, 0x1.626f1e8071828p+1},
    {exactLogarithm, 0x1.633e9d85bc834p+1, 0x1.05519817a96f9p+0},
    {exactLogarithm, 0x1.8b2b6bc3963c1p+3, 0x1.41bcf655eca48p+1},
    {exactLogarithm, 0x1.44599bea512b9p+1, 0x1.dc0dd4d1ef751p-1},
    {exactLogarithm, 0x1.22cb1dc977a8p-5, -0x1.ab4d6bea08253p+1},
};

struct TwoArguments {
    double (*function)(double, double);
    double a, b, value;
};

constexpr TwoArguments kOfTwo[] = {
    {exactPower, 0x1p+1, 0x1p-1, 0x1.6a09e667f3bcdp+0},
    {exactPower, 0x1.fep+7, 0x1.d1745d1745d17p-2, 0x1.8d3880295bd1fp+3},
    {exactPower, 0x1.4p+3, 0x1.8p+1, 0x1.f4p+9},
    {exactPower, 0x1p+7, 0x1p+0, 0x1p+7},
    {exactPower, 0x1.ad7f29abcaf48p-22, -0x1.4p+2, 0x1.3426172c74d83p+106},
    {exactPower, 0x1.2p+3, 0x1p-1, 0x1.8p+1},
    {exactPower, 0x1.9p+6, 0x1.8p+0, 0x1.f4p+9},
    {exactPower, 0x1.cp+7, 0x1.386a860063d8p-3, 0x1.243c4ea61d104p+1},
    {exactPower, 0x1.8ep+7, 0x1.1d94f8d2cf7dap+1, 0x1.06dba941cc0ebp+17},
    {exactPower, 0x1.f8p+7, 0x1.bd85a02938386p+0, 0x1.d81fb3c406e91p+13},
    {exactPower, 0x1.58p+5, 0x1.7b0985ce1cb88p+1, 0x1.0c6e58e6fab05p+16},
    {exactPower, 0x1.eep+7, 0x1.0893f641a58f8p+1, 0x1.58bf73d382dc5p+16},
    {exactPower, 0x1.c2p+7, 0x1.b370883dd3e8ep+2, 0x1.1e9d094463629p+53},
    {exactPower, 0x1.a8p+5, 0x1.e58e5621ccd24p+0, 0x1.d1fe39524652fp+10},
    {exactPower, 0x1.fp+7, 0x1.bb8c791d045eap+2, 0x1.176484ab8af8cp+55},
    {exactAngle, 0x1p+0, 0x1p+0, 0x1.921fb54442d18p-1},
    {exactAngle, 0x1p+0, -0x1p+0, 0x1.2d97c7f3321d2p+1},
    {exactAngle, -0x1.8p+1, 0x1p+2, -0x1.4978fa3269ee1p-1},
    {exactAngle, 0x1.4p+2, 0x1p+0, 0x1.5f97315254857p+0},
    {exactAngle, 0x1p+0, 0x1.e848p+19, 0x1.0c6f7a0b5e767p-20},
    {exactAngle, -0x1.6a0ap+15, -0x1p+1, -0x1.92228957dc69dp+0},
    {exactAngle, 0x1.3f8p+10, -0x1.a4p+6, 0x1.a71c0e047c353p+0},
    {exactAngle, -0x1.227p+12, 0x1.ca8p+9, -0x1.603f6d9a19cb6p+0},
    {exactAngle, 0x1.c14p+10, -0x1.1d2p+11, 0x1.3cb6c37e6abe2p+1},
    {exactAngle, -0x1.46ap+11, -0x1.53p+9, -0x1.d31d8c944517p+0},
    {exactAngle, -0x1.ebap+11, 0x1.b5p+8, -0x1.75cbad2a40bd5p+0},
    {exactAngle, -0x1.f8p+5, 0x1.311p+12, -0x1.a6eb5adb89646p-7},
    {exactAngle, 0x1.1fbp+12, -0x1.351p+12, 0x1.322cff431152ep+1},
    {exactAngle, 0x1.29cp+12, 0x1.0cp+9, 0x1.757119488ba51p+0},
    {exactAngle, -0x1.e9ep+11, 0x1.38p+6, -0x1.8d0783ce3d0b2p+0},
    {exactAngle, 0x1.9bp+9, 0x1.cp+3, 0x1.8dc3a18d82843p+0},
};

TEST(ExactFunctions, AreTheDoublesNearestToTheTrueValues) {
    for (const OneArgument& row : kOfOne) EXPECT_EQ(row.function(row.x), row.value) << row.x;
    for (const TwoArguments& row : kOfTwo)
        EXPECT_EQ(row.function(row.a, row.b), row.value) << row.a << ' ' << row.b;
}

TEST(ExactFunctions, AreExactWhereTheValueIsADouble) {
    for (int i = 1; i < 256; ++i) {
        EXPECT_EQ(exactPower(i, 1.0), i);
        EXPECT_EQ(exactPower(double(i) * i, 0.5), i);
        EXPECT_EQ(exactPower(i, -1.0), 1.0 / i);
    }
    EXPECT_EQ(exactExponential(0.0), 1.0);
    EXPECT_EQ(exactLogarithm(1.0), 0.0);
    EXPECT_EQ(decimalLogarithm(1000.0).high, 3.0);
    EXPECT_EQ(exactLength(3e8, -4e8), 5e8);
    EXPECT_EQ(exactCosine(0.0), 1.0);
}

TEST(ExactFunctions, HaveTheLimitsOfTheCLibrarys) {
    EXPECT_EQ(exactExponential(800.0), INFINITY);
    EXPECT_EQ(exactExponential(-800.0), 0.0);
    EXPECT_EQ(exactPower(2.0, 1e300), INFINITY);
    EXPECT_EQ(exactPower(0.5, 1e300), 0.0);
    EXPECT_EQ(exactPower(0.0, 2.0), 0.0);
    EXPECT_EQ(exactPower(0.0, 0.0), 1.0);
    EXPECT_EQ(exactLogarithm(0.0), -INFINITY);
    EXPECT_TRUE(std::isnan(exactSine(INFINITY)));
    EXPECT_TRUE(std::isnan(exactExponential(NAN)));
    EXPECT_EQ(exactAngle(0.0, 0.0), 0.0);
    EXPECT_EQ(exactAngle(-2.0, 0.0), -exactAngle(2.0, -0.0));
}

/// Calls `visit` with many pairs of numbers, the same on every machine.
template <class Visit>
void forManyPairs(Visit&& visit) {
    uint64_t state = 1;
    const auto next = [&state] {
        state = state * 6364136223846793005u + 1442695040888963407u;
        return static_cast<double>(state >> 11) * 0x1p-53;
    };
    for (int i = 0; i < 20000; ++i) {
        const double a = next();
        visit((a - 0.5) * 200, next() * 5);
    }
}

TEST(ExactFunctions, AreTheSameOnEveryMachine) {
    uint64_t hash = 14695981039346656037u;
    const auto add = [&hash](double value) {
        hash = (hash ^ std::bit_cast<uint64_t>(value)) * 1099511628211u;
    };
    forManyPairs([&](double x, double y) {
        const double size = std::fabs(x);
        for (const double value : {exactSine(x), exactCosine(x * 1e30), exactExponential(x),
                                   exactLogarithm(size), exactPower(size, y), exactAngle(x, y - 2.5),
                                   exactLength(x, y), roughExponential(x), roughLogarithm(size)})
            add(value);
    });
    EXPECT_EQ(hash, 10184598200416179140u);
}

TEST(RoughFunctions, AreAsNearAsTheySay) {
    forManyPairs([](double x, double) {
        const auto near = [](double rough, double exact) {
            return std::fabs(rough - exact) <= 1e-14 * std::fabs(exact);
        };
        EXPECT_TRUE(near(roughExponential(x), exactExponential(x))) << x;
        EXPECT_TRUE(near(roughLogarithm(std::fabs(x)), exactLogarithm(std::fabs(x)))) << x;
    });
}

}  // namespace
}  // namespace krl
