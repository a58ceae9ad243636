#include <gtest/gtest.h>

#include "core/ExactDivision.h"

namespace krl {
namespace {

constexpr uint32_t kLargestSum = 65535;

TEST(ExactDivision, UpperHalvesOfProductsAreTheSameByBytes) {
    for (uint32_t a = 0; a <= 65535; a += a < 600 || a > 65000 ? 1 : 7)
        for (uint32_t b = 0; b <= 65535; b += b < 300 || b > 65300 ? 1 : 251) {
            const auto first = static_cast<uint16_t>(a), second = static_cast<uint16_t>(b);
            ASSERT_EQ(upperHalfByBytes(first, second), (a * b) >> 16) << a << " * " << b;
        }
}

TEST(ExactDivision, ShortQuotientsAreExactForEverySumOfBytes) {
    for (uint32_t weight = 2; weight <= ShortByteQuotient::kLargestWeight; ++weight) {
        const ShortByteQuotient quotient(weight);
        for (uint32_t sum = 0; sum <= 255 * weight && sum <= kLargestSum; ++sum)
            ASSERT_EQ(quotient(quotient.kept(static_cast<uint16_t>(sum))), sum / weight)
                << sum << " / " << weight;
    }
}

}  // namespace
}  // namespace krl
