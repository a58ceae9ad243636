#include <gtest/gtest.h>

#include "look/Look.h"

namespace krl {
namespace {

constexpr const char* kWarm =
    "krlimage look 1\n"
    "\n"
    "title: Warm evening\n"
    "description: Low sun, with soft dark corners.\n"
    "parameter soft: 8% from 2% to 30% \"how softly the corners darken\"\n"
    "parameter tint: rgb(20, 12, 8)\n"
    "\n"
    "colourTemperature(4800.0)\n"
    "vignette(theColor: $tint, blur: $soft, mix: 0.6)\n";

/// The message and line of the error in a text.
std::string errorOf(const std::string& text) {
    try {
        Look::read(text);
    } catch (const LookError& error) {
        return error.what();
    }
    return "";
}

std::string errorOfLine(const std::string& line) {
    return errorOf("krlimage look 1\ntitle: T\n" + line + "\ninvert\n");
}

TEST(LookText, ReadsBackWhatItWrites) {
    const Look look = Look::read(kWarm);
    EXPECT_EQ(look.title(), "Warm evening");
    EXPECT_EQ(look.description(), "Low sun, with soft dark corners.");
    ASSERT_EQ(look.parameters().size(), 2u);
    EXPECT_EQ(look.parameters()[0].standard, "8%");
    EXPECT_EQ(look.parameters()[0].from, "2%");
    EXPECT_EQ(look.parameters()[0].to, "30%");
    EXPECT_EQ(look.parameters()[0].meaning, "how softly the corners darken");
    ASSERT_NE(look.parameters()[0].argument, nullptr);
    EXPECT_STREQ(look.parameters()[0].argument->name, "blur");
    EXPECT_EQ(look.parameters()[1].standard, "rgb(20, 12, 8)");
    ASSERT_EQ(look.steps().size(), 2u);
    EXPECT_EQ(look.steps()[1].line, 9);
    EXPECT_EQ(look.write(), kWarm);
}

TEST(LookText, TakesBracketsInQuotationMarksForLetters) {
    const Look look = Look::read(
        "krlimage look 1\ntitle: T\nparameter over: image(\"a(b.png\") \"what is laid over\"\n"
        "composite($over, #screen)\n");
    EXPECT_EQ(look.parameters()[0].standard, "image(\"a(b.png\")");
    EXPECT_EQ(look.parameters()[0].meaning, "what is laid over");
}

TEST(LookText, PassesOverCommentsBlanksAndForeignLineEnds) {
    const Look look = Look::read(
        "\xEF\xBB\xBF-- from a friend\r\nkrlimage look 1 -- the first\r\n\ttitle:  A -- B \r\n"
        "description: one\r\ndescription: two\r\nparameter a: 3 -- of four\r\ninvert() -- and "
        "back\r\ninvert");
    EXPECT_EQ(look.title(), "A -- B");
    EXPECT_EQ(look.description(), "one two");
    EXPECT_EQ(look.parameters()[0].standard, "3");
    EXPECT_EQ(look.steps()[0].text, "invert()");
    EXPECT_EQ(look.steps()[1].text, "invert");
}

TEST(LookText, RefusesWhatItDoesNotKnowWithTheLine) {
    EXPECT_EQ(errorOf(""), "line 1: expected \"krlimage look 1\"");
    EXPECT_EQ(errorOf("\ntitle: T\n"), "line 2: expected \"krlimage look 1\"");
    EXPECT_EQ(errorOf("krlimage look 2\n"), "line 1: the look is of version 2, this program reads version 1");
    EXPECT_EQ(errorOf("krlimage look 1\ninvert\n"), "line 3: the look has no title");
    EXPECT_EQ(errorOf("krlimage look 1\ntitle: T\n"), "line 3: the look has no call");
    EXPECT_EQ(errorOfLine("author: me"),
              "line 3: unknown entry author: expected title, description, parameter or a call");
    EXPECT_EQ(errorOfLine("title: again"), "line 3: the title is given twice");
    EXPECT_EQ(errorOfLine("glorify(3)"), "line 3: no method is called glorify");
    EXPECT_EQ(errorOfLine("load(image(\"a\"))"), "line 3: load manages the engine of a script");
    EXPECT_EQ(errorOfLine("brightness(#a)"),
              "line 3: brightness: brightnessInt: expected an integer, got #a");
    EXPECT_EQ(errorOfLine("brightness(level: 3)"), "line 3: brightness has no argument level");
    EXPECT_EQ(errorOfLine("brightness(40"), "line 3: expected ) at character 14 of brightness(40");
    EXPECT_EQ(errorOfLine("brightness($level)"),
              "line 3: there is no parameter $level at character 12 of brightness($level)");
    EXPECT_EQ(errorOfLine("invert\x1b[2J"), "line 3: unexpected control character, code 27");
}

TEST(LookText, RefusesParametersThatAreNone) {
    EXPECT_EQ(errorOfLine("parameter soft"),
              "line 3: expected parameter NAME: VALUE [from A to B] [\"MEANING\"]");
    EXPECT_EQ(errorOfLine("parameter soft:"), "line 3: soft: expected a value, got none");
    EXPECT_EQ(errorOfLine("parameter soft: 3 from 1"), "line 3: soft: expected from A to B");
    EXPECT_EQ(errorOfLine("parameter soft: 3 4"), "line 3: soft: expected a value, got 3 4");
    EXPECT_EQ(errorOfLine("parameter soft: 3\nparameter SOFT: 4"),
              "line 4: the parameter SOFT is given twice");
    EXPECT_EQ(errorOfLine("parameter 1st: 3"),
              "line 3: a parameter's name is made of letters, digits and _, got 1st");
}

TEST(LookText, TakesOnlyValuesThatTheCallsTake) {
    Look look = Look::read(kWarm);
    look.set("SOFT", "12%");
    EXPECT_EQ(look.parameters()[0].value, "12%");
    const auto errorOfSetting = [&](const char* name, const char* value) -> std::string {
        try {
            look.set(name, value);
        } catch (const LookError& error) {
            return error.what();
        }
        return "";
    };
    EXPECT_EQ(errorOfSetting("hard", "1"), "no parameter is called hard; there is soft, tint");
    EXPECT_EQ(errorOfSetting("soft", "#a"), "soft: vignette: blur: expected an integer, got #a");
    EXPECT_EQ(errorOfSetting("tint", "5%"),
              "tint: a percentage is for a length or a point at character 2 of 5%");
    EXPECT_EQ(look.parameters()[0].value, "12%");
    EXPECT_EQ(look.parameters()[1].value, "rgb(20, 12, 8)");
}

/// What is added could not be read again once it is written.
TEST(LookText, TakesNoPartThatNoTextCanHold) {
    Look look = Look::read(kWarm);
    const std::string before = look.write();
    const auto errorOf = [](auto&& change) -> std::string {
        try {
            change();
        } catch (const LookError& error) {
            return error.what();
        }
        return "";
    };
    const auto errorOfParameter = [&](const char* value, const char* to = "", const char* meaning = "") {
        return errorOf([&] { look.addParameter({"r", value, "", "", to, meaning}); });
    };
    const std::string oneLine = " is one line without control characters";
    EXPECT_EQ(errorOf([&] { look.setTitle("a\x1b[1m"); }), "a title" + oneLine);
    EXPECT_EQ(errorOf([&] { look.setDescription("a\nb"); }), "a description" + oneLine);
    EXPECT_EQ(errorOf([&] { look.addCall("invert(\v)", 7); }), "line 7: a call" + oneLine);
    EXPECT_EQ(errorOfParameter("\n"), "r: a value" + oneLine);
    EXPECT_EQ(errorOfParameter("1", "", "a\rb"), "r: a meaning" + oneLine);
    EXPECT_EQ(errorOfParameter("1", "", "a \"b\""), "r: a meaning has no quotation marks");
    EXPECT_EQ(errorOfParameter("1", "2"), "r: expected from A to B");
    EXPECT_EQ(errorOfParameter("blur: 1"), "r: expected a value, got blur: 1");
    EXPECT_EQ(errorOfParameter("1, 2"), "r: expected a value, got 1, 2");
    EXPECT_EQ(look.write(), before);
    look.setTitle("Tabs\tare blanks");
    EXPECT_EQ(Look::read(look.write()).title(), "Tabs\tare blanks");
}

TEST(LookText, TakesSymbolsWithoutTheirSign) {
    Look look = Look::read("krlimage look 1\ntitle: T\nparameter what: #RGB\ninvert($what)\n");
    look.set("what", "Alpha");
    EXPECT_EQ(look.parameters()[0].value, "#Alpha");
}

TEST(LookText, NamesThePicturesOnce) {
    const Look look = Look::read(
        "krlimage look 1\ntitle: T\ncomposite(image(\"a.png\"), #normal)\n"
        "invert(mask: image(\"b.png\"))\ncomposite(image(\"a.png\"), #screen)\n");
    EXPECT_EQ(look.pictureNames(), (std::vector<std::string>{"a.png", "b.png"}));
}

TEST(LookText, EveryShippedLookIsWhole) {
    ASSERT_FALSE(shippedLooks().empty());
    for (const ShippedLook& shipped : shippedLooks()) {
        const Look look = Look::read(shipped.text);
        EXPECT_FALSE(look.description().empty()) << shipped.name;
        EXPECT_TRUE(look.pictureNames().empty()) << shipped.name;
        for (const LookParameter& parameter : look.parameters()) {
            EXPECT_FALSE(parameter.meaning.empty()) << shipped.name << ' ' << parameter.name;
            EXPECT_FALSE(parameter.from.empty()) << shipped.name << ' ' << parameter.name;
            for (const std::string& value : {parameter.from, parameter.to})
                Look(look).set(parameter.name, value);
        }
    }
}

}  // namespace
}  // namespace krl
