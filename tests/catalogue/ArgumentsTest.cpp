#include <gtest/gtest.h>

#include "catalogue/Arguments.h"
#include "catalogue/Catalogue.h"
#include "catalogue/Notation.h"

namespace krl {
namespace {

const Method& methodNamed(const char* name) { return *catalogue().find(name); }

/// The arranged values in script notation; `given` is a list, or a property list of named ones.
std::string arranged(const char* method, const char* given, const ExampleSetting& setting = {}) {
    const Value list = readNotation(given);
    std::vector<GivenArgument> arguments;
    if (const auto* values = list.as<ListValue>())
        for (const Value& value : *values) arguments.push_back({"", &value});
    else
        for (const auto& [name, value] : *list.as<PropertyListValue>())
            arguments.push_back({name.as<Symbol>()->name, &value});
    std::vector<Value> values = arrangeArguments(methodNamed(method), arguments, setting);
    checkArguments(methodNamed(method), values);
    return writeNotation(ListValue(values.begin(), values.end()));
}

/// What is wrong with a call.
std::string complaint(const char* method, const char* given, ArgumentFault fault) {
    try {
        return "nothing is wrong with " + arranged(method, given);
    } catch (const ArgumentError& error) {
        EXPECT_EQ(error.fault(), fault) << method << given;
        return error.what();
    }
}

TEST(Arguments, TakeTheirPlacesInOrderOrByName) {
    EXPECT_EQ(arranged("brightness", "[7, #Alpha]"), "[7, #Alpha]");
    EXPECT_EQ(arranged("brightness", "[#colouroralpha: #Alpha, #brightnessInt: 7]"), "[7, #Alpha]");
}

TEST(Arguments, TakeTheExamplesValueWhenLeftOut) {
    EXPECT_EQ(arranged("brightness", "[]"), "[40, #RGB]");
    EXPECT_EQ(arranged("brightness", "[#colourOrAlpha: #Alpha]"), "[40, #Alpha]");
    const Value alpha = Symbol{"Alpha"};
    const GivenArgument skipped[] = {{"", nullptr}, {"", &alpha}};
    EXPECT_EQ(writeNotation(arrangeArguments(methodNamed("brightness"), skipped)[1]), "#Alpha");
}

TEST(Arguments, PlaceExamplePointsInThePicture) {
    const std::string values = arranged("circularWaves", "[]", {100, 50, {}});
    EXPECT_NE(values.find("point(50, 25)"), std::string::npos) << values;
}

TEST(Arguments, WithoutAPlaceAreFaults) {
    EXPECT_EQ(complaint("brightness", "[#size: 4]", ArgumentFault::NoSuchArgument),
              "brightness has no argument size");
    EXPECT_EQ(complaint("brightness", "[#colourOrAlfa: #RGB]", ArgumentFault::NoSuchArgument),
              "brightness has no argument colourOrAlfa, did you mean colourOrAlpha?");
    EXPECT_EQ(complaint("brightness", "[1, #RGB, 3]", ArgumentFault::TooMany),
              "brightness(brightnessInt, colourOrAlpha) takes 2 arguments, 3 were given");
    EXPECT_EQ(complaint("invert", "[#RGB, 2, 3]", ArgumentFault::TooMany),
              "invert(colourOrAlpha) takes 1 argument, 3 were given");
    EXPECT_EQ(complaint("brightness", "[#brightnessInt: 1, #brightnessInt: 2]", ArgumentFault::GivenTwice),
              "brightness: brightnessInt is given twice");
}

TEST(Arguments, ThatArePicturesHaveNoStandIn) {
    EXPECT_EQ(complaint("inputMask", "[#invert: #true]", ArgumentFault::Missing),
              "inputMask needs dotImage, such as dotImage: image(\"logo.png\")");
    EXPECT_EQ(complaint("broadcastCombine", "[]", ArgumentFault::Missing).substr(0, 43),
              "broadcastCombine needs imageList, such as i");
}

TEST(Arguments, OfAnotherKindAreFaults) {
    EXPECT_EQ(complaint("brightness", "[1.5]", ArgumentFault::WrongKind),
              "brightness: brightnessInt: expected an integer, got 1.5");
    EXPECT_EQ(complaint("contrast", "[#a]", ArgumentFault::WrongKind).substr(0, 9), "contrast:");
    EXPECT_EQ(complaint("brightness", "[1, 2]", ArgumentFault::WrongKind),
              "brightness: colourOrAlpha: expected #RGB or #Alpha, got 2");
    EXPECT_EQ(complaint("inputMask", "[image(\"logo.png\")]", ArgumentFault::WrongKind),
              "inputMask: dotImage: expected a picture, got image(\"logo.png\")");
    EXPECT_EQ(complaint("broadcastCombine", "[[image(2, 2, 32)]]", ArgumentFault::WrongKind),
              "broadcastCombine: imageList: expected pictures in memory, got [image(2, 2, 32)]");
}

TEST(Arguments, WithASymbolThatIsNoChoiceAreFaults) {
    EXPECT_EQ(complaint("brightness", "[1, #Grey]", ArgumentFault::NoSuchChoice),
              "brightness: colourOrAlpha: expected #RGB or #Alpha, got #Grey");
    EXPECT_EQ(arranged("brightness", "[1, #rgb]"), "[1, #rgb]");
}

/// A method refuses while it reads its arguments just what the check refuses.
TEST(Arguments, TakeEveryExampleAndRefuseAStringForEveryKindThatIsRead) {
    for (const Method* method : catalogue().methods()) {
        for (size_t i = 0; i < method->arguments().size(); ++i) {
            std::vector<Value> values;
            for (const Argument& argument : method->arguments())
                values.push_back(argument.kind == ArgumentKind::SecondImage ? Picture::blank(1, 1)
                                 : argument.kind == ArgumentKind::Value     ? Value()
                                                                            : exampleValue(argument));
            EXPECT_NO_THROW(checkArguments(*method, values)) << method->name();
            if (method->arguments()[i].kind == ArgumentKind::Value) continue;
            values[i] = std::string("words");
            EXPECT_THROW(checkArguments(*method, values), ArgumentError) << method->name() << ' ' << i;
        }
    }
}

}  // namespace
}  // namespace krl
