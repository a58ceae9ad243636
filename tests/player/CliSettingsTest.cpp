#include "tests/player/CliRun.h"

namespace krl::player {
namespace {

class Settings : public CliTest {
protected:
    Settings() {
        setenv("XDG_CONFIG_HOME", folder.c_str(), 1);
        picture("in.pam");
    }
    ~Settings() override {
        hideUserFolder();
        unsetenv("KRLIMAGE_FORMAT");
        unsetenv("KRLIMAGE_JOBS");
    }

    void write(const std::string& lines) const {
        std::filesystem::create_directories(folder / "krlimage");
        text("krlimage/config", lines);
    }

    /// Applies an effect with no format on the command line unless `words` have one.
    CliResult apply(std::vector<std::string> words = {}) const {
        words.insert(words.begin(), {"apply", at("in.pam"), "-o", at("out"), "invert(#RGB)"});
        return krlimage(words);
    }

    bool made(const std::string& name) const { return std::filesystem::exists(at(name)); }
};

TEST_F(Settings, OfTheFileStandInForOptions) {
    write("# my habits\nformat = pam\n");
    ASSERT_EQ(apply().code, 0);
    EXPECT_EQ(contentOf(at("out")).substr(0, 2), "P7");
}

TEST_F(Settings, OfTheCommandLineWin) {
    write("format = nonsense\n");
    setenv("KRLIMAGE_FORMAT", "nonsense", 1);
    const CliResult result = apply({"--format", "pam"});
    EXPECT_EQ(result.code, 0) << result.err;
}

TEST_F(Settings, OfTheEnvironmentWinOverTheFile) {
    if (!isPictureName("x.png")) GTEST_SKIP() << "needs a second format";
    write("format = png\n");
    setenv("KRLIMAGE_FORMAT", "pam", 1);
    ASSERT_EQ(apply().code, 0);
    EXPECT_EQ(contentOf(at("out")).substr(0, 2), "P7");
}

TEST_F(Settings, OfASectionAreForItsCommandAlone) {
    write("jobs = 2\n[gallery]\njobs = 1000\n");
    EXPECT_EQ(apply({"--format", "pam"}).code, 0);
    const CliResult gallery = krlimage({"gallery", at("in.pam"), "-o", at("g")});
    EXPECT_EQ(gallery.code, 2);
    EXPECT_NE(gallery.err.find("krlimage/config: --jobs: "), std::string::npos) << gallery.err;
    EXPECT_FALSE(made("g"));
}

TEST_F(Settings, OfEmptyVariablesAreNone) {
    write("format = pam\n");
    setenv("KRLIMAGE_FORMAT", "", 1);
    ASSERT_EQ(apply().code, 0);
    EXPECT_EQ(contentOf(at("out")).substr(0, 2), "P7");
}

TEST_F(Settings, HaveOneValue) {
    write("format = [\"png\", \"pam\"]\n");
    const CliResult result = apply();
    EXPECT_EQ(result.code, 2);
    EXPECT_TELLS(result.err, "config: format takes one value");
}

TEST_F(Settings, ThatAreWrongNameTheirSource) {
    setenv("KRLIMAGE_JOBS", "many", 1);
    const CliResult result = apply();
    EXPECT_EQ(result.code, 2);
    EXPECT_NE(result.err.find("KRLIMAGE_JOBS: "), std::string::npos) << result.err;
}

TEST_F(Settings, AreNotBlamedForTheCommandLine) {
    setenv("KRLIMAGE_JOBS", "2", 1);
    for (const char* word : {"-jmany", "--jobs=many"}) {
        const CliResult result = apply({word});
        EXPECT_EQ(result.code, 2);
        EXPECT_EQ(result.err.find("KRLIMAGE_JOBS"), std::string::npos) << result.err;
    }
}

TEST_F(Settings, ThatDoNotExistAreRefused) {
    write("qualty = 85\n");
    EXPECT_NE(apply().err.find("config: there is no setting qualty, did you mean quality?"),
              std::string::npos)
        << apply().err;
    write("[aply]\nquality = 85\n");
    EXPECT_NE(apply().err.find("config: there is no command aply"), std::string::npos) << apply().err;
    write("in-place = true\n");
    EXPECT_NE(apply().err.find("config: there is no setting in-place"), std::string::npos) << apply().err;
    EXPECT_EQ(apply().code, 2);
}

TEST_F(Settings, AreInTheManual) {
    const std::string page = krlimage({"man"}).out;
    EXPECT_NE(page.find("KRLIMAGE_QUALITY\\fR\n\\fB\\-\\-quality\\fR of apply.\n"), std::string::npos);
    EXPECT_EQ(page.find("KRLIMAGE_OUTPUT"), std::string::npos);
}

}  // namespace
}  // namespace krl::player
