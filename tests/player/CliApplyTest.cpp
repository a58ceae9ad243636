#include <nlohmann/json.hpp>

#if !defined(_WIN32)
#include <fcntl.h>
#include <unistd.h>
#endif

#include "player/cli/ApplyOptions.h"
#include "player/cli/FolderWatch.h"
#include "player/pictures/FileAccess.h"
#include "player/pictures/PictureFiles.h"
#include "tests/player/CliRun.h"

namespace krl::player {
namespace {

using Apply = CliTest;

TEST_F(Apply, RewritesAPictureAndKeepsItsAlpha) {
    const std::string in = picture("in.pam");
    const CliResult done = krlimage({"apply", in, "-o", at("out.pam"), "krlImageBrightness(255, #RGB)"});
    EXPECT_EQ(done.code, 0) << done.err;
    EXPECT_EQ(done.out + done.err, "");
    const Bitmap before = readPicture(in), after = readPicture(at("out.pam"));
    for (size_t i = 0; i < after.pixels.size(); ++i)
        ASSERT_EQ(after.pixels[i], (Pixel{255, 255, 255, before.pixels[i].alpha})) << i;
}

TEST_F(Apply, ChainsCallsInTheirOrder) {
    const std::string in = picture("in.pam");
    krlimage({"apply", in, "-o", at("a.pam"), "invert(#RGB)", "brightness(60, #RGB)"});
    krlimage({"apply", in, "-o", at("b.pam"), "brightness(60, #RGB)", "invert(#RGB)"});
    krlimage({"apply", in, "-o", at("c1.pam"), "invert(#RGB)"});
    krlimage({"apply", at("c1.pam"), "-o", at("c.pam"), "brightness(60, #RGB)"});
    EXPECT_EQ(readPicture(at("a.pam")).pixels, readPicture(at("c.pam")).pixels);
    EXPECT_NE(readPicture(at("a.pam")).pixels, readPicture(at("b.pam")).pixels);
}

TEST_F(Apply, AcceptsNamedArgumentsAndFillsInOmittedOnes) {
    const std::string in = picture("in.pam");
    const std::vector<std::string> ways = {"brightness(40, #RGB)",
                                           "brightness(40)",
                                           "Brightness",
                                           "brightness(colourOrAlpha: #RGB, brightnessInt: 40)",
                                           "brightness(COLOURORALPHA: #rgb)",
                                           "krlimagebrightness(40, #rgb)"};
    for (size_t i = 0; i < ways.size(); ++i) {
        const std::string out = at("out" + std::to_string(i) + ".pam");
        const CliResult done = krlimage({"apply", in, "-o", out, ways[i]});
        ASSERT_EQ(done.code, 0) << ways[i] << '\n' << done.err;
        EXPECT_EQ(readPicture(out).pixels, readPicture(at("out0.pam")).pixels) << ways[i];
    }
}

TEST_F(Apply, PassesANewPictureOnToTheNextCall) {
    const CliResult done =
        krlimage({"apply", picture("in.pam", 8, 6), "-o", at("out.pam"), "halfSize()", "invert(#RGB)"});
    ASSERT_EQ(done.code, 0) << done.err;
    EXPECT_EQ(done.out, "");
    EXPECT_EQ(readPicture(at("out.pam")).width, 4);
    EXPECT_EQ(readPicture(at("out.pam")).height, 3);
}

TEST_F(Apply, LetsACallReadAnyPicture) {
    const std::string in = picture("in.pam"), over = at("over.pam");
    writePicture(over, noise(8, 6, 9));
    const CliResult done =
        krlimage({"apply", in, "-o", at("out.pam"), "composite(image(\"" + over + "\"), #normal)"});
    EXPECT_EQ(done.code, 0) << done.err;
    EXPECT_NE(readPicture(at("out.pam")).pixels, readPicture(in).pixels);
}

TEST_F(Apply, ShowsTheResultOfAFailedCall) {
    writePicture(at("small.pam"), noise(2, 2, 9));
    const std::string call =
        "krlImageComposite(image(\"" + at("small.pam") + "\"), #normal, #background_alpha_no)";
    const CliResult done = krlimage({"apply", picture("in.pam"), "-o", at("out.pam"), call});
    EXPECT_EQ(done.code, 1);
    EXPECT_EQ(done.out, "[#error: \"Failed Composite function (Image)\"]\n");
    EXPECT_TELLS(done.err, "Failed Composite function (Image) from " + call +
                               "; foreground is 2 by 2 pixels, the picture 8 by 6; fit: #cover, or place: "
                               "point(0, 0), puts it in\n");
    EXPECT_FALSE(std::filesystem::exists(at("out.pam")));
}

TEST_F(Apply, ReportsAWrongArgumentBeforeItReadsAPicture) {
    const auto errorOf = [&](const std::string& call) {
        const CliResult done = krlimage({"apply", at("none.pam"), "-o", at("out.pam"), call});
        EXPECT_EQ(done.code, 1) << call;
        return done.err;
    };
    EXPECT_EQ(errorOf("krlImageBrightness(\"x\", #RGB)"),
              "krlimage: brightness: brightnessInt: expected an integer, got \"x\"\n");
    EXPECT_TELLS(errorOf("brightness(40, #Alhpa)"),
                 "colourOrAlpha: expected #RGB or #Alpha, got #Alhpa, did you mean #Alpha?");
    EXPECT_TELLS(errorOf("brightness(40, 5)"), "colourOrAlpha: expected #RGB or #Alpha, got 5");
    EXPECT_TELLS(errorOf("multiColourise([0: 5], 1.0)"),
                 "colourValues: expected a property list of colours keyed by number");
    EXPECT_TELLS(errorOf("composite(3)"), "foreground: expected a picture, got 3");
}

TEST_F(Apply, EvaluatesExpressionsOnce) {
    const std::string in = picture("in.pam");
    EXPECT_EQ(krlimage({"apply", in, "-o", at("a.pam"), "brightness(max(10, 2) * 4, #RGB)"}).code, 0);
    EXPECT_EQ(krlimage({"apply", in, "-o", at("b.pam"), "brightness(40, #RGB)"}).code, 0);
    EXPECT_EQ(readPicture(at("a.pam")).pixels, readPicture(at("b.pam")).pixels);
}

TEST_F(Apply, RejectsInvalidCallsBeforeReadingAnything) {
    const auto errorOf = [&](const std::string& call) {
        const CliResult done = krlimage({"apply", at("none.pam"), "-o", at("out.pam"), call});
        EXPECT_EQ(done.code, 1) << call;
        return done.err;
    };
    EXPECT_TELLS(errorOf("krlImageBrigtness(40)"),
                 "there is no method krlImageBrigtness, did you mean brightness?");
    EXPECT_TELLS(errorOf("brightness(amount: 3)"), "brightness has no argument amount");
    EXPECT_TELLS(errorOf("brightness(brightnesInt: 3)"), "did you mean brightnessInt?");
    EXPECT_TELLS(errorOf("brightness(40, brightnessInt: 3)"), "brightness: brightnessInt is given twice");
    EXPECT_TELLS(errorOf("brightness(40, #RGB, 5)"), "takes 2 arguments, 3 were given");
    EXPECT_TELLS(errorOf("quit()"), "quit cannot be used here: apply manages the engine and the picture");
    EXPECT_TELLS(errorOf("reinterlace()"), "reinterlace needs imageOne");
    EXPECT_TELLS(errorOf("brightness(40"), "brightness(40");
}

/// Calls longer than a file name, and longer than a path.
TEST_F(Apply, RunsCallsOfAnyLength) {
    const std::string in = picture("in.pam");
    const auto facts = nlohmann::json::parse(krlimage({"help", "lensFlare", "--json"}).out);
    const std::string flare = facts["example"];
    ASSERT_GT(flare.size(), 255u);
    for (const std::string& call : {flare, "brightness(40" + std::string(5000, ' ') + ")"}) {
        const CliResult done = krlimage({"apply", in, "-o", at("out.pam"), call});
        EXPECT_EQ(done.code, 0) << done.err;
        EXPECT_TRUE(std::filesystem::exists(at("out.pam")));
    }
    EXPECT_NE(readPicture(at("out.pam")).pixels, readPicture(in).pixels);
}

TEST_F(Apply, ReportsATooLongNameInOneLine) {
    const std::string in = picture("in.pam"), name(300, 'n');
    for (const std::vector<std::string>& words :
         {std::vector<std::string>{"apply", name + ".pam", "-o", at("out.pam"), "invert(#RGB)"},
          {"apply", in, "-o", at(name + ".pam"), "invert(#RGB)"},
          {"apply", in, in, "-o", at(name), "invert(#RGB)"}}) {
        const CliResult done = krlimage(words);
        EXPECT_EQ(done.code, 1);
        EXPECT_TELLS(done.err, "File name too long\n");
        EXPECT_EQ(countOf(done.err, "\n"), 1u) << done.err;
        EXPECT_EQ(done.err.find("filesystem error"), std::string::npos) << done.err;
    }
    EXPECT_TELLS(krlimage({"apply", name, "-o", at("out.pam")}).err, "there is no picture, folder or method");
}

TEST_F(Apply, TreatsAMethodWithParenthesesAsACallWhateverFilesExist) {
    const std::string in = picture("in.pam");
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder);
    text("invert(#RGB)", "no picture");
    const CliResult done = krlimage({"apply", in, "-o", at("out.pam"), "invert(#RGB)"});
    std::filesystem::current_path(before);
    EXPECT_EQ(done.code, 0) << done.err;
}

TEST_F(Apply, ProcessesAFolderIntoAnother) {
    std::filesystem::create_directories(folder / "in");
    for (const char* name : {"in/a.pam", "in/b.pam", "in/c.pam"}) picture(name);
    text("in/notes.txt", "no picture");
    const CliResult done = krlimage({"apply", at("in"), "-o", at("out"), "invert(#RGB)"});
    EXPECT_EQ(done.code, 0) << done.err;
    EXPECT_EQ(done.err, "3 of 3 pictures done\n");
    for (const char* name : {"out/a.pam", "out/b.pam", "out/c.pam"})
        EXPECT_TRUE(std::filesystem::exists(at(name)));
    EXPECT_EQ(files(), 7u);
}

TEST_F(Apply, ContinuesAfterABrokenPictureAndListsItAtTheEnd) {
    std::vector<std::string> words = {"apply"};
    for (int i = 0; i < 200; ++i) words.push_back(picture("p" + std::to_string(i) + ".pam", 4, 3));
    text("p77.pam", "P7\nWIDTH 4\n");
    words.insert(words.end(), {"-o", at("out"), "--jobs", "3", "invert(#RGB)"});
    const CliResult done = krlimage(words);
    EXPECT_EQ(done.code, 1);
    EXPECT_EQ(countOf(done.err, "\n"), 2u) << done.err;
    EXPECT_TELLS(done.err, "p77.pam");
    EXPECT_TELLS(done.err, "199 of 200 pictures done, 1 failed");
    EXPECT_EQ(files(), 200u + 199u);
}

TEST_F(Apply, ListsFailuresForAnotherRun) {
    const std::string whole = picture("whole.pam"), broken = text("broken.pam", "P7\nWIDTH 4\n"),
                      list = at("failed.txt"), out = at("out");
    const std::vector<std::string> words = {"apply", whole,        broken, "-o",
                                            out,     "--failures", list,   "invert(#RGB)"};
    EXPECT_EQ(krlimage(words).code, 1);
    EXPECT_EQ(contentOf(list), broken + '\n');
    writePicture(broken, noise(4, 3));
    const CliResult again = krlimage({"apply", "--from", list, "-o", out, "invert(#RGB)"});
    EXPECT_EQ(again.code, 0) << again.err;
    EXPECT_TRUE(std::filesystem::exists(at("out/broken.pam")));
    EXPECT_EQ(krlimage(words).code, 0);
    EXPECT_EQ(contentOf(list), "") << "of the last run";
    const CliResult same = krlimage({"apply", "--from", list, "-o", out, "--failures", list, "invert(#RGB)"});
    EXPECT_EQ(same.code, 2);
    EXPECT_TELLS(same.err, "is the list of --from: name another file");
    EXPECT_TELLS(krlimage({"apply", whole, "-o", out, "--failures", at("no/list"), "sepia"}).err,
                 "cannot write " + at("no/list"));
    EXPECT_EQ(
        krlimage({"apply", broken, "-o", "/dev/null", "--format", "pam", "--failures", "/dev/full", "sepia"})
            .code,
        0);
    text("broken.pam", "P7\n");
    EXPECT_TELLS(krlimage({"apply", broken, "-o", out, "--failures", "/dev/full", "sepia"}).err,
                 "cannot write all of /dev/full");
}

TEST_F(Apply, TakesNoTwoWordsOnWhatToOverwrite) {
    const std::string in = picture("in.pam"), out = picture("out.pam");
    EXPECT_EQ(krlimage({"apply", in, "-o", out, "--overwrite", "invert(#RGB)"}).code, 0);
    EXPECT_NE(contentOf(in), contentOf(out));
    EXPECT_EQ(krlimage({"apply", in, "-o", out, "--overwrite", "--newer", "invert(#RGB)"}).code, 2);
}

TEST_F(Apply, GivesTheSameBytesForAnyNumberOfJobs) {
    std::filesystem::create_directories(folder / "in");
    for (int i = 0; i < 9; ++i)
        writePicture(folder / "in" / (std::to_string(i) + ".pam"), noise(20 + i, 11, uint32_t(i)));
    for (const char* jobs : {"1", "2", "5"})
        ASSERT_EQ(krlimage({"apply", at("in"), "-o", at(jobs), "-j", jobs, "contrast(1.5, #RGB)"}).code, 0);
    for (int i = 0; i < 9; ++i) {
        const std::string name = std::to_string(i) + ".pam";
        EXPECT_EQ(contentOf(folder / "1" / name), contentOf(folder / "2" / name));
        EXPECT_EQ(contentOf(folder / "1" / name), contentOf(folder / "5" / name));
    }
}

TEST_F(Apply, RejectsTwoPicturesForOneOutput) {
    std::filesystem::create_directories(folder / "x");
    const CliResult done =
        krlimage({"apply", picture("a.pam"), picture("x/a.pam"), "-o", at("out"), "invert(#RGB)"});
    EXPECT_EQ(done.code, 2);
    EXPECT_TELLS(done.err, "would both be written to");
}

TEST_F(Apply, LeavesAnExistingPictureIntactWhenACallFails) {
    const std::string in = picture("in.pam"), out = picture("out.pam", 3, 3);
    const std::string before = contentOf(out);
    EXPECT_EQ(krlimage({"apply", in, "-o", out, "brightness(\"x\")"}).code, 1);
    EXPECT_EQ(contentOf(out), before);
    EXPECT_EQ(krlimage({"apply", in, "-o", at("no/out.pam"), "invert(#RGB)"}).code, 1);
    EXPECT_EQ(files(), 2u);
}

TEST_F(Apply, ReportsMissingPicturesInOneLine) {
    const CliResult done = krlimage({"apply", at("none.pam"), "-o", at("out.pam"), "invert(#RGB)"});
    EXPECT_EQ(done.code, 1);
    EXPECT_EQ(countOf(done.err, "\n"), 1u) << done.err;
    EXPECT_TELLS(done.err, "none.pam: No such file");
}

TEST_F(Apply, SuggestsAMethodForAnUnknownSingleWord) {
    const CliResult done = krlimage({"apply", picture("in.pam"), "-o", at("out.pam"), "sepai"});
    EXPECT_EQ(done.code, 1);
    EXPECT_EQ(done.err, "krlimage: there is no picture, folder or method \"sepai\", did you mean sepia?\n");
    EXPECT_EQ(files(), 1u);
}

TEST_F(Apply, SuggestsTheSymbolForANameWithoutItsMark) {
    const CliResult done = krlimage({"apply", picture("in.pam"), "-o", at("out.pam"), "brightness(4, RGB)"});
    EXPECT_EQ(done.code, 1);
    EXPECT_TELLS(done.err,
                 "colourOrAlpha: expected #RGB or #Alpha, got the undefined name RGB, did you mean #RGB?");
}

TEST_F(Apply, CreatesNoFolderNamedLikeAPicture) {
    const CliResult done =
        krlimage({"apply", picture("a.pam"), picture("b.pam"), "-o", at("out.pam"), "invert(#RGB)"});
    EXPECT_EQ(done.code, 2);
    EXPECT_TELLS(done.err, "out.pam names a picture, but several pictures need a folder");
    EXPECT_FALSE(std::filesystem::exists(at("out.pam")));
}

TEST_F(Apply, PrintsResultsAsJson) {
    const CliResult done = krlimage({"apply", picture("in.pam"), "-o", at("out.pam"), "--json",
                                     "brightness(40)", "composite(image(1, 1, 32), #normal)"});
    EXPECT_EQ(done.code, 1);
    const auto json = nlohmann::json::parse(done.out);
    EXPECT_EQ(json["input"], at("in.pam"));
    EXPECT_EQ(json["ok"], false);
    ASSERT_EQ(json["calls"].size(), 2u);
    EXPECT_EQ(json["calls"][0]["call"], "krlImageBrightness(40, #RGB)");
    EXPECT_EQ(json["calls"][0]["result"], "[#error: 0]");
    EXPECT_NE(json["calls"][1]["error"], "");
    EXPECT_EQ(json.count("milliseconds"), 0u);
}

TEST_F(Apply, PrintsALineOfJsonForEachPicture) {
    std::filesystem::create_directory(at("in"));
    for (const char* name : {"in/a.pam", "in/b.pam", "in/c.pam"}) picture(name);
    text("in/b.pam", "no picture");
    const CliResult done =
        krlimage({"apply", at("in"), "-o", at("out"), "--json", "-j", "1", "invert(#RGB)"}, true);
    EXPECT_EQ(done.code, 1);
    const std::vector<nlohmann::json> lines = jsonLines(done.out);
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(lines[0]["output"], at("out/a.pam"));
    EXPECT_EQ(lines[1]["ok"], false);
    EXPECT_TELLS(lines[1]["failure"].get<std::string>(), "unrecognised picture format");
    EXPECT_EQ(lines[2]["ok"], true);
    EXPECT_EQ(done.err.find("left"), std::string::npos) << "a progress bar among the lines: " << done.err;
}

/// Counts the files in a folder whenever output is flushed.
class CountingBuffer : public std::stringbuf {
public:
    explicit CountingBuffer(std::filesystem::path folder) : folder_(std::move(folder)) {}
    std::vector<size_t> counts;

private:
    int sync() override {
        counts.push_back(0);
        for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(folder_))
            ++counts.back();
        return 0;
    }
    const std::filesystem::path folder_;
};

TEST_F(Apply, PrintsEachLineOfJsonAsSoonAsItsPictureIsWritten) {
    const std::vector<std::string> words = {"apply", picture("a.pam"), picture("b.pam"), picture("c.pam"),
                                            "-o",    at("out"),        "--json",         "-j",
                                            "1",     "invert(#RGB)"};
    CountingBuffer buffer(at("out"));
    std::ostream out(&buffer);
    std::ostringstream err;
    EXPECT_EQ(runCommandLine(words, Terminal{out, err, false}), 0) << err.str();
    ASSERT_GE(buffer.counts.size(), 3u);
    buffer.counts.resize(3);
    EXPECT_EQ(buffer.counts, (std::vector<size_t>{1, 2, 3}));
    EXPECT_EQ(jsonLines(buffer.str()).size(), 3u);
}

TEST_F(Apply, RefusesWhatAWatchCannotDo) {
    std::filesystem::create_directories(at("in/out"));
    const auto refuses = [&](std::vector<std::string> words, const std::string& complaint) {
        words.insert(words.begin(), {"apply", "--watch", at("in"), "sepia"});
        const CliResult done = krlimage(words);
        EXPECT_EQ(done.code, 2) << complaint;
        EXPECT_TELLS(done.err, complaint);
    };
    refuses({}, "--watch needs -o DIR");
    refuses({"-o", "-"}, "--watch needs -o DIR");
    refuses({"-o", at("out"), picture("a.pam")}, "leave out inputs");
    refuses({"-o", at("out"), "--resume"}, "leave out --ledger and --resume");
    refuses({"-o", at("out"), "--dry-run"}, "leave out --dry-run");
    refuses({"--in-place"}, "leave out --in-place");
    refuses({"-o", at("out"), "--name", "{n}.{ext}"}, "leave out {n} in --name");
    refuses({"-o", at("in")}, "would be found as new pictures");
    refuses({"-o", at("in/out"), "-r"}, "would be found as new pictures");
    EXPECT_TELLS(krlimage({"apply", "--watch", at("none"), "sepia", "-o", at("out")}).err,
                 "there is no such folder");
}

TEST_F(Apply, LeavesOutAWatchedPictureThatWouldOverwriteAResult) {
    std::filesystem::create_directories(at("in"));
    ApplyOptions options;
    options.watch = options.root = at("in");
    options.output = at("out");
    options.format = "pam";
    picture("in/a.pam"), text("in/a.ppm", "P6 1 1 255 abc"), picture("in/b.pam");
    FolderWatch watch(options);
    const BatchPart first = watch.next();
    EXPECT_EQ(first.listed, (std::vector<std::filesystem::path>{at("in/a.pam"), at("in/b.pam")}));
    const std::string note =
        "skipped " + at("in/a.ppm") + ": " + at("out/a.pam") + " is the result of " + at("in/a.pam");
    EXPECT_EQ(first.notes, std::vector<std::string>{note});
    // Also later, and in the program that goes on after a crash.
    text("in/b.ppm", "P6 1 1 255 abc"), picture("in/b.pam", 9, 9);
    FolderWatch next(options);
    next.continueAfter(watch.seen());
    const BatchPart second = next.next();
    EXPECT_EQ(second.listed, std::vector<std::filesystem::path>{at("in/b.pam")}) << "which has changed";
    EXPECT_EQ(second.notes.size(), 1u);
    EXPECT_EQ(planBatch(second, options).size(), 1u);
}

TEST_F(Apply, PrintsHowLongEachStepTakes) {
    const std::vector<std::string> words = {"apply",     picture("in.pam", 600, 400),  "-o",
                                            at("o.pam"), "fastGaussianBlur(40, #RGB)", "invert(#RGB)",
                                            "--timings"};
    const CliResult shown = krlimage(words);
    EXPECT_EQ(shown.out, "");
    double read = 0, blur = 0, invert = 0, write = 0;
    const std::string start = "krlimage: " + at("in.pam") + ": ";
    ASSERT_EQ(shown.err.rfind(start, 0), 0u) << shown.err;
    ASSERT_EQ(std::sscanf(shown.err.c_str() + start.size(),
                          "read %lf ms, fastGaussianBlur %lf ms, invert %lf ms, write %lf ms", &read, &blur,
                          &invert, &write),
              4)
        << shown.err;
    std::vector<std::string> all = words;
    all.push_back("--json");
    // The blur takes longer, but other programs may interrupt an inversion.
    bool isBlurSlower = false;
    for (int run = 0; run < 20 && !isBlurSlower; ++run) {
        const CliResult done = krlimage(all);
        EXPECT_TELLS(done.err, ": read ");
        const auto json = nlohmann::json::parse(done.out);
        isBlurSlower = json["calls"][0]["milliseconds"] > json["calls"][1]["milliseconds"];
        EXPECT_GT(json["milliseconds"]["read"], 0);
        EXPECT_GT(json["milliseconds"]["write"], 0);
    }
    EXPECT_TRUE(isBlurSlower);
}

TEST_F(Apply, AddsTheTimesOfAllFrames) {
    if (!isPictureName("x.gif")) GTEST_SKIP() << "no animations";
    PictureFrames frames;
    for (uint32_t i = 0; i < 6; ++i) frames.pictures.push_back(noise(300, 200, i));
    frames.delays.assign(6, 100);
    writeFramesOf(at("none"), folder / "six.gif", frames, {});
    const auto timeOf = [&](const std::vector<std::string>& more) {
        std::vector<std::string> words = {
            "apply", at("six.gif"), "-o", at("out.gif"), "--json", "--timings", "fastGaussianBlur(60, #RGB)"};
        words.insert(words.end(), more.begin(), more.end());
        return nlohmann::json::parse(krlimage(words).out)["calls"][0]["milliseconds"].get<double>();
    };
    // Other work may fall into any one run.
    double all = 0, first = 0;
    for (int tries = 0; tries < 20 && !(all > 2 * first); ++tries) {
        all = timeOf({});
        first = timeOf({"--first-frame"});
    }
    EXPECT_GT(all, 2 * first);
}

TEST_F(Apply, PrintsNamesThatAreNotUtf8AsJson) {
    const CliResult done =
        krlimage({"apply", picture("caf\xE9.pam"), "-o", at("out.pam"), "--json", "invert(#RGB)"});
    EXPECT_EQ(done.code, 0) << done.err;
    EXPECT_EQ(nlohmann::json::parse(done.out)["input"], at("caf\xEF\xBF\xBD.pam"));
}

TEST_F(Apply, PrintsAChainAsAScriptThatDoesTheSame) {
    const std::string in = picture("in.pam", 10, 8);
    const std::vector<std::string> calls = {"brightness(25)", "halfSize()", "invert(#RGB)"};
    std::vector<std::string> words = {"apply", in, "--print", "lingo"};
    words.insert(words.end(), calls.begin(), calls.end());
    const CliResult printed = krlimage(words);
    ASSERT_EQ(printed.code, 0) << printed.err;
    EXPECT_TELLS(printed.out, "krlImageBrightness(25, #RGB)");
    const CliResult ran = krlimage({"run", text("chain.ls", printed.out), in, at("script.pam")});
    ASSERT_EQ(ran.code, 0) << ran.err;
    EXPECT_EQ(ran.out, "-- [#error: 0]\n-- [#error: 0]\n");
    words = {"apply", in, "-o", at("apply.pam")};
    words.insert(words.end(), calls.begin(), calls.end());
    ASSERT_EQ(krlimage(words).code, 0);
    EXPECT_EQ(contentOf(at("script.pam")), contentOf(at("apply.pam")));
}

TEST_F(Apply, ConvertsToAnotherFormat) {
    if (!isPictureName("x.png")) GTEST_SKIP() << "this build supports only PAM";
    const std::string in = picture("in.pam");
    ASSERT_EQ(krlimage({"apply", in, "-o", at("out") + "/", "--format", "png", "invert(#RGB)"}).code, 0);
    EXPECT_EQ(readPicture(at("out/in.png")).width, 8);
    EXPECT_EQ(krlimage({"apply", in, "-o", at("x.bmp"), "invert(#RGB)"}).code, 1);
}

/// A given output name is used as it is; a format changes the names of pictures written to a folder.
TEST_F(Apply, WritesToExactlyTheGivenName) {
    const std::string in = picture("in.pam");
    for (const char* name : {"v1.2", "plain", "out.txt"}) {
        const CliResult done = krlimage({"apply", in, "-o", at(name), "--format", "pam", "invert(#RGB)"});
        EXPECT_EQ(done.code, 0) << done.err;
        EXPECT_EQ(readPicture(at(name)).width, 8) << name;
    }
    EXPECT_EQ(files(), 4u);
    if (!isPictureName("x.png")) return;
    ASSERT_EQ(krlimage({"apply", in, "-o", at("v1.3"), "--format", "png", "invert(#RGB)"}).code, 0);
    EXPECT_EQ(contentOf(at("v1.3")).substr(1, 3), "PNG");
    ASSERT_EQ(krlimage({"apply", in, "-o", at("a.pam"), "--format", "png", "invert(#RGB)"}).code, 0);
    EXPECT_EQ(contentOf(at("a.pam")).substr(1, 3), "PNG");
    EXPECT_EQ(files(), 6u);
}

TEST_F(Apply, NamesPicturesInAFolderByTheFormat) {
    for (const char* name : {"v1.2", "a.gif", "b.PAM", "c"}) {
        picture("in.pam");
        std::filesystem::rename(at("in.pam"), at(name));
    }
    const CliResult done = krlimage({"apply", at("v1.2"), at("a.gif"), at("b.PAM"), at("c"), "-o", at("out"),
                                     "--format", "pam", "invert(#RGB)"});
    EXPECT_EQ(done.code, 0) << done.err;
    for (const char* name : {"out/v1.2.pam", "out/a.pam", "out/b.pam", "out/c.pam"})
        EXPECT_TRUE(std::filesystem::exists(at(name))) << name;
}

#if !defined(_WIN32)
/// For example `-o /dev/stdout`, which the shell may have redirected to any file.
TEST_F(Apply, WritesIntoAnOpenFileOrADevice) {
    const std::string in = picture("in.pam");
    ASSERT_EQ(krlimage({"apply", in, "-o", at("whole.pam"), "invert(#RGB)"}).code, 0);
    const std::string whole = contentOf(at("whole.pam"));
    for (const std::string place : {"/dev/fd/", "/proc/self/fd/"}) {
        const int open = ::open(at("open").c_str(), O_RDWR | O_CREAT | O_TRUNC, 0600);
        ASSERT_EQ(::write(open, "before", 6), 6);
        const std::string name = place + std::to_string(open);
        const CliResult done = krlimage({"apply", in, "-o", name, "--format", "pam", "invert(#RGB)"});
        EXPECT_EQ(done.code, 0) << done.err;
        ::close(open);
        EXPECT_EQ(contentOf(at("open")), "before" + whole);
    }
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    const std::string name = "/dev/fd/" + std::to_string(ends[1]);
    const std::string format = isPictureName("x.tif") ? "tif" : "pam";
    EXPECT_EQ(krlimage({"apply", in, "-o", name, "--format", format, "invert(#RGB)"}).code, 0);
    std::string piped(20000, ' ');
    piped.resize(size_t(::read(ends[0], piped.data(), piped.size())));
    ::close(ends[0]);
    ::close(ends[1]);
    ASSERT_EQ(krlimage({"apply", in, "-o", at("same"), "--format", format, "invert(#RGB)"}).code, 0);
    EXPECT_EQ(piped, contentOf(at("same")));

    const CliResult full = krlimage({"apply", in, "-o", "/dev/full", "--format", "pam", "invert(#RGB)"});
    EXPECT_EQ(full.code, 1);
    EXPECT_TELLS(full.err, "cannot write /dev/full: No space left on device");
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/full"))
        << "the device must be written to, not replaced";
    EXPECT_EQ(files(), 4u);
}
#endif

TEST_F(Apply, DrawsItsProgressOnlyOnATerminal) {
    std::filesystem::create_directories(folder / "in");
    picture("in/a.pam");
    picture("in/b.pam");
    const CliResult live = krlimage({"apply", at("in"), "-o", at("out"), "invert(#RGB)"}, true);
    EXPECT_TELLS(live.err, "of 2 pictures");
    EXPECT_EQ(krlimage({"apply", at("in"), "-o", at("out"), "invert(#RGB)"}).err, "2 of 2 pictures done\n");
}

}  // namespace
}  // namespace krl::player
