#include "c/CallingTest.h"

#if defined(__GLIBC__) && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
#include <malloc.h>
#endif

/// Working memory between calls.
namespace krl::test {
namespace {

TEST(KeptMemory, ChangesNoBytes) {
    const EnginePointer keeping(krl_engine_new(0)), plain(krl_engine_new(0));
    ASSERT_EQ(krl_engine_keep_memory(keeping.get(), 1), KRL_OK);
    for (const int32_t width : {700, 700, 300, 900})
        for (const char* call : {"fastGaussianBlur(9)", "twirl(30)", "sobel"}) {
            Canvas one(width, 500), other(width, 500);
            EXPECT_EQ(krl_apply(keeping.get(), &one.picture(), call, nullptr), KRL_OK);
            EXPECT_EQ(krl_apply(plain.get(), &other.picture(), call, nullptr), KRL_OK);
            EXPECT_EQ(one.bytes(), other.bytes()) << call << " at " << width;
        }
}

TEST(KeptMemory, RefusesBadUse) {
    const EnginePointer engine(krl_engine_new(1));
    EXPECT_EQ(krl_engine_keep_memory(nullptr, 1), KRL_BAD_USE);
    EXPECT_EQ(krl_engine_keep_memory(engine.get(), 2), KRL_BAD_USE);
    EXPECT_EQ(krl_engine_keep_memory(engine.get(), -1), KRL_BAD_USE);
    EXPECT_EQ(krl_engine_keep_memory(engine.get(), 0), KRL_OK);
}

#if defined(__GLIBC__) && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
size_t bytesInUse() {
    const struct mallinfo2 now = mallinfo2();
    return now.uordblks + now.hblkhd;
}

TEST(KeptMemory, StaysUntilItIsGivenBack) {
    constexpr size_t kPicture = size_t{1200} * 1000 * 4;
    Canvas canvas(1200, 1000);
    EnginePointer engine(krl_engine_new(1));
    const auto bytesAfterCall = [&](int32_t keep) {
        EXPECT_EQ(krl_engine_keep_memory(engine.get(), keep), KRL_OK);
        EXPECT_EQ(krl_apply(engine.get(), &canvas.picture(), "twirl(30)", nullptr), KRL_OK);
        return bytesInUse();
    };
    const size_t before = bytesAfterCall(0);
    EXPECT_GE(bytesAfterCall(1), before + kPicture);
    EXPECT_LT(bytesAfterCall(0), before + kPicture);
    EXPECT_GE(bytesAfterCall(1), before + kPicture);
    engine.reset();
    EXPECT_LT(bytesInUse(), before + kPicture) << "goes with the engine";
}
#endif

}  // namespace
}  // namespace krl::test
