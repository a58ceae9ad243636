#include <gtest/gtest.h>

#include <cstring>

#include "catalogue/Catalogue.h"
#include "catalogue/DirectCall.h"
#include "catalogue/ExampleCall.h"
#include "core/Faults.h"
#include "support/Picture.h"

/// Methods on an engine that does not require threads, where threads and tasks cannot be made.
namespace krl {
namespace {

constexpr int32_t kWidth = 40, kHeight = 30;

Picture noise(int32_t seed) {
    Picture picture = Picture::blank(kWidth, kHeight);
    const test::Picture random = test::Picture::random(kWidth, kHeight, seed);
    std::memcpy(picture.pixels, random.pixels().data(), random.pixels().size() * sizeof(Pixel));
    return picture;
}

std::vector<Value> argumentsOf(const Method& method) {
    std::vector<Value> values;
    for (const Argument& argument : method.arguments()) {
        Value value = exampleValue(argument, {kWidth, kHeight, {}});
        if (argument.kind == ArgumentKind::SecondImage) value = noise(2);
        if (auto* list = value.as<ListValue>())
            for (Value& item : *list)
                if (item.as<PictureReference>()) item = noise(3);
        values.push_back(std::move(value));
    }
    return values;
}

/// The bytes of a picture.
std::string bytesOf(const Picture& picture) {
    return {reinterpret_cast<const char*>(picture.pixels),
            size_t(picture.info.rowBytes) * size_t(picture.info.height)};
}

/// The bytes of every picture that a call on three bands has to do with, and its error.
std::string outcomeOf(ImageEngine& engine, const Method& method) {
    const Picture picture = noise(1);
    const std::vector<Value> arguments = argumentsOf(method);
    engine.load(picture.pixels, picture.info);
    engine.setThreadCount(3);
    const CallResult result = callMethod(method, engine, arguments);
    engine.unload();
    std::string outcome = result.error + bytesOf(picture);
    for (const Value& argument : arguments)
        if (const auto* second = argument.as<Picture>()) outcome += bytesOf(*second);
    for (const auto& [key, value] : result.entries)
        if (const auto* made = value.as<Picture>()) outcome += bytesOf(*made);
    return outcome;
}

TEST(MissingThreads, ChangeNothingWhereTheyAreNotRequired) {
    ImageEngine engine;
    engine.allocateTables();
    engine.buildTables();
    int64_t refused = 0;
    for (const Method* method : catalogue().methods()) {
        if (method->managesTheEngine()) continue;
        const std::string expected = outcomeOf(engine, *method);
        for (int32_t Faults::*supply : {&Faults::threads, &Faults::tasks})
            for (int32_t granted = 0; granted < 8; ++granted) {
                faults().*supply = granted;
                const std::string outcome = outcomeOf(engine, *method);
                refused += faults().*supply < 0;
                faults() = Faults{};
                EXPECT_TRUE(outcome == expected) << method->name() << " after " << granted;
            }
    }
    EXPECT_GT(refused, 500);
}

}  // namespace
}  // namespace krl
