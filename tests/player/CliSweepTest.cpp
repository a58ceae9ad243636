#include <nlohmann/json.hpp>

#include "player/cli/Commands.h"
#include "player/cli/Sweep.h"
#include "player/pictures/Label.h"
#include "player/pictures/PictureMetadata.h"
#include "tests/player/CliRun.h"

namespace krl::player {
namespace {

using SweepTest = CliTest;

std::vector<std::string> callsOf(const std::string& call) {
    std::vector<std::string> calls;
    for (const SweepVariant& variant : readSweep({call}).variants) calls.push_back(variant.calls.front());
    return calls;
}

using Texts = std::vector<std::string>;

TEST_F(SweepTest, ReadsRangesAndAlternatives) {
    EXPECT_EQ(callsOf("vignette(blur: 20..80 by 30, transparency: 8)"),
              (Texts{"vignette(blur: 20, transparency: 8)", "vignette(blur: 50, transparency: 8)",
                     "vignette(blur: 80, transparency: 8)"}));
    EXPECT_EQ(callsOf("brightness(-40..40)"), (Texts{"brightness(-40)", "brightness(-20)", "brightness(0)",
                                                     "brightness(20)", "brightness(40)"}));
    EXPECT_EQ(callsOf("brightness(10..-5 by 10)"), (Texts{"brightness(10)", "brightness(0)"}));
    EXPECT_EQ(callsOf("vignette(blur: 1%..2% by .5%)"),
              (Texts{"vignette(blur: 1.0%)", "vignette(blur: 1.5%)", "vignette(blur: 2.0%)"}));
    EXPECT_EQ(callsOf("vignette(#ellipse | #rectangle, rgb(1, 2, 3), 80)"),
              (Texts{"vignette(#ellipse, rgb(1, 2, 3), 80)", "vignette(#rectangle, rgb(1, 2, 3), 80)"}));
    EXPECT_EQ(callsOf("composite(image(\"a|b, c.png\"), #normal | #screen)").back(),
              "composite(image(\"a|b, c.png\"), #screen)");
}

TEST_F(SweepTest, CombinesWhatVariesWithTheLastArgumentFastest) {
    const Sweep sweep = readSweep({"sepia", "vignette(blur: 1..2 by 1)", "brightness(3..5 by 1)"});
    EXPECT_EQ(sweep.counts, (std::vector<size_t>{2, 3}));
    ASSERT_EQ(sweep.variants.size(), 6u);
    EXPECT_EQ(sweep.variants[1].calls, (Texts{"sepia", "vignette(blur: 1)", "brightness(4)"}));
    EXPECT_EQ(sweep.variants[5].calls, (Texts{"sepia", "vignette(blur: 2)", "brightness(5)"}));
    EXPECT_EQ(sweep.variants[1].label, "blur 1,  brightnessInt 4");
}

TEST_F(SweepTest, RefusesWhatMakesNoSheet) {
    const std::string in = picture("in.pam");
    const auto refuses = [&](const Texts& words, const std::string& complaint) {
        Texts all = {"sweep", in};
        all.insert(all.end(), words.begin(), words.end());
        const CliResult done = krlimage(all);
        EXPECT_NE(done.code, 0);
        EXPECT_TELLS(done.err, complaint);
        EXPECT_EQ(files(), 1u) << complaint;
    };
    refuses({"brightness(40)", "-o", at("sheet.pam")}, "nothing varies: write a range");
    refuses({"brightness(1..40 by 0)", "-o", at("sheet.pam")}, "1..40 by 0: expected a step");
    refuses({"brightness(1..4000 by 1)", "-o", at("sheet.pam")}, "a step that makes 2 to 400 values");
    refuses({"brightness(1..40 by 1)", "vignette(blur: 1..40 by 1)", "-o", at("sheet.pam")},
            "more than 400 variants");
    refuses({"brightnes(1..40 by 10)", "-o", at("sheet.pam")}, "did you mean brightness?");
    refuses({"brightness(#a | 4)", "-o", at("sheet.pam")}, "expected an integer");
    refuses({"brightness(1..4 by 1)", "-o", in}, "would be overwritten");
    refuses({"brightness(1..4 by 1)", "-o", at("sheet.txt")}, "expected a name that ends in");
    refuses({"brightness(1..4 by 1)"}, "--output is required");
}

/// Where the sheet has this colour, first in reading order.
std::pair<int32_t, int32_t> placeOf(const Bitmap& sheet, const Pixel& colour) {
    for (int32_t y = 0; y < sheet.height; ++y)
        for (int32_t x = 0; x < sheet.width; ++x) {
            const Pixel& p = sheet.row(y)[x];
            if (p.red == colour.red && p.green == colour.green && p.blue == colour.blue) return {x, y};
        }
    return {-1, -1};
}

TEST_F(SweepTest, LaysOutVariantsInRowsAndColumns) {
    // Letters are grey, so no colour of theirs is one of these.
    const auto red = [](int level) {
        return Pixel{uint8_t(level), uint8_t(level), uint8_t(100 + level), 255};
    };
    writePicture(at("in.pam"), Bitmap{60, 40, std::vector<Pixel>(2400, red(0)), nullptr});
    const CliResult done =
        krlimage({"sweep", at("in.pam"), "brightness(100..120 by 20)", "brightness(brightnessInt: 1..3 by 1)",
                  "-o", at("sheet.pam"), "-j", "2"});
    ASSERT_EQ(done.code, 0) << done.err;
    const Bitmap sheet = readPicture(at("sheet.pam"));
    std::vector<std::pair<int32_t, int32_t>> places;
    for (const int level : {101, 102, 103, 121, 122, 123}) places.push_back(placeOf(sheet, red(level)));
    for (const auto& [x, y] : places) ASSERT_GE(x, 0);
    EXPECT_EQ(places[0].second, places[2].second);
    EXPECT_EQ(places[0].first, places[3].first);
    EXPECT_EQ(places[1].first - places[0].first, places[2].first - places[1].first);
    EXPECT_GT(places[3].second, places[0].second + 40);
    EXPECT_EQ(placeOf(sheet, red(0)).second, 24) << "the original comes first";
    if (drawLabel("x", {})) {
        bool hasLetters = false;
        for (int32_t y = places[0].second + 40; y < places[3].second; ++y)
            for (int32_t x = 0; x < sheet.width; ++x) hasLetters |= sheet.row(y)[x].red > 200;
        EXPECT_TRUE(hasLetters);
    }
}

#if defined(KRL_WITH_VIPS)
TEST_F(SweepTest, HasTheColourProfileOfItsPicture) {
    Bitmap original = noise(20, 12);
    for (Pixel& p : original.pixels) p.alpha = 255;
    auto metadata = std::make_shared<PictureMetadata>();
    metadata->colourProfile.assign(400, 7);
    metadata->xmp = {'<', 'x', '/', '>'};
    original.metadata = metadata;
    writePicture(at("in.tif"), original);
    const CliResult done = krlimage({"sweep", at("in.tif"), "brightness(1..3 by 1)", "-o", at("sheet.tif")});
    ASSERT_EQ(done.code, 0) << done.err;
    const Bitmap sheet = readPicture(at("sheet.tif"));
    EXPECT_EQ(sheet.metadata->colourProfile, metadata->colourProfile);
    EXPECT_TRUE(sheet.metadata->xmp.empty()) << "which is about the original";
}
#endif

TEST_F(SweepTest, DrawsTransparentPicturesOverSquares) {
    Bitmap clear{32, 16, std::vector<Pixel>(512, Pixel{255, 0, 0, 0}), nullptr};
    const Bitmap drawn = overSquares(clear, 8);
    EXPECT_NE(drawn.row(0)[0].red, drawn.row(0)[8].red);
    EXPECT_EQ(drawn.row(0)[0].red, drawn.row(8)[8].red);
    EXPECT_EQ(drawn.row(0)[0].alpha, 255);
    clear.pixels.assign(512, Pixel{255, 0, 0, 128});
    EXPECT_GT(overSquares(clear, 8).row(0)[0].blue, drawn.row(0)[0].blue);
}

}  // namespace
}  // namespace krl::player
