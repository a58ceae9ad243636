#include <gtest/gtest.h>

#include <climits>

#include "core/Random.h"

namespace krl::test {

TEST(Random, DrawsTheKnownSequence) {
    Random random(1);
    for (int32_t draw : {41, 18467, 6334, 26500, 19169}) EXPECT_EQ(random.next(), draw);
}

TEST(Random, SkipsAsManyDrawsAsItWouldTake) {
    for (uint64_t count : {0u, 1u, 2u, 3u, 63u, 1000u, 65537u}) {
        Random walked(-5), skipped(-5);
        for (uint64_t i = 0; i < count; ++i) walked.next();
        skipped.skip(count);
        EXPECT_EQ(skipped.next(), walked.next()) << count;
    }
}

TEST(Random, DrawsTheSameManyAtATime) {
    for (int32_t seed : {0, 1, -1, INT_MAX, INT_MIN, 123456}) {
        Random random(seed);
        RandomRun run{random};
        for (int times = 0; times < 100; ++times) {
            int32_t draws[RandomRun::kLanes];
            run.next(draws);
            for (int32_t draw : draws) ASSERT_EQ(draw, random.next()) << seed;
        }
    }
}

// The remainder only jumps at multiples of the divisor, so the draws beside them are the whole range.
TEST(DrawRemainder, IsExactForEveryDraw) {
    const auto expectExact = [](int32_t divisor) {
        const DrawRemainder remainder(divisor);
        for (int64_t multiple = 0; multiple <= 32767; multiple += divisor)
            for (int64_t draw : {multiple, multiple + divisor - 1}) {
                if (draw > 32767) break;
                ASSERT_EQ(remainder(int32_t(draw)), int32_t(draw) % divisor) << divisor;
            }
        ASSERT_EQ(remainder(32767), 32767 % divisor) << divisor;
    };
    for (int32_t divisor = 1; divisor <= 70000; ++divisor) expectExact(divisor);
    for (int32_t divisor : {1 << 20, INT32_MAX - 1, INT32_MAX}) expectExact(divisor);
}

}  // namespace krl::test
