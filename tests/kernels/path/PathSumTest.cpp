#include <gtest/gtest.h>

#include <climits>

#include "kernels/path/PathSum.h"
#include "core/ExactDivision.h"
#include "support/Picture.h"

namespace krl::test {

TEST(PathSum, AddsRepeatedlyAsALoopDoes) {
    for (int level : {0, 1, 2, 3, 51, 85, 127, 128, 200, 254, 255})
        for (float start : {0.0f, 0.3f, 7.0f, 1000.1f}) {
            const float term = sharedTables().unitFromByte[level];
            float sum = start;
            for (int times = 0; times <= 300000; ++times) {
                if (times < 300 || times % 977 == 0) {
                    ASSERT_EQ(addedRepeatedly(start, term, times), sum) << level << ' ' << times;
                }
                sum += term;
            }
        }
    // Where the sum no longer grows it stands still.
    EXPECT_EQ(addedRepeatedly(0.0f, 1.0f, INT_MAX), 16777216.0f);
}

TEST(PathSum, DividesByMultiplyingExactlyOverItsRange) {
    for (int32_t count = 1; count <= ByteMean::kMost; ++count) {
        uint32_t sums[512];
        uint8_t means[512];
        for (uint32_t mean = 0; mean < 256; ++mean) {
            sums[2 * mean] = mean * uint32_t(count);
            sums[2 * mean + 1] = std::min(sums[2 * mean] + uint32_t(count) - 1, 255 * uint32_t(count));
        }
        meansOf(sums, 512, count, means);
        for (int i = 0; i < 512; ++i) ASSERT_EQ(means[i], i / 2) << count;
    }
}

TEST(PathSum, LimitsMeansOfSumsThatWrapped) {
    const uint32_t sums[] = {0xFFFFFFFFu, 5000u * 255u};
    uint8_t means[2];
    meansOf(sums, 2, 5000, means);
    EXPECT_EQ(means[0], 0);
    EXPECT_EQ(means[1], 255);
}

}  // namespace krl::test
