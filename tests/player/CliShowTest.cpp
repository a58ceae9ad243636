#include <cstdlib>

#include "player/cli/TerminalPicture.h"
#include "tests/player/CliRun.h"

namespace krl::player {
namespace {

class Show : public CliTest {
protected:
    CliResult show(std::vector<std::string> words, const TerminalSize& size) const {
        std::ostringstream out, err;
        words.insert(words.begin(), "show");
        const int code = runCommandLine(words, Terminal{out, err, false, size});
        return {code, out.str(), err.str()};
    }

    std::string halves() const {
        Bitmap picture{2, 2, {}, nullptr};
        picture.pixels = {{0, 0, 255, 255}, {0, 0, 255, 255}, {255, 0, 0, 255}, {0, 255, 0, 255}};
        writePicture(at("halves.pam"), picture);
        return at("halves.pam");
    }
};

TEST_F(Show, PrintsTwoPixelsInEachCell) {
    const std::string red = "\x1b[38;2;255;0;0m", blue = "\x1b[48;2;0;0;255m", green = "\x1b[48;2;0;255;0m";
    const CliResult done = show({halves(), "--as", "blocks"}, {80, 24});
    EXPECT_EQ(done.code, 0) << done.err;
    EXPECT_EQ(done.out, red + blue + "▀" + green + "▀\x1b[0m\n");
}

TEST_F(Show, AppliesCallsFirst) {
    const CliResult done = show({halves(), "invert(#RGB)", "--as", "blocks"}, {80, 24});
    EXPECT_EQ(done.out.rfind("\x1b[38;2;0;255;255m", 0), 0u) << done.out;
}

TEST_F(Show, FitsTheTerminal) {
    const auto lines = [&](const TerminalSize& size, const std::vector<std::string>& more = {}) {
        std::vector<std::string> words = {picture("in.pam", 400, 200), "--as", "blocks"};
        words.insert(words.end(), more.begin(), more.end());
        const std::string out = show(words, size).out;
        return std::pair(countOf(out, "▀") / countOf(out, "\n"), countOf(out, "\n"));
    };
    EXPECT_EQ(lines({80, 40}), std::pair(size_t{80}, size_t{20}));
    EXPECT_EQ(lines({80, 12}), std::pair(size_t{40}, size_t{10})) << "room for a prompt";
    EXPECT_EQ(lines({80, 12}, {"--columns", "60"}), std::pair(size_t{60}, size_t{15}));
}

TEST_F(Show, RefusesToPrintWhereNobodyLooks) {
    const CliResult done = show({halves()}, {});
    EXPECT_EQ(done.code, 2);
    EXPECT_EQ(done.out, "");
    EXPECT_TELLS(done.err, "standard output is not a terminal");
}

TEST_F(Show, PrintsShadesWithoutColours) {
    Bitmap steps{5, 2, {}, nullptr};
    for (int row = 0; row < 2; ++row)
        for (const uint8_t grey : std::initializer_list<uint8_t>{0, 64, 128, 192, 255})
            steps.pixels.push_back({grey, grey, grey, 255});
    writePicture(at("steps.pam"), steps);
    EXPECT_EQ(show({at("steps.pam"), "--as", "shades"}, {}).out, " ░▒▓█\n");
    setenv("NO_COLOR", "1", 1);
    EXPECT_EQ(show({at("steps.pam")}, {80, 24}).out, " ░▒▓█\n");
    unsetenv("NO_COLOR");
    EXPECT_NE(show({at("steps.pam")}, {80, 24}).out, " ░▒▓█\n");
}

TEST_F(Show, PrintsTheProtocolsOfTerminals) {
    const std::string in = picture("in.pam", 40, 40);
    const CliResult kitty = show({in, "--as", "kitty"}, {80, 24}),
                    sixel = show({in, "--as", "sixel"}, {80, 24});
    if (!hasPixelProtocols()) {
        EXPECT_TELLS(kitty.err, "this build has no library for kitty: use --as blocks");
        return;
    }
    EXPECT_EQ(kitty.out.rfind("\x1b_G", 0), 0u);
    EXPECT_EQ(sixel.out.rfind("\x1bP", 0), 0u);
    setenv("TERM", "xterm-kitty", 1);
    EXPECT_EQ(show({in}, {80, 24}).out, kitty.out);
    setenv("TERM", "linux", 1);
    EXPECT_EQ(countOf(show({in}, {80, 24}).out, "▀"), 40u * 20u);
}

}  // namespace
}  // namespace krl::player
