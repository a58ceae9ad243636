#include "tests/player/CliRun.h"

namespace krl::player {
namespace {

class Notes : public CliTest {
protected:
    CliResult apply(std::vector<std::string> words) const {
        words.insert(words.begin(), {"apply", picture("in.pam"), "-o", at("out.pam")});
        return krlimage(words);
    }
    bool isWritten() const { return std::filesystem::exists(at("out.pam")); }
};

TEST_F(Notes, TellOfNumbersOutsideOfTheirUsualRange) {
    const CliResult result = apply({"vignette(blur: 900, scaleX: 3.5)"});
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.err,
              "krlimage: note: vignette: scaleX is 3.5; 0.0 to 2.0 is usual\n"
              "krlimage: note: vignette: blur is 900; 0 to 200 is usual\n");
    EXPECT_TRUE(isWritten());
    EXPECT_EQ(apply({"vignette(blur: 200, offsetX: -100)"}).err, "");
}

TEST_F(Notes, TellOfMethodsThatDoNothing) {
    EXPECT_EQ(apply({"stars"}).err,
              "krlimage: note: stars does nothing; it is there for scripts that call it\n");
}

TEST_F(Notes, AreErrorsOfStrictRuns) {
    const CliResult result = apply({"--strict", "vignette(blur: 900)"});
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.err, "krlimage: vignette: blur is 900; 0 to 200 is usual (--strict)\n");
    EXPECT_FALSE(isWritten());
    EXPECT_EQ(apply({"--strict", "vignette(blur: 20)"}).code, 0);
}

TEST_F(Notes, LeaveOutPercentagesOfThePicture) { EXPECT_EQ(apply({"vignette(blur: 80%)"}).err, ""); }

TEST_F(Notes, SayHowArgumentsAreWritten) {
    const CliResult result = apply({"brightness", "25"});
    EXPECT_EQ(result.code, 1);
    EXPECT_NE(result.err.find("quoted for the shell: 'brightness(25)'"), std::string::npos) << result.err;
}

}  // namespace
}  // namespace krl::player
