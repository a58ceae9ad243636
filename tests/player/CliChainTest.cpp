#include <nlohmann/json.hpp>

#include "player/pictures/PictureFiles.h"
#include "tests/player/CliRun.h"

/// Chains whose calls treat every pixel alone: they run together, except for `--timings`.
namespace krl::player {
namespace {

class Chains : public CliTest {
protected:
    Chains() { writePicture(at("other.pam"), noise(700, 400, 9)); }

    struct Outcome {
        CliResult result;
        std::vector<Pixel> pixels;
        nlohmann::json calls;
    };

    /// What a chain makes of a picture of several tiles.
    Outcome run(const std::vector<std::string>& calls, const std::vector<std::string>& options) {
        std::vector<std::string> words = {"apply", picture("in.pam", 700, 400), "-o", at("out.pam"),
                                          "--json"};
        words.insert(words.end(), calls.begin(), calls.end());
        words.insert(words.end(), options.begin(), options.end());
        Outcome made{krlimage(words), {}, {}};
        if (made.result.code == 0) made.pixels = readPicture(at("out.pam")).pixels;
        made.calls = nlohmann::json::parse(made.result.out)["calls"];
        for (auto& call : made.calls) call.erase("milliseconds");
        return made;
    }
};

TEST_F(Chains, GiveTheSameTogetherAsOneByOne) {
    const std::string other = "image(\"" + at("other.pam") + "\")";
    const std::vector<std::vector<std::string>> chains = {
        {"invert", "sepia"},
        {"contrast(1.3)", "composite(" + other + ", #multiply)", "hueShift(20)"},
        {"invert", "sepia", "fastGaussianBlur(3)", "desaturate", "brightness(10, mix: 0.5)", "invert"},
        {"gamma(1.2)", "halfSize", "invert", "sepia(mask: " + other + ", region: rect(5, 5, 50%, 50%))"},
        {"exposure", "invert(mask: " + other + ", region: rect(5, 5, 50%, 350), feather: 20)"}};
    for (const std::vector<std::string>& chain : chains) {
        const Outcome together = run(chain, {}), oneByOne = run(chain, {"--timings"});
        EXPECT_EQ(together.result.code, oneByOne.result.code) << chain[1];
        EXPECT_TRUE(together.pixels == oneByOne.pixels) << chain[1];
        EXPECT_EQ(together.calls, oneByOne.calls) << chain[1];
    }
}

TEST_F(Chains, SayWhichCallFailed) {
    writePicture(at("small.pam"), noise(8, 6, 9));
    const std::vector<std::string> chain = {
        "invert", "sepia", "composite(image(\"" + at("small.pam") + "\"), #normal)", "invert"};
    const Outcome together = run(chain, {});
    EXPECT_EQ(together.result.code, 1);
    EXPECT_EQ(together.calls.size(), 3u);
    EXPECT_EQ(together.calls, run(chain, {"--timings"}).calls);
    EXPECT_TELLS(together.result.err, "foreground is 8 by 6 pixels, the picture 700 by 400");
}

}  // namespace
}  // namespace krl::player
