#include <gtest/gtest.h>

#include <vector>

#include "core/Doubts.h"

namespace krl {
namespace {

TEST(Doubts, CallTheRefereeForMarkedResultsAlone) {
    const uint8_t doubts[] = {0, 1, 0, 255, 7};
    std::vector<int32_t> settled;
    const auto referee = [&](int32_t i) { settled.push_back(i); };
    settleDoubts(true, doubts, 4, referee);
    EXPECT_EQ(settled, (std::vector<int32_t>{1, 3}));
    settleDoubts(false, doubts, 4, referee);
    EXPECT_EQ(settled.size(), 2u);
}

}  // namespace
}  // namespace krl
