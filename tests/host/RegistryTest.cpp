#include <gtest/gtest.h>

#include <set>
#include <sstream>

#include "catalogue/ExampleCall.h"
#include "catalogue/Notation.h"
#include "host/MessageTable.h"
#include "host/MessageTableText.h"
#include "host/MethodRegistry.h"

namespace krl::host {
namespace {

struct SignatureArgument {
    std::string kind, name;
};

/// The arguments after `me` in the message table.
std::vector<SignatureArgument> signatureArguments(const Method& method) {
    std::string text = signatureOf(method);
    const size_t comma = text.find(',');
    text = comma == std::string::npos ? "" : text.substr(comma + 1);
    for (char& letter : text)
        if (letter == ',') letter = ' ';
    std::istringstream words(text);
    std::vector<SignatureArgument> found;
    for (SignatureArgument argument; words >> argument.kind >> argument.name;) found.push_back(argument);
    return found;
}

std::set<std::string> wordsFor(ArgumentKind kind) {
    switch (kind) {
        case ArgumentKind::Integer:
            return {"integer", "int"};
        case ArgumentKind::Real:
            return {"float"};
        case ArgumentKind::Symbol:
            return {"symbol"};
        case ArgumentKind::Colour:
            return {"color"};
        case ArgumentKind::Point:
            return {"point"};
        case ArgumentKind::ColourList:
            return {"list"};
        case ArgumentKind::SecondImage:
            return {"any"};
        case ArgumentKind::Value:
            return {"any", "list"};
    }
    return {};
}

class EveryMethod : public testing::TestWithParam<int32_t> {
protected:
    const Method& method() const { return *methods()[size_t(GetParam() - 1)]; }
    void SetUp() override { ASSERT_NE(methods()[size_t(GetParam() - 1)], nullptr) << "unbound selector"; }
};

TEST_P(EveryMethod, DeclaresTheArgumentsOfItsSignature) {
    const auto signature = signatureArguments(method());
    ASSERT_EQ(method().arguments().size(), signature.size());
    for (size_t i = 0; i < signature.size(); ++i) {
        const Argument& declared = method().arguments()[i];
        EXPECT_EQ(declared.name, signature[i].name);
        EXPECT_TRUE(wordsFor(declared.kind).count(signature[i].kind)) << declared.name;
    }
}

TEST_P(EveryMethod, HasABodyThatTakesItsArguments) { EXPECT_TRUE(method().fitsEffect()); }

TEST_P(EveryMethod, IsDescribedInWords) {
    EXPECT_STRNE(method().summaryText(), "");
    EXPECT_NE(method().heading(), "");
    for (const Argument& argument : method().arguments()) EXPECT_STRNE(argument.meaning, "") << argument.name;
}

TEST_P(EveryMethod, HasATextForEveryFailureThatCanHappen) {
    if (!method().isSilent()) {
        EXPECT_NE(method().failedText(), nullptr);
    }
    if (!method().readsArguments()) return;
    for (const Argument& argument : method().arguments()) {
        const bool copied =
            argument.kind == ArgumentKind::SecondImage || argument.kind == ArgumentKind::Value;
        EXPECT_TRUE(copied || method().inputFailureText(argument)) << argument.name;
    }
}

TEST_P(EveryMethod, ShowsExamplesWithinTheirOwnRanges) {
    for (const Argument& argument : method().arguments()) {
        if (argument.kind == ArgumentKind::Integer || argument.kind == ArgumentKind::Real) {
            EXPECT_LT(argument.range.from, argument.range.to) << argument.name;
            EXPECT_LE(argument.range.from, argument.range.example) << argument.name;
            EXPECT_LE(argument.range.example, argument.range.to) << argument.name;
        }
        if (argument.kind == ArgumentKind::Symbol) {
            std::set<std::string> names;
            for (const SymbolChoice& choice : argument.choices) names.insert(choice.name);
            EXPECT_EQ(names.size(), argument.choices.size()) << argument.name;
            EXPECT_TRUE(names.count(argument.example)) << argument.name;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Registry, EveryMethod, testing::Range(1, static_cast<int32_t>(methods().size()) + 1),
                         [](const testing::TestParamInfo<int32_t>& selector) {
                             return std::string(methods()[size_t(selector.param - 1)]->name());
                         });

TEST(Registry, FindsMethodsByEitherNameInAnyCase) {
    const Method* load = findMethod("krlImageLoad");
    ASSERT_NE(load, nullptr);
    EXPECT_EQ(findMethod("load"), load);
    EXPECT_EQ(findMethod("KRLIMAGELOAD"), load);
    EXPECT_EQ(findMethod("loads"), nullptr);
    EXPECT_EQ(selectorOf(*load), 5);
    EXPECT_EQ(load->shortName(), "load");
    EXPECT_EQ(findMethod("YUVBlur")->shortName(), "YUVBlur");
    EXPECT_EQ(signatureOf(*load), "krlImageLoad object me, any srcCMem");
}

TEST(Examples, AreWrittenAsLingo) {
    EXPECT_EQ(realNotation(0.5), "0.5");
    EXPECT_EQ(realNotation(-2), "-2.0");
    EXPECT_EQ(realNotation(1e9), "1000000000.0");
    const Method all = Method("krlImageAll")
                           .integer("count", {0, 9, 3}, "")
                           .real("amount", {0, 1, 0.25}, "")
                           .symbol("target", {{"RGB", 5}, {"Alpha", 6}}, refused(""))
                           .colour("tint", {1, 2, 3}, "")
                           .point("origin", {0.5, 0.25}, "")
                           .colourList("ramp", {}, {{0, {0, 0, 0}}, {100, {255, 128, 0}}}, "")
                           .image("foreground", {}, "logo.png", "");
    EXPECT_EQ(exampleCall(all, {.width = 100, .height = 80, .image = {}}),
              "krlImageAll(3, 0.25, #RGB, rgb(1, 2, 3), point(50, 20), "
              "[0: rgb(0, 0, 0), 100: rgb(255, 128, 0)], image(\"logo.png\"))");
}

}  // namespace
}  // namespace krl::host
