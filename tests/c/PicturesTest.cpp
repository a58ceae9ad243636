#include <thread>

#include "c/CallingTest.h"

/// Pictures over the caller's memory, and engines side by side.
namespace krl::test {
namespace {

krl_code callWith(krl_engine* engine, Canvas& canvas, const char* method, Canvas& second) {
    const ValuePointer value(krl_picture_value(&second.picture()));
    const krl_argument argument = {nullptr, value.get()};
    return krl_call(engine, &canvas.picture(), method, &argument, 1, nullptr);
}

TEST(Pictures, KeepWhatIsBetweenTheirRows) {
    const EnginePointer engine(krl_engine_new(0));
    for (const krl_method_info* method : callableMethods())
        for (const int32_t order : {KRL_BGRA, KRL_RGBA}) {
            Canvas canvas(5, 4, order, 6), second(5, 4, order, 6, 2);
            const std::vector<uint8_t> before = canvas.bytes(), secondBefore = second.bytes();
            if (method->flags & KRL_NEEDS_SECOND_PICTURE)
                callWith(engine.get(), canvas, method->name, second);
            else
                krl_call(engine.get(), &canvas.picture(), method->name, nullptr, 0, nullptr);
            for (size_t i = 0; i < before.size(); ++i)
                if (i % 26 >= 20) {
                    EXPECT_EQ(canvas.bytes()[i], before[i]) << method->name;
                    EXPECT_EQ(second.bytes()[i], secondBefore[i]) << method->name;
                }
            if (!(method->flags & KRL_REWRITES_PICTURE)) {
                EXPECT_EQ(canvas.bytes(), before) << method->name;
            }
        }
}

TEST(Pictures, ThatAreOnlyReadStayAsTheyAre) {
    const EnginePointer engine(krl_engine_new(0));
    for (const int32_t order : {KRL_BGRA, KRL_RGBA}) {
        Canvas canvas(6, 6, KRL_BGRA), second(6, 6, order, 0, 2);
        const std::vector<uint8_t> before = second.bytes();
        EXPECT_EQ(callWith(engine.get(), canvas, "composite", second), KRL_OK);
        EXPECT_EQ(second.bytes(), before);
    }
}

TEST(Pictures, MayBeTheirOwnSecondPicture) {
    const EnginePointer engine(krl_engine_new(1));
    std::vector<std::vector<uint8_t>> outcomes;
    for (const size_t padding : {0, 4}) {
        Canvas canvas(6, 6, KRL_BGRA, padding);
        for (int32_t y = 0; y < 6; ++y) std::memset(canvas.row(y), 40 * y, 24);
        EXPECT_EQ(callWith(engine.get(), canvas, "composite", canvas), KRL_OK);
        auto& rows = outcomes.emplace_back();
        for (int32_t y = 0; y < 6; ++y) rows.insert(rows.end(), canvas.row(y), canvas.row(y) + 24);
    }
    EXPECT_EQ(outcomes[0], outcomes[1]);
}

/// The second picture begins a row further down in the same memory: the copy of it must not come back.
TEST(Pictures, MayOverlapTheirSecondPicture) {
    const EnginePointer engine(krl_engine_new(1));
    std::vector<std::vector<uint8_t>> outcomes;
    for (const bool isOverlapping : {true, false}) {
        Canvas canvas(8, 5, KRL_RGBA), apart(8, 5, KRL_RGBA);
        const std::vector<uint8_t> before = canvas.bytes();
        krl_picture second = (isOverlapping ? canvas : apart).picture();
        canvas.picture().height = second.height = 4;
        second.pixels = static_cast<uint8_t*>(second.pixels) + second.row_bytes;
        const ValuePointer value(krl_picture_value(&second));
        const krl_argument argument = {nullptr, value.get()};
        EXPECT_EQ(krl_call(engine.get(), &canvas.picture(), "composite", &argument, 1, nullptr), KRL_OK);
        EXPECT_NE(canvas.bytes(), before);
        outcomes.push_back(canvas.bytes());
    }
    EXPECT_EQ(outcomes[0], outcomes[1]);
}

TEST(Pictures, ThatMethodsMakeHaveTheOrderOfTheLoadedOneAndOutliveTheirResult) {
    const EnginePointer engine(krl_engine_new(0));
    std::vector<std::vector<uint8_t>> outcomes;
    for (const int32_t order : {KRL_BGRA, KRL_RGBA}) {
        Canvas canvas(4, 4, order);
        krl_result* made = nullptr;
        ASSERT_EQ(krl_apply(engine.get(), &canvas.picture(), "halfSize", &made), KRL_OK);
        const ValuePointer kept(krl_copy(krl_find(krl_result_value(made), "frame")));
        krl_result_free(made);
        krl_picture picture = {sizeof picture, nullptr, 0, 0, 0, 0};
        ASSERT_EQ(krl_get_picture(kept.get(), &picture), KRL_OK);
        EXPECT_EQ(picture.order, order);
        auto* bytes = static_cast<uint8_t*>(picture.pixels);
        outcomes.emplace_back(bytes, bytes + 16);
    }
    EXPECT_EQ(outcomes[0], outcomes[1]) << "the channels are halved alike";
}

TEST(Engines, GiveTheSameAutomaticResultOnAnyMachine) {
    for (const krl_method_info* method : callableMethods()) {
        if (method->flags & KRL_NEEDS_SECOND_PICTURE) continue;
        std::vector<std::vector<uint8_t>> outcomes;
        for (const int32_t bands : {0, 1}) {
            Canvas canvas(33, 17);
            const EnginePointer engine(krl_engine_new(bands));
            krl_call(engine.get(), &canvas.picture(), method->name, nullptr, 0, nullptr);
            outcomes.push_back(canvas.bytes());
        }
        EXPECT_EQ(outcomes[0], outcomes[1]) << method->name;
    }
}

TEST(Engines, RunSideBySide) {
    Canvas expected(64, 48);
    const auto grade = [](Canvas& canvas) {
        const EnginePointer engine(krl_engine_new(2));
        for (const char* call : {"brightness(20)", "fastGaussianBlur(3)", "sobel", "hueShift(40)"})
            EXPECT_EQ(krl_apply(engine.get(), &canvas.picture(), call, nullptr), KRL_OK) << call;
    };
    std::vector<std::unique_ptr<Canvas>> canvases;
    for (int i = 0; i < 4; ++i) canvases.push_back(std::make_unique<Canvas>(64, 48, i % 2));
    std::vector<std::thread> threads;
    for (const auto& canvas : canvases) threads.emplace_back([&] { grade(*canvas); });
    for (std::thread& thread : threads) thread.join();
    grade(expected);
    EXPECT_EQ(canvases[0]->bytes(), expected.bytes());
    EXPECT_EQ(canvases[0]->bytes(), canvases[2]->bytes());
    EXPECT_EQ(canvases[1]->bytes(), canvases[3]->bytes());
}

}  // namespace
}  // namespace krl::test
