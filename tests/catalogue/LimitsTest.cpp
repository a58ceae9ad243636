#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "catalogue/Catalogue.h"
#include "catalogue/DirectCall.h"
#include "catalogue/ExampleCall.h"

/// What the entries claim of their arguments' limits and neutral values, for every method.
namespace krl {
namespace {

constexpr int32_t kWidth = 29, kHeight = 18;

/// Bytes without a pattern, some of them transparent.
Picture noise(uint32_t seed) {
    Picture picture = Picture::blank(kWidth, kHeight);
    for (int32_t i = 0; i < kWidth * kHeight * 4; ++i) {
        seed = seed * 1664525u + 1013904223u;
        picture.pixels[i] = static_cast<uint8_t>(seed >> 24);
    }
    return picture;
}

std::string bytesOf(const Picture& picture) {
    return std::string(reinterpret_cast<const char*>(picture.pixels), size_t(kWidth) * kHeight * 4);
}

class ArgumentLimits : public testing::TestWithParam<const Method*> {
protected:
    ArgumentLimits() {
        engine_.allocateTables();
        engine_.buildTables();
    }

    /// What the method makes of the picture with one number in place of its example.
    std::string madeWith(size_t place, double number) {
        const Method& method = *GetParam();
        std::vector<Value> arguments;
        for (const Argument& argument : method.arguments()) {
            arguments.push_back(exampleValue(argument, {kWidth, kHeight, {}}));
            if (argument.kind == ArgumentKind::SecondImage) arguments.back() = noise(7);
        }
        if (method.arguments()[place].kind == ArgumentKind::Integer)
            arguments[place] = static_cast<int32_t>(number);
        else
            arguments[place] = number;
        const Picture picture = noise(1);
        engine_.load(picture.pixels, picture.info);
        const CallResult result = callMethod(method, engine_, arguments);
        EXPECT_EQ(result.error, "") << method.arguments()[place].name << " at " << number;
        return bytesOf(picture);
    }

    /// Numbers beyond `limit`, in the direction of `sign`, give what the limit gives.
    void expectSame(size_t place, double limit, double sign) {
        const std::string atLimit = madeWith(place, limit);
        for (const double number :
             {limit + sign, limit + 100 * sign, sign < 0 ? -2147483648.0 : 2147483647.0})
            EXPECT_TRUE(madeWith(place, number) == atLimit)
                << GetParam()->arguments()[place].name << " at " << number;
    }

    ImageEngine engine_;
};

TEST_P(ArgumentLimits, CountForWhatLiesBeyondThem) {
    for (size_t i = 0; i < GetParam()->arguments().size(); ++i) {
        const NumberRange& range = GetParam()->arguments()[i].range;
        if (std::isfinite(range.least)) expectSame(i, range.least, -1);
        if (std::isfinite(range.most)) expectSame(i, range.most, 1);
    }
}

TEST_P(ArgumentLimits, LeaveThePictureAloneAtANeutralValue) {
    for (size_t i = 0; i < GetParam()->arguments().size(); ++i) {
        const NumberRange& range = GetParam()->arguments()[i].range;
        if (!std::isnan(range.neutral)) {
            EXPECT_TRUE(madeWith(i, range.neutral) == bytesOf(noise(1))) << GetParam()->arguments()[i].name;
        }
    }
}

std::vector<const Method*> methodsThatRewrite() {
    std::vector<const Method*> all = catalogue().methods();
    std::erase_if(all, [](const Method* method) { return !method->rewritesPicture(); });
    return all;
}

INSTANTIATE_TEST_SUITE_P(Catalogue, ArgumentLimits, testing::ValuesIn(methodsThatRewrite()),
                         [](const auto& method) { return std::string(method.param->name()); });

TEST(Limits, AreStatedForManyArguments) {
    int limited = 0, neutral = 0;
    for (const Method* method : catalogue().methods())
        for (const Argument& argument : method->arguments()) {
            limited += std::isfinite(argument.range.least) || std::isfinite(argument.range.most);
            neutral += !std::isnan(argument.range.neutral);
        }
    EXPECT_GT(limited, 30);
    EXPECT_GT(neutral, 10);
}

}  // namespace
}  // namespace krl
