#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <set>

#include "host/MessageTable.h"
#include "host/MessageTableText.h"
#include "methods/Stage.h"

/// Tests for every method, generated from the registry and run through the plug-in interface.
namespace krl::host {
namespace {

using krl::test::Answer;
using krl::test::Stage;
using player::Value;

class EveryMethod : public testing::TestWithParam<int32_t> {
protected:
    void SetUp() override { ASSERT_NE(methods()[size_t(GetParam() - 1)], nullptr) << "unbound selector"; }
    const Method& method() const { return *methods()[size_t(GetParam() - 1)]; }

    bool hasKind(ArgumentKind kind) const {
        for (const Argument& argument : method().arguments())
            if (argument.kind == kind) return true;
        return false;
    }
    /// Methods that read values or lists themselves have separate tests.
    bool isGeneric() const {
        return method().readsArguments() && !method().isSilent() && !hasKind(ArgumentKind::Value) &&
               !method().managesTheEngine();
    }
    bool isRead(const Argument& argument) const {
        return argument.kind != ArgumentKind::SecondImage && argument.kind != ArgumentKind::Value;
    }
};

TEST_P(EveryMethod, ReportsAnArgumentOfTheWrongTypeAndKeepsThePicture) {
    if (!isGeneric()) GTEST_SKIP() << "reads its arguments itself";
    Stage stage;
    stage.load(5, 4);
    const std::vector<Pixel> before = stage.pixels();
    for (size_t i = 0; i < method().arguments().size(); ++i) {
        const Argument& argument = method().arguments()[i];
        if (!isRead(argument)) continue;
        std::vector<Value> wrong = {stage.string("words"), Value()};
        if (argument.kind == ArgumentKind::Integer) wrong.push_back(stage.real(1.5));
        if (argument.kind != ArgumentKind::Symbol) wrong.push_back(stage.symbol("RGB"));
        if (argument.kind == ArgumentKind::Symbol) wrong.push_back(stage.integer(5));
        for (const Value& value : wrong) {
            std::vector<Value> arguments = stage.examples(method());
            arguments[i] = value;
            const Answer answer = stage.call(method(), arguments);
            EXPECT_EQ(answer.error, method().inputFailureText(argument)) << argument.name;
            EXPECT_NE(answer.status, kHostOk) << argument.name;
        }
    }
    EXPECT_EQ(stage.pixels(), before);
}

TEST_P(EveryMethod, ReportsAnUnknownSymbolOrUsesItsFallback) {
    if (!isGeneric()) GTEST_SKIP() << "reads its arguments itself";
    Stage stage;
    for (size_t i = 0; i < method().arguments().size(); ++i) {
        const Argument& argument = method().arguments()[i];
        if (argument.kind != ArgumentKind::Symbol) continue;
        stage.load(5, 4);
        std::vector<Value> arguments = stage.examples(method());
        arguments[i] = stage.symbol("no_such_symbol_anywhere");
        const Answer answer = stage.call(method(), arguments);
        EXPECT_EQ(answer.error, argument.unknown.message ? argument.unknown.message : "") << argument.name;
        EXPECT_EQ(answer.status, kHostOk) << argument.name;
    }
}

TEST_P(EveryMethod, AcceptsEverySymbolThatItNames) {
    if (!isGeneric()) GTEST_SKIP() << "reads its arguments itself";
    Stage stage;
    for (size_t i = 0; i < method().arguments().size(); ++i) {
        for (const SymbolChoice& choice : method().arguments()[i].choices) {
            stage.load(6, 5);
            std::vector<Value> arguments = stage.examples(method());
            arguments[i] = stage.symbol(choice.name);
            EXPECT_EQ(stage.call(method(), arguments).error, "") << choice.name;
        }
    }
}

TEST_P(EveryMethod, GivesTheSameBytesForAnyNumberOfBands) {
    if (!isGeneric()) GTEST_SKIP() << "reads its arguments itself";
    constexpr int32_t sizes[][2] = {{1, 1}, {1, 7}, {7, 1}, {2, 2}, {5, 3}, {33, 17}, {70, 4}};
    Stage stage;
    for (const auto& [width, height] : sizes) {
        std::vector<Pixel> expected;
        std::string error;
        for (int32_t bands : {1, 2, 3, 4, 7, 8}) {
            if (bands != 1 && method().resultDependsOnBands()) continue;
            stage.load(width, height, width * 100 + height);
            stage.setBands(bands);
            const Answer answer = stage.call(method(), stage.examples(method()));
            if (bands == 1) {
                expected = stage.pixels();
                error = answer.error;
                EXPECT_TRUE(error.empty() || error == method().failedText() ||
                            error == "Failed Half Size Check function (Image)")
                    << error;
            }
            EXPECT_EQ(answer.error, error) << width << 'x' << height << " in " << bands << " bands";
            EXPECT_EQ(stage.pixels(), expected) << width << 'x' << height << " in " << bands << " bands";
        }
    }
}

TEST_P(EveryMethod, HandlesNumbersAtAndBeyondEveryLimit) {
    if (!isGeneric()) GTEST_SKIP() << "reads its arguments itself";
    Stage stage;
    for (size_t i = 0; i < method().arguments().size(); ++i) {
        const Argument& argument = method().arguments()[i];
        std::vector<Value> values;
        if (argument.kind == ArgumentKind::Integer) {
            // The host limits the sizes of new pictures; that is tested with the methods that make them.
            const bool makesPicture = std::string(method().name()) == "krlImageRGBGradient";
            for (int32_t number : {INT_MIN, INT_MAX, -65537, -256, -1, 0, 1, 2, 255, 256, 360, 70000}) {
                if (!makesPicture || number < 1000) values.push_back(stage.integer(number));
            }
        }
        if (argument.kind == ArgumentKind::Real)
            for (double number : {argument.range.from, argument.range.to, 0.0, -0.0, -1.0, 1.0, 1e-30, 1e9,
                                  -1e9, 1e300, -1e300, double(NAN), double(INFINITY), double(-INFINITY)})
                values.push_back(stage.real(number));
        for (const Value& value : values) {
            stage.load(9, 7);
            stage.setBands(2);
            std::vector<Value> arguments = stage.examples(method());
            arguments[i] = value;
            const Answer answer = stage.call(method(), arguments);
            // Only what does not fit into memory may be refused.
            const bool refused = answer.status == kHostOutOfMemory && answer.error == method().failedText();
            EXPECT_TRUE(refused || answer.status == kHostOk) << argument.name << ' ' << answer.error;
        }
    }
}

TEST_P(EveryMethod, FailsWithItsOwnTextWhenThereIsNoEngine) {
    if (!isGeneric()) GTEST_SKIP() << "reads its arguments itself";
    Stage stage(false);
    const Answer answer = stage.call(method(), stage.examples(method()));
    EXPECT_EQ(answer.status, kHostOk);
    if (method().runsWithoutEngine()) {
        EXPECT_EQ(answer.error, "");
    } else {
        EXPECT_EQ(answer.error,
                  method().engineFailureText() ? method().engineFailureText() : method().failedText());
    }
}

TEST_P(EveryMethod, ReleasesEverythingThatItAcquired) {
    if (!isGeneric()) GTEST_SKIP() << "reads its arguments itself";
    Stage stage;
    stage.load(6, 5);
    stage.call(method(), stage.examples(method()));
    if (!method().arguments().empty() && isRead(method().arguments()[0]))
        stage.call(method(), {stage.string("words")});
    EXPECT_EQ(stage.locks(), 1);
    EXPECT_TRUE(stage.leavesNothing());
}

INSTANTIATE_TEST_SUITE_P(Door, EveryMethod,
                         testing::Range(1, static_cast<int32_t>(host::methods().size()) + 1),
                         [](const auto& selector) { return krl::test::methodName(selector.param); });

}  // namespace
}  // namespace krl::host
