#include <gtest/gtest.h>

#include "catalogue/Catalogue.h"
#include "catalogue/ExampleCall.h"
#include "look/FusedCalls.h"
#include "look/NoisePicture.h"
#include "look/PictureMemory.h"

namespace krl {
namespace {

using test::bytesOf;

constexpr int32_t kWidth = 37, kHeight = 19;

Picture noise(int32_t seed) { return test::noise(kWidth, kHeight, seed); }

class FusedCalls : public testing::Test {
protected:
    FusedCalls() {
        engine_.allocateTables();
        engine_.buildTables();
        for (const Method* method : catalogue().methods())
            if (method->isPerPixel()) calls_.push_back(example(*method));
    }

    /// The method's example with a second picture in this order.
    ReadyCall example(const Method& method, PixelOrder order = PixelOrder::BGRA) const {
        ReadyCall call{method, {}, {}};
        for (const Argument& argument : method.arguments())
            call.arguments.push_back(argument.kind == ArgumentKind::SecondImage
                                         ? Value(copyOf(second_, order))
                                         : exampleValue(argument, {kWidth, kHeight, {}}));
        return call;
    }
    ReadyCall named(const char* name, PixelOrder order = PixelOrder::BGRA) const {
        return example(*catalogue().find(name), order);
    }

    std::string oneByOne(const std::vector<ReadyCall>& calls) {
        const Picture picture = copyOf(before_);
        const LoadedPicture loaded(engine_, picture);
        for (const ReadyCall& call : calls)
            EXPECT_EQ(callMethod(call.method, engine_, call.arguments).error, "") << call.method.shortName();
        return bytesOf(picture);
    }

    std::string together(const std::vector<ReadyCall>& calls, PixelOrder from = PixelOrder::BGRA,
                         PixelOrder to = PixelOrder::BGRA, int32_t bands = 1) {
        const Picture source = copyOf(before_, from);
        Picture target = Picture::blank(kWidth, kHeight);
        target.order = to;
        for (const ReadyCall& call : calls)
            EXPECT_TRUE(canFuse(call, source, target)) << call.method.shortName();
        EXPECT_EQ(runFused(engine_, bands, calls, source, target).result.error, "");
        return bytesOf(copyOf(target, PixelOrder::BGRA));
    }

    ImageEngine engine_;
    const Picture before_ = noise(1), second_ = noise(2);
    std::vector<ReadyCall> calls_;
};

TEST_F(FusedCalls, GiveTheBytesOfOneAfterAnotherForEveryPairOfMethods) {
    ASSERT_GT(calls_.size(), 30u);
    for (const ReadyCall& first : calls_)
        for (const ReadyCall& second : calls_)
            EXPECT_TRUE(together({first, second}) == oneByOne({first, second}))
                << first.method.shortName() << ", " << second.method.shortName();
}

TEST_F(FusedCalls, TakePicturesInEveryOrder) {
    for (const ReadyCall& call : calls_) {
        const std::string expected = oneByOne({call, named("composite"), call});
        for (const PixelOrder from : {PixelOrder::BGRA, PixelOrder::RGBA})
            for (const PixelOrder to : {PixelOrder::BGRA, PixelOrder::RGBA})
                for (const PixelOrder second : {PixelOrder::BGRA, PixelOrder::RGBA}) {
                    const ReadyCall one = example(call.method, second);
                    EXPECT_TRUE(together({one, named("composite", second), one}, from, to, 3) == expected)
                        << call.method.shortName();
                }
    }
}

TEST_F(FusedCalls, RewriteAPictureInPlace) {
    for (const PixelOrder order : {PixelOrder::BGRA, PixelOrder::RGBA}) {
        const Picture picture = copyOf(before_, order);
        const std::vector<ReadyCall> calls = {named("sepia"), named("invert")};
        EXPECT_EQ(runFused(engine_, 2, calls, picture, picture).result.error, "");
        EXPECT_TRUE(bytesOf(copyOf(picture, PixelOrder::BGRA)) == oneByOne(calls));
    }
}

/// Also a chain whose last or only call has nothing to do.
TEST_F(FusedCalls, PassOverCallsThatHaveNothingToDo) {
    ReadyCall idle = named("rgbChannelSwap");
    idle.arguments[0] = Symbol{"RGBtoRGB"};
    for (const std::vector<ReadyCall>& calls :
         {std::vector{idle}, std::vector{idle, idle}, std::vector{idle, named("sepia")},
          std::vector{named("sepia"), idle}, std::vector{named("sepia"), idle, named("invert"), idle}})
        EXPECT_TRUE(together(calls) == oneByOne(calls)) << calls.size();
}

TEST_F(FusedCalls, RunAsManyAsTheirLimit) {
    std::vector<ReadyCall> calls;
    while (calls.size() < kMostFused) calls.push_back(calls_[calls.size() * 5 % calls_.size()]);
    EXPECT_TRUE(together(calls) == oneByOne(calls));
}

TEST_F(FusedCalls, LeaveThePictureWhereOneIsRefused) {
    ReadyCall refused = named("brightness");
    refused.arguments[0] = Symbol{"much"};
    const Picture target = copyOf(before_);
    const std::vector<ReadyCall> calls = {named("sepia"), refused, named("invert")};
    const ChainResult made = runFused(engine_, 1, calls, second_, target);
    EXPECT_EQ(made.number, 1u);
    EXPECT_FALSE(made.result.ok());
    EXPECT_EQ(bytesOf(target), bytesOf(before_));
    // The engine is as before.
    EXPECT_TRUE(together({named("sepia")}) == oneByOne({named("sepia")}));
}

TEST_F(FusedCalls, EndWithTheirEngine) {
    engine_.cancel();
    const Picture target = copyOf(before_);
    for (const char* name : {"sepia", "rgbChannelSwap"}) {
        const std::vector<ReadyCall> calls = {named(name)};
        EXPECT_EQ(runFused(engine_, 1, calls, second_, target).result.code, kCallCancelled);
    }
    EXPECT_EQ(bytesOf(target), bytesOf(before_));
}

TEST_F(FusedCalls, AreThoseOnWholePicturesOfOneSizeThatShareNoMemory) {
    const Picture target = Picture::blank(kWidth, kHeight);
    EXPECT_TRUE(canFuse(named("composite"), before_, target));
    EXPECT_TRUE(canFuse(named("invert"), target, target));
    EXPECT_FALSE(canFuse(named("fastGaussianBlur"), before_, target));

    ReadyCall partial = named("invert");
    partial.extent.mix = 0.5;
    EXPECT_FALSE(canFuse(partial, before_, target));

    ReadyCall self = named("composite");
    for (Value& argument : self.arguments)
        if (auto* picture = argument.as<Picture>()) *picture = target;
    EXPECT_FALSE(canFuse(self, before_, target));
    for (Value& argument : self.arguments)
        if (auto* picture = argument.as<Picture>()) *picture = Picture::blank(kWidth, kHeight + 1);
    EXPECT_FALSE(canFuse(self, before_, target));

    Picture shifted = target;
    shifted.pixels += sizeof(Pixel);
    shifted.info.height -= 1;
    Picture shorter = target;
    shorter.info.height -= 1;
    EXPECT_FALSE(canFuse(named("invert"), shifted, shorter));
    Picture padded = Picture::blank(kWidth + 1, kHeight);
    padded.info.width = kWidth;
    EXPECT_FALSE(canFuse(named("invert"), padded, target));
}

}  // namespace
}  // namespace krl
