#include <gtest/gtest.h>

#include "catalogue/Catalogue.h"
#include "catalogue/ExampleCall.h"
#include "catalogue/Notation.h"

namespace krl {
namespace {

std::string again(const std::string& text) { return writeNotation(readNotation(text)); }

TEST(Notation, ReadsBackWhatItWrites) {
    for (const char* text :
         {"40", "-2147483648", "1.5", "-0.25", "#RGB", "\"two words\"", "rgb(255, 128, 0)", "point(-3, 480)",
          "[]", "[:]", "[1, 2.0, #three]", "[0: rgb(0, 0, 0), 100: rgb(9, 8, 7)]",
          "[#star: [#count: 6, #angle: 15.0], #star: [:]]", "image(\"logo.png\")", "image(480, 320, 32)",
          "VOID"})
        EXPECT_EQ(again(text), text);
}

TEST(Notation, PutsTheFirstNumberOfAPointInItsColumn) {
    const Value place = readNotation(" point ( 7 , 9 ) ");
    ASSERT_NE(place.as<Point>(), nullptr);
    EXPECT_EQ(place.as<Point>()->x, 7);
    EXPECT_EQ(place.as<Point>()->y, 9);
}

TEST(Notation, TakesWholeNumbersBeyondAnIntegerAsReals) {
    EXPECT_EQ(readNotation("2147483647").kind(), ValueKind::Integer);
    EXPECT_EQ(readNotation("2147483648").kind(), ValueKind::Real);
    EXPECT_EQ(readNotation("+5").kind(), ValueKind::Integer);
}

TEST(Notation, SaysWhatItExpectedAndWhere) {
    const auto placeOfFault = [](const std::string& text) -> size_t {
        try {
            readNotation(text);
        } catch (const NotationError& error) {
            return error.place();
        }
        return 0;
    };
    EXPECT_EQ(placeOfFault(""), 1u);
    EXPECT_EQ(placeOfFault("1 2"), 3u);
    EXPECT_EQ(placeOfFault("[1, 2"), 6u);
    EXPECT_EQ(placeOfFault("rgb(1, 2)"), 9u);
    EXPECT_EQ(placeOfFault("rgb(1, 2, 256)"), 14u);
    EXPECT_EQ(placeOfFault("sprite(3)"), 8u);
    EXPECT_EQ(placeOfFault("\"open"), 2u);
}

TEST(Notation, RefusesListsThatAreNestedWithoutEnd) {
    EXPECT_THROW(readNotation(std::string(100000, '[')), NotationError);
    EXPECT_NO_THROW(readNotation(std::string(60, '[') + std::string(60, ']')));
}

TEST(Notation, ReadsTheExampleOfEveryArgument) {
    size_t read = 0;
    for (const Method* method : catalogue().methods())
        for (const Argument& argument : method->arguments()) {
            EXPECT_EQ(again(exampleText(argument)), exampleText(argument))
                << method->name() << ' ' << argument.name;
            ++read;
        }
    EXPECT_GT(read, 300u);
}

}  // namespace
}  // namespace krl
