#include <gtest/gtest.h>

#include "memory/CountedMemory.h"
#include "methods/Stage.h"

/// What a call leaves behind in the host's process, counted at the allocator.
namespace krl::host {
namespace {

using krl::test::livingBytes;
using krl::test::Stage;

constexpr int32_t kWidth = 800, kHeight = 600;
constexpr int64_t kPictureBytes = int64_t{4} * kWidth * kHeight;

TEST(KeptMemory, IsSeenByThisTest) {
    const int64_t before = livingBytes();
    const auto block = std::make_unique<char[]>(size_t{kPictureBytes});
    EXPECT_GE(livingBytes() - before, kPictureBytes);
}

TEST(KeptMemory, IsNoPartOfAPictureAfterAnyMethod) {
    Stage stage;
    stage.load(kWidth, kHeight);
    stage.setBands(2);
    int called = 0;
    for (const Method* method : methods()) {
        if (method->managesTheEngine()) continue;
        const std::vector<player::Value> arguments = stage.examples(*method);
        const int64_t before = livingBytes();
        stage.call(*method, arguments);
        EXPECT_LT(livingBytes() - before, kPictureBytes / 8) << method->name();
        ++called;
    }
    EXPECT_GT(called, 100);
}

}  // namespace
}  // namespace krl::host
