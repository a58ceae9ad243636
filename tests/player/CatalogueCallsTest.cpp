#include <gtest/gtest.h>

#include "catalogue/Catalogue.h"
#include "catalogue/ExampleCall.h"
#include "player/cli/CatalogueCalls.h"
#include "support/ScratchFolder.h"

namespace krl::player {
namespace {

constexpr int32_t kWidth = 23, kHeight = 17;

/// A picture whose neighbouring bytes all differ, with some transparent pixels.
Bitmap colourful(uint32_t seed) {
    Bitmap picture{kWidth, kHeight, {}, nullptr};
    for (int32_t i = 0; i < kWidth * kHeight; ++i) {
        seed = seed * 1664525u + 1013904223u;
        picture.pixels.push_back({uint8_t(seed >> 8), uint8_t(seed >> 16), uint8_t(seed >> 24),
                                  uint8_t(i % 7 == 0 ? seed >> 4 : 255)});
    }
    return picture;
}

/// Runs every method's example both directly through the catalogue and through the plug-in.
class EitherWay : public testing::TestWithParam<const Method*> {
protected:
    EitherWay() {
        writePicture(folder_.path() / "second.pam", colourful(99));
        SessionOptions options;
        options.allowedFolders = {folder_.path()};
        options.threads = ThreadChoice::One;
        session_ = std::make_unique<Session>(options);
    }

    std::string callText() const {
        return exampleCall(*GetParam(), {kWidth, kHeight, [&](const char*) {
                                             return "image(\"" + (folder_.path() / "second.pam").string() +
                                                    "\")";
                                         }});
    }

    std::vector<krl::Value> arguments() {
        std::vector<krl::Value> values;
        for (const Argument& argument : GetParam()->arguments()) {
            const ExampleSetting setting{
                kWidth, kHeight,
                [&](const char*) { return "image(\"" + (folder_.path() / "second.pam").string() + "\")"; }};
            values.push_back(session_->evaluate(exampleText(argument, setting)));
        }
        return values;
    }

    test::ScratchFolder folder_;
    std::unique_ptr<Session> session_;
};

TEST_P(EitherWay, GivesTheSameBytesAndTheSameError) {
    Bitmap byDoor = colourful(1), direct = colourful(1);
    const CallOutcome expected = session_->apply(byDoor, callText());
    CatalogueCalls calls(ThreadChoice::One);
    const CallOutcome outcome = calls.apply(direct, ReadyCall{*GetParam(), {}, arguments()});
    EXPECT_EQ(outcome.error, expected.error);
    EXPECT_EQ(direct.width, byDoor.width);
    EXPECT_EQ(direct.height, byDoor.height);
    EXPECT_TRUE(direct.pixels == byDoor.pixels);
}

TEST_P(EitherWay, DoesNotDependOnTheNumberOfProcessors) {
    Bitmap one = colourful(1), many = colourful(1);
    CatalogueCalls(ThreadChoice::One).apply(one, ReadyCall{*GetParam(), {}, arguments()});
    CatalogueCalls(ThreadChoice::Many).apply(many, ReadyCall{*GetParam(), {}, arguments()});
    EXPECT_TRUE(one.pixels == many.pixels);
}

std::vector<const Method*> methodsOnPictures() {
    std::vector<const Method*> all = catalogue().methods();
    std::erase_if(all, [](const Method* method) { return method->managesTheEngine(); });
    return all;
}

INSTANTIATE_TEST_SUITE_P(Catalogue, EitherWay, testing::ValuesIn(methodsOnPictures()),
                         [](const auto& method) { return std::string(method.param->name()); });

}  // namespace
}  // namespace krl::player
