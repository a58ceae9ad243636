#include <atomic>
#include <cstdlib>

#include "catalogue/NearestName.h"
#include "core/Faults.h"
#include "player/cli/ApplyOptions.h"
#include "player/cli/Batch.h"
#include "player/cli/ChainCall.h"
#include "player/cli/ProgressBar.h"
#include "player/cli/SideBySide.h"
#include "tests/player/CliRun.h"

namespace krl::player {
namespace {

TEST(CommandLine, PrintsUsageAndReturnsTwoForInvalidUsage) {
    using Words = std::vector<std::string>;
    for (const Words& words : {Words{},
                               Words{"grade"},
                               Words{"--louder"},
                               Words{"run"},
                               Words{"apply"},
                               Words{"apply", "a.pam", "invert(#RGB)"},
                               Words{"apply", "invert(#RGB)", "-o", "x.pam"},
                               Words{"apply", "a.pam", "-o", "b.pam", "--quality", "101"},
                               Words{"apply", "a.pam", "-o", "b.pam", "--jobs", "0"},
                               Words{"apply", "a.pam", "-o", "b.pam", "--threads", "many"},
                               Words{"gallery", "a.pam"},
                               Words{"completions", "fish"},
                               Words{"run", "a.ls", "--xtra"},
                               Words{"run", "a.ls", "--xtra", ""},
                               Words{"run", "a.ls", "--allow", ""},
                               Words{"run", ""},
                               Words{"run", "a.ls", "--memory", "1K"},
                               Words{"run", "a.ls", "--memory", "0"},
                               Words{"run", "a.ls", "--memory", "4 horses"},
                               Words{"apply", "a.pam", "-o", "b.pam", "--memory", "-4G"}}) {
        const CliResult done = krlimage(words);
        EXPECT_EQ(done.code, 2) << testing::PrintToString(words);
        EXPECT_EQ(done.out, "");
        EXPECT_EQ(done.err.rfind("krlimage: ", 0), 0u) << done.err;
        EXPECT_TELLS(done.err, " shows what can be used\n");
        EXPECT_EQ(countOf(done.err, "\n"), 2u) << done.err;
    }
}

TEST(CommandLine, NamesTheNearestCommand) {
    EXPECT_TELLS(krlimage({"galery", "a.png"}).err, "there is no command galery, did you mean gallery?");
}

TEST(CommandLine, PrintsItsVersionAndHelp) {
    EXPECT_EQ(krlimage({"--version"}).out, "krlimage " KRL_VERSION "\n");
    for (const char* command :
         {"run", "apply", "list", "help", "gallery", "check", "docs", "completions", "man"}) {
        EXPECT_TELLS(krlimage({"--help"}).out, command);
        const CliResult help = krlimage({command, "--help"});
        EXPECT_EQ(help.code, 0);
        EXPECT_TELLS(help.out, std::string("Usage: krlimage ") + command);
    }
    EXPECT_EQ(krlimage({"help", "apply"}).out, krlimage({"apply", "--help"}).out);
    EXPECT_EQ(krlimage({"help"}).out, krlimage({"--help"}).out);
}

class Scripts : public CliTest {};

TEST_F(Scripts, GetTheirArgumentsAndPrintToStandardOutput) {
    const CliResult done = krlimage(
        {"run", text("a.ls", "on main names\n put names\n put names[2] & \"!\"\nend\n"), "one", "two"});
    EXPECT_EQ(done.code, 0) << done.err;
    EXPECT_EQ(done.out, "-- [\"one\", \"two\"]\n-- \"two!\"\n");
}

TEST_F(Scripts, ReportErrorsWithPositionLineAndCaret) {
    const CliResult done = krlimage({"run", text("bad.ls", "on main\n  if 1 put 2\nend\n")});
    EXPECT_EQ(done.code, 1);
    EXPECT_EQ(done.out, "");
    EXPECT_TELLS(done.err, "bad.ls:2:");
    EXPECT_TELLS(done.err, "\"then\"");
    EXPECT_TELLS(done.err, "^");
    EXPECT_EQ(krlimage({"run", at("none.ls")}).code, 1);
}

TEST_F(Scripts, SaveInAFolderThatIsCreatedForThem) {
    const std::string script = text("a.ls", "on main\n put 1\n image(2, 2, 32).save(\"a.pam\")\nend\n");
    const CliResult done = krlimage({"run", script, "-o", at("new/out")});
    EXPECT_EQ(done.code, 0) << done.err;
    EXPECT_EQ(readPicture(at("new/out/a.pam")).width, 2);
    const CliResult refused = krlimage({"run", script, "-o", at("a.ls/out")});
    EXPECT_EQ(refused.code, 1);
    EXPECT_EQ(refused.out, "") << "must fail before the script runs";
    EXPECT_EQ(refused.err, "krlimage: cannot create the folder " + at("a.ls/out") + ": Not a directory\n");
}

TEST_F(Scripts, ThatAreEmptyHaveNothingToRun) {
    const CliResult done = krlimage({"run", text("empty.ls", "")});
    EXPECT_EQ(done.code, 1);
    EXPECT_EQ(done.err, "krlimage: " + at("empty.ls") + ": expected a handler to run\n");
}

TEST_F(Scripts, TakeSizesOfMemory) {
    const std::string script =
        text("a.ls", "on main\n s = \"abcdefgh\"\n repeat while 1\n  s = s & s\n end repeat\nend\n");
    for (const char* size : {"8", "8M", "8mb", "8192K"})
        EXPECT_TELLS(krlimage({"run", script, "--memory", size}).err, "may take 8 MB together") << size;
}

TEST_F(Scripts, SendNoControlCharactersToATerminal) {
    const std::string script =
        text("a.ls", "on main\n put \"\x1b[2Jtwo\tlines\" & RETURN & \"\x07 ä \xC2\x9B\"\nend\n");
    const auto printed = [&](int columns) {
        std::ostringstream out, err;
        EXPECT_EQ(runCommandLine({"run", script}, Terminal{out, err, false, {columns, 24}}), 0) << err.str();
        return out.str();
    };
    EXPECT_EQ(printed(80), "-- \"^[[2Jtwo\tlines\n^G ä \xC2?\"\n");
    EXPECT_EQ(printed(0), "-- \"\x1b[2Jtwo\tlines\n\x07 ä \xC2\x9B\"\n") << "a pipe gets every byte";
    EXPECT_TELLS(krlimage({"run", text("b.ls", "on main\n x = \x1b[2J\nend\n")}).err, "\n x = ^[[2J\n");
    EXPECT_TELLS(krlimage({"apply", at("\x1b]0;title\x07.png"), "-o", at("o.png"), "sepia"}).err,
                 "/^[]0;title^G.png");
}

TEST(Jobs, ProcessEveryItemOnce) {
    for (const unsigned jobs : {0u, 1u, 2u, 7u}) {
        std::vector<int> worked(50);
        workSideBySide(worked.size(), jobs, [&]() -> Worker { return [&](size_t i) { ++worked[i]; }; });
        EXPECT_EQ(std::count(worked.begin(), worked.end(), 1), 50);
    }
    workSideBySide(0, 4, []() -> Worker { throw std::runtime_error("no worker must be created"); });
}

TEST(Jobs, RunOnAsManyThreadsAsTheSystemGrants) {
    faults().threads = 1;
    std::atomic<int> workers = 0;
    std::vector<std::atomic<int>> worked(50);
    workSideBySide(worked.size(), 8, [&]() -> Worker {
        ++workers;
        return [&](size_t i) { ++worked[i]; };
    });
    faults() = {};
    EXPECT_EQ(std::count(worked.begin(), worked.end(), 1), 50);
    EXPECT_LE(workers, 2);
}

TEST(Jobs, RethrowTheExceptionOfAWorker) {
    EXPECT_THROW(workSideBySide(20, 3,
                                []() -> Worker {
                                    return [](size_t i) {
                                        if (i == 5) throw CommandError("five");
                                    };
                                }),
                 CommandError);
}

TEST(Progress, ShowsCountRateAndRemainingTime) {
    const std::string half = ProgressBar::lineFor(50, 100, 10, "pictures");
    EXPECT_TELLS(half, "50 of 100 pictures, 5.0/s, 0:10 left");
    EXPECT_EQ(countOf(half, "█"), 15u);
    EXPECT_EQ(countOf(half, "░"), 15u);
    EXPECT_TELLS(ProgressBar::lineFor(1, 1201, 1, "pictures"), "20:00 left");
    EXPECT_EQ(ProgressBar::lineFor(0, 10, 0, "effects").find("left"), std::string::npos);
}

TEST(Names, SimilarToTheGivenOneAreSuggested) {
    const std::vector<std::string> names = {"brightness", "contrast", "invert"};
    EXPECT_EQ(nearestName("brigthness", names), "brightness");
    EXPECT_EQ(nearestName("CONTRST", names), "contrast");
    EXPECT_EQ(nearestName("inwert", names), "invert");
    EXPECT_EQ(nearestName("wholly other", names), "");
    EXPECT_EQ(nearestName("", names), "");
    EXPECT_EQ(didYouMean("invrt", names), ", did you mean invert?");
    EXPECT_EQ(didYouMean("zzz", names), "");
}

TEST(Words, AreRecognisedAsCallsOrPictures) {
    for (const char* call :
         {"brightness(40)", "brightness (40)", "Invert", "krlImageInvert", "unknown(1)", "f()"})
        EXPECT_TRUE(looksLikeCall(call)) << call;
    for (const char* picture : {"a.png", "photo (1).png", "photo(1).jpg", "dir/x(2)", "in", "(x)"})
        EXPECT_FALSE(looksLikeCall(picture)) << picture;
}

class Plan : public CliTest {};

TEST_F(Plan, SendsOnePictureToAFileAndSeveralToAFolder) {
    ApplyOptions options;
    options.output = at("out.pam");
    EXPECT_EQ(planBatch({{"a.pam"}, {}}, options).front().output, at("out.pam"));
    options.output = at("folder");
    EXPECT_EQ(planBatch({{"a.pam", "x/b.pam"}, {}}, options).back().output, at("folder/b.pam"));
    options.format = "png";
    EXPECT_EQ(planBatch({{"a.pam"}, {}}, options).front().output, at("folder/a.png"));
    options.output = text("file", "");
    EXPECT_THROW(planBatch({{"a.pam", "b.pam"}, {}}, options), UsageError);
    std::filesystem::create_directories(folder / "empty");
    EXPECT_THROW(planBatch({{folder / "empty"}, {}}, options), CommandError);
}

class Shells : public CliTest {};

TEST_F(Shells, CompleteCommandsOptionsMethodsAndValues) {
    text("krlimage.bash", krlimage({"completions", "bash"}).out);
    const auto completed = [&](const std::string& words, int place) {
        text("ask.bash", "source krlimage.bash\nCOMP_WORDS=(krlimage " + words + ")\nCOMP_CWORD=" +
                             std::to_string(place) + "\n_krlimage\necho \"${COMPREPLY[*]}\" > answer\n");
        EXPECT_EQ(std::system(("cd " + folder.string() + " && bash ask.bash").c_str()), 0);
        return contentOf(folder / "answer");
    };
    EXPECT_EQ(completed("ap", 1), "apply\n");
    EXPECT_EQ(completed("help brightn", 2), "brightness\n");
    EXPECT_EQ(completed("apply --qual", 2), "--quality\n");
    EXPECT_EQ(completed("run --threads m", 3), "mt\n");
    EXPECT_EQ(completed("completions z", 2), "zsh\n");
    EXPECT_EQ(completed("show a.png vign", 3), "vignette\n");
    EXPECT_EQ(completed("apply a.png --look noi", 4), "noir\n");
    EXPECT_EQ(completed("apply a.png -o vign", 4), "\n") << "a file, which the shell completes";
    EXPECT_EQ(completed("look sh", 2), "show\n");
}

TEST_F(Shells, AlsoCompleteInZsh) {
    const std::string script = krlimage({"completions", "zsh"}).out;
    EXPECT_EQ(script.rfind("#compdef krlimage\n", 0), 0u);
    for (const char* part : {"'apply:", "'--quality[", ":mt|st:(mt st)", "brightness", ":DIR:_files'",
                             ":OUT:_files'", "'--json[Print JSON]'", ":LOOK:(", " noir "})
        EXPECT_TELLS(script, part);
    const size_t show = script.find("        show)");
    ASSERT_NE(show, std::string::npos);
    EXPECT_TELLS(script.substr(show, script.find(";;", show) - show), "picture or call:{compadd");
}

TEST(Manual, DescribesEveryCommandAndEscapesRoff) {
    const std::string page = krlimage({"man"}).out;
    for (const char* command : {"run", "apply", "list", "help", "gallery", "check", "docs", "completions"})
        EXPECT_TELLS(page, std::string("krlimage ") + command);
    EXPECT_TELLS(page, "\\-\\-quality");
    EXPECT_TELLS(page, "\\fBkrlimage run\\fR [\\fIoption\\fR...] \\fISCRIPT\\fR [\\fIARG\\fR...]\n");
    EXPECT_TELLS(page, "\\fBkrlimage docs\\fR [\\fIoption\\fR...] \\fB\\-o\\fR \\fIDIR\\fR\n");
    EXPECT_TELLS(page, "[\\fIIN|CALL\\fR...]\n");
    EXPECT_EQ(page.find("...."), std::string::npos);
    EXPECT_EQ(page.find("\n'"), std::string::npos);
}

}  // namespace
}  // namespace krl::player
