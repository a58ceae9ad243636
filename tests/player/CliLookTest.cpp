#include <cstdlib>
#include <nlohmann/json.hpp>

#include "tests/player/CliRun.h"

namespace krl::player {
namespace {

class Looks : public CliTest {
protected:
    Looks() { setenv("XDG_CONFIG_HOME", folder.c_str(), 1); }
    ~Looks() override { hideUserFolder(); }

    std::string look(const std::string& name, const std::string& lines) const {
        std::filesystem::create_directories((folder / name).parent_path());
        return text(name, "krlimage look 1\ntitle: T\ndescription: A test.\n" + lines + '\n');
    }
    std::vector<Pixel> after(const std::vector<std::string>& words) const {
        std::vector<std::string> all = {"apply", at("in.pam"), "-o", at("out.pam")};
        all.insert(all.end(), words.begin(), words.end());
        const CliResult done = krlimage(all);
        EXPECT_EQ(done.code, 0) << done.err;
        return readPicture(at("out.pam")).pixels;
    }
};

TEST_F(Looks, AreAppliedBeforeTheCalls) {
    picture("in.pam", 40, 20);
    const std::string file = look("warm.krl", "parameter levels: 30\nbrightness($levels, #RGB)");
    EXPECT_EQ(after({"--look", file}), after({"brightness(30, #RGB)"}));
    EXPECT_EQ(after({"invert(#RGB)", "--look", file, "--set", "LEVELS=60"}),
              after({"brightness(60, #RGB)", "invert(#RGB)"}));
    const std::string second = look("soft.krl", "parameter soft: 10%\nfastGaussianBlur($soft, #RGB)");
    EXPECT_EQ(after({"--look", file, "--look", second, "--set", "soft=3", "--set", "levels=9"}),
              after({"brightness(9, #RGB)", "fastGaussianBlur(3, #RGB)"}));
}

TEST_F(Looks, GoByNameToo) {
    picture("in.pam", 40, 20);
    look("krlimage/looks/mine.krl", "invert(#RGB)");
    EXPECT_EQ(after({"--look", "mine"}), after({"invert(#RGB)"}));
    EXPECT_NE(after({"--look", "noir"}), readPicture(at("in.pam")).pixels);
    const CliResult done = krlimage({"apply", at("in.pam"), "-o", at("out.pam"), "--look", "nior"});
    EXPECT_EQ(done.code, 1);
    EXPECT_TELLS(done.err, "there is no look nior, did you mean noir?; krlimage look list shows all");
}

TEST_F(Looks, ReadPicturesBesideThemAlone) {
    picture("in.pam", 8, 6);
    writePicture(folder / "paper.pam", noise(8, 6, 9));
    const std::string file = look("paper.krl", "composite(image(\"paper.pam\"), #normal)");
    EXPECT_EQ(after({"--look", file}), after({"composite(image(\"" + at("paper.pam") + "\"), #normal)"}));
    for (const char* name : {"../in.pam", "/etc/x.pam", "a/../../in.pam"}) {
        const std::string far = look("far.krl", std::string("composite(image(\"") + name + "\"), #normal)");
        const CliResult done = krlimage({"apply", at("in.pam"), "-o", at("out2.pam"), "--look", far});
        EXPECT_EQ(done.code, 1);
        EXPECT_TELLS(done.err, "is outside the folder of the look");
    }
}

TEST_F(Looks, AreRefusedBeforeAPictureIsRead) {
    const auto errorOf = [&](const std::vector<std::string>& words) {
        std::vector<std::string> all = {"apply", at("none.pam"), "-o", at("out.pam")};
        all.insert(all.end(), words.begin(), words.end());
        const CliResult done = krlimage(all);
        EXPECT_NE(done.code, 0);
        return done.err;
    };
    const std::string bad = look("bad.krl", "glorify(3)"),
                      good = look("good.krl", "parameter a: 5\nbrightness($a)");
    EXPECT_TELLS(errorOf({"--look", bad}), bad + ", line 4: no method is called glorify");
    EXPECT_TELLS(errorOf({"--look", at("missing.krl")}), "cannot read " + at("missing.krl"));
    EXPECT_TELLS(errorOf({"--look", good, "--set", "b=1"}), "--set b=1: no look has a parameter b");
    EXPECT_TELLS(errorOf({"--look", good, "--set", "a"}), "--set a: expected NAME=VALUE");
    EXPECT_TELLS(errorOf({"--look", good, "--set", "a=#x"}),
                 "a: brightness: brightnessInt: expected an integer, got #x");
    EXPECT_TELLS(errorOf({"--set", "a=1", "invert"}), "--set a=1: there is no --look");
}

TEST_F(Looks, SayWhichLineFailedOnAPicture) {
    const std::string file = look("f.krl", "composite(image(1, 1, 32), #normal)");
    const CliResult done = krlimage({"apply", picture("in.pam"), "-o", at("out.pam"), "--look", file});
    EXPECT_EQ(done.code, 1);
    EXPECT_TELLS(done.err, "line 4: composite: Failed Composite function (Image) from look " + file);
    EXPECT_FALSE(std::filesystem::exists(at("out.pam")));
}

TEST_F(Looks, AreListedShownAndChecked) {
    look("krlimage/looks/mine.krl", "parameter a: 5 from 1 to 9 \"levels\"\nbrightness($a)");
    const CliResult listed = krlimage({"look", "list"});
    EXPECT_EQ(listed.code, 0) << listed.err;
    EXPECT_TELLS(listed.out, "\nmine ");
    EXPECT_TELLS(listed.out, "\nnoir ");
    const auto json = nlohmann::json::parse(krlimage({"look", "list", "--json"}).out);
    EXPECT_GE(json.size(), 13u);
    const CliResult shown = krlimage({"look", "show", "mine"});
    EXPECT_TELLS(shown.out, "parameter a: 5 from 1 to 9 \"levels\"");
    EXPECT_EQ(nlohmann::json::parse(krlimage({"look", "show", "mine", "--json"}).out)["calls"][0],
              "brightness($a)");
    EXPECT_EQ(krlimage({"look", "check", "mine", "noir"}).code, 0);
    const CliResult bad = krlimage({"look", "check", "mine", look("bad.krl", "title: X")});
    EXPECT_EQ(bad.code, 1);
    EXPECT_EQ(bad.err, at("bad.krl") + ", line 4: the title is given twice\n");
}

TEST_F(Looks, AreSavedFromCalls) {
    const CliResult saved =
        krlimage({"look", "save", at("new.krl"), "vignette(blur: $soft)", "invert", "--title", "New",
                  "--description", "For a test.", "--parameter", "soft: 8% from 2% to 30% \"softness\""});
    ASSERT_EQ(saved.code, 0) << saved.err;
    EXPECT_EQ(contentOf(at("new.krl")),
              "krlimage look 1\n\ntitle: New\ndescription: For a test.\n"
              "parameter soft: 8% from 2% to 30% \"softness\"\n\nvignette(blur: $soft)\ninvert\n");
    EXPECT_EQ(krlimage({"look", "check", at("new.krl")}).code, 0);
    const CliResult bad = krlimage({"look", "save", at("bad.krl"), "vignette(blur: $soft)"});
    EXPECT_EQ(bad.code, 1);
    EXPECT_TELLS(bad.err, "there is no parameter $soft");
    EXPECT_FALSE(std::filesystem::exists(at("bad.krl")));
}

TEST_F(Looks, ShareWhereAndHowMuchWithCalls) {
    picture("in.pam", 40, 20);
    writePicture(folder / "mask.pam", noise(40, 20, 9));
    const std::string mask = "mask: image(\"" + at("mask.pam") + "\")";
    for (const std::string& call :
         {std::string("invert(#RGB, mix: 0.3)"), "invert(#RGB, " + mask + ")",
          std::string("invert(#RGB, region: rect(25%, 10%, 75%, 90%), feather: 10%)"),
          std::string("fastGaussianBlur(12%, #RGB)")}) {
        const std::string beside =
            call.find("mask") == std::string::npos ? call : "invert(#RGB, mask: image(\"mask.pam\"))";
        EXPECT_EQ(after({call}), after({"--look", look("one.krl", beside)})) << call;
        EXPECT_NE(after({call}), readPicture(at("in.pam")).pixels) << call;
    }
    EXPECT_EQ(after({"fastGaussianBlur(10%, #RGB)"}), after({"fastGaussianBlur(2, #RGB)"}));
    const auto errorOf = [&](const std::string& call) {
        return krlimage({"apply", at("in.pam"), "-o", at("out2.pam"), call}).err;
    };
    EXPECT_TELLS(errorOf("invert(mix: 3)"), "invert: mix: expected a number from 0 to 1, got 3");
    EXPECT_TELLS(errorOf("vignette(theColor: 10%)"), "a percentage is for a length or a point");
    EXPECT_TELLS(errorOf("brightness(40, #RGB, 3, mix: 0.5)"), "takes 2 arguments, 3 were given");
}

}  // namespace
}  // namespace krl::player
