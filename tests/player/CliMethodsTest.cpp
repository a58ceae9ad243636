#include <ctime>
#include <nlohmann/json.hpp>

#include "catalogue/ExampleCall.h"
#include "player/cli/ArgumentCheck.h"
#include "player/cli/FittedText.h"
#include "player/cli/MethodFacts.h"
#include "player/cli/MethodHelp.h"
#include "player/pictures/Scale.h"
#include "tests/player/CliRun.h"

namespace krl::player {
namespace {

TEST(Help, DescribesAMethodCompletely) {
    EXPECT_EQ(krlimage({"help", "Brightness"}).out,
              "brightness(brightnessInt, colourOrAlpha)\n"
              "  Lightens or darkens by a fixed amount.\n"
              "  Tone; krlImageBrightness in scripts.\n"
              "\nArguments\n"
              "  brightnessInt  integer, -255 to 255  levels to add\n"
              "  colourOrAlpha  #RGB or #Alpha        the three colours, or transparency alone\n"
              "\nNotes\n"
              "  brightnessInt changes nothing at 0.\n"
              "\nExample\n"
              "  krlimage apply in.png -o out.png 'brightness(40, #RGB)'\n"
              "\nResult\n"
              "  error  0 on success, otherwise the error message\n"
              "\nErrors\n"
              "  Brightness input failure (Image)    an argument is missing or of the wrong type\n"
              "  Brightness invalid colourOrAlpha input (Image)\n"
              "                                      colourOrAlpha is an unknown symbol\n"
              "  Failed Brightness function (Image)  no picture is loaded, or memory ran out\n"
              "\nPicture\n"
              "  " KRL_SOURCE_DIR "/docs/pictures/methods/brightness.jpg\n");
    EXPECT_EQ(krlimage({"help", "krlImageBrightness"}).out, krlimage({"help", "brightness"}).out);
}

TEST(Help, SuggestsTheNearestMethod) {
    const CliResult done = krlimage({"help", "brigthness"});
    EXPECT_EQ(done.code, 1);
    EXPECT_EQ(done.err, "krlimage: there is no method brigthness, did you mean brightness?\n");
}

TEST(Help, IsAvailableForFamilies) {
    const std::string keys = krlimage({"help", "KEYS"}).out;
    EXPECT_EQ(keys.rfind("Keys\n  autoColor ", 0), 0u) << keys;
    EXPECT_EQ(keys.find("brightness  "), std::string::npos);
    EXPECT_EQ(krlimage({"help", "blur"}).out, krlimage({"help", "Blur and sharpen"}).out);
    EXPECT_EQ(krlimage({"help", "and"}).code, 1);
    EXPECT_EQ(krlimage({"help", "keys", "--json"}).code, 1);
}

TEST(Help, FitsTheTerminal) {
    using Words = std::vector<std::string>;
    for (const Words& words : {Words{"help", "vignette"}, Words{"help", "apply"}, Words{"help"},
                               Words{"list"}, Words{"apply", "--help"}}) {
        std::ostringstream out, err;
        EXPECT_EQ(runCommandLine(words, Terminal{out, err, false, {64, 24}}), 0);
        const std::string wide = krlimage(words).out, text = out.str();
        std::istringstream lines(text);
        for (std::string line; std::getline(lines, line);)
            EXPECT_TRUE(line.size() <= 64 || line.find("krlimage apply in.png") != std::string::npos) << line;
        EXPECT_GT(countOf(text, "\n"), countOf(wide, "\n"));
        const auto bare = [](std::string all) {
            std::erase_if(all, [](char letter) { return letter == ' ' || letter == '\n'; });
            return all;
        };
        EXPECT_EQ(bare(text), bare(wide)) << "no word is lost";
    }
    EXPECT_EQ(fittedText("  a  one two three four\n", 26), "  a  one two three four\n");
    EXPECT_EQ(fittedText("  a  one two three four five\n", 26), "  a  one two three four\n     five\n");
}

TEST(Help, IsAvailableAsJson) {
    const auto json = nlohmann::json::parse(krlimage({"help", "brightness", "--json"}).out);
    EXPECT_EQ(json["method"], "krlImageBrightness");
    EXPECT_EQ(json["arguments"][0]["range"], (nlohmann::json{-255, 255}));
    EXPECT_EQ(json["arguments"][1]["choices"], (nlohmann::json{"RGB", "Alpha"}));
    EXPECT_EQ(json["example"], "brightness(40, #RGB)");
    EXPECT_TRUE(json["errors"].contains("Brightness input failure (Image)"));
}

TEST(Help, IsAvailableForEveryMethod) {
    for (const std::string& name : shortMethodNames()) {
        const CliResult done = krlimage({"help", name});
        EXPECT_EQ(done.code, 0) << name;
        EXPECT_TELLS(done.out, catalogue().find(name)->summaryText());
        EXPECT_TRUE(nlohmann::json::accept(krlimage({"help", name, "--json"}).out)) << name;
    }
}

TEST(List, ContainsEveryMethodUnderItsHeading) {
    const std::string all = krlimage({"list"}).out;
    for (const std::string& name : shortMethodNames()) EXPECT_TELLS(all, "\n  " + name + " ");
    EXPECT_TELLS(all, "Tone\n  brightness");
    EXPECT_EQ(nlohmann::json::parse(krlimage({"list", "--json"}).out).size(), shortMethodNames().size());
}

TEST(List, IsFilteredByAWord) {
    const std::string some = krlimage({"list", "NEGATIVE"}).out;
    EXPECT_TELLS(some, "invert");
    EXPECT_EQ(some.find("brightness"), std::string::npos);
    EXPECT_EQ(krlimage({"list", "xyzzy"}).code, 1);
    EXPECT_TELLS(krlimage({"list", "greenscreen"}).out, "chromaKey") << "a word that is in none of its texts";
}

TEST(Docs, InTheTreeMatchTheGeneratedPage) {
    const std::string kept = [] {
        std::ostringstream text;
        text << std::ifstream(KRL_SOURCE_DIR "/docs/methods.md", std::ios::binary).rdbuf();
        return text.str();
    }();
    EXPECT_TRUE(kept == referencePage()) << "regenerate it with: ./run docs -o docs";
}

TEST(Docs, DescribeEveryMethodOnceAndLinkToIt) {
    const std::string page = referencePage();
    for (const std::string& name : shortMethodNames()) {
        EXPECT_EQ(countOf(page, "\n### " + name + "\n"), 1u) << name;
        EXPECT_EQ(countOf(page, "[" + name + "](#"), 1u) << name;
    }
}

/// The complaint about `text` as an argument of brightness.
std::string complaint(size_t argument, const std::string& text) {
    Session session({});
    return complaintAbout(catalogue().find("brightness")->arguments()[argument], session.evaluate(text),
                          text);
}

TEST(Arguments, AreCheckedByTheirValues) {
    for (const char* fine : {"40", "-3", "2 + 1", "max(1, 2)"}) EXPECT_EQ(complaint(0, fine), "") << fine;
    EXPECT_EQ(complaint(0, "\"x\""), "brightnessInt: expected an integer, got \"x\"");
    EXPECT_EQ(complaint(0, "1.5"), "brightnessInt: expected an integer, got 1.5");
    EXPECT_EQ(complaint(0, "-1.5"), "brightnessInt: expected an integer, got -1.5");
    EXPECT_EQ(complaint(0, "rgb(1, 2, 3)"), "brightnessInt: expected an integer, got rgb(1, 2, 3)");
    EXPECT_EQ(complaint(0, "x"), "brightnessInt: expected an integer, got the undefined name x");
    EXPECT_EQ(complaint(1, "#rgb"), "");
    EXPECT_EQ(complaint(1, "#RBG"), "colourOrAlpha: expected #RGB or #Alpha, got #RBG, did you mean #RGB?");
    EXPECT_EQ(complaint(1, "[1, 2]"), "colourOrAlpha: expected #RGB or #Alpha, got a list");
}

TEST(Arguments, OfEveryExampleAreValid) {
    for (const Method* method : catalogue().methods())
        for (const Argument& argument : method->arguments())
            EXPECT_EQ(complaintAbout(argument, exampleValue(argument), ""), "") << method->name();
}

class Check : public CliTest {
protected:
    std::string errorsOf(const std::string& body) {
        const CliResult done = krlimage({"check", text("a.ls", "on main\n" + body + "\nend\n")});
        EXPECT_EQ(done.code, done.err.empty() ? 0 : 1);
        return done.err;
    }
};

TEST_F(Check, AcceptsCorrectScripts) {
    EXPECT_EQ(errorsOf("  x = new(xtra \"KRLImageXtra\")\n  x.krlImageBrightness(40, #RGB)\n"
                       "  krlImageBrightness(x, 40, #alpha)\n  x.krlImageBrightness(n, s)\n  other(1)"),
              "");
}

TEST_F(Check, FindsMistakesWithPositionAndLineWithoutRunning) {
    const std::string errors = errorsOf(
        "  x.krlImageBrightness(\"a\", #RGB)\n"
        "  if x then put [#a: x.krlImageBrightness(4)]\n"
        "  repeat with i = 1 to krlImageBrigtness(x, 1, #RGB)\n"
        "    krlImageBrightness(x, -1.0, #Alhpa)\n"
        "  end repeat\n"
        "  krlImageQuit()");
    EXPECT_TELLS(errors, "a.ls:2:24: brightnessInt: expected an integer, got \"a\"");
    EXPECT_TELLS(errors, "a.ls:3:");
    EXPECT_TELLS(errors, "takes 2 arguments, 1 was given");
    EXPECT_TELLS(errors, "there is no method krlImageBrigtness, did you mean brightness?");
    EXPECT_TELLS(errors, "a.ls:5:27: brightnessInt: expected an integer, got -1.0");
    EXPECT_TELLS(errors, "did you mean #Alpha?");
    EXPECT_TELLS(errors, "expected an instance of the plug-in");
    EXPECT_EQ(countOf(errors, "^\n"), 6u) << errors;
}

TEST_F(Check, KnowsTheOnlyXtra) {
    const std::string script =
        text("xtras.ls",
             "on main\n  a = new(xtra \"KRLimagextra\")\n  b = new(xtra \"Blur\")\n  return [a, b]\nend\n");
    const CliResult done = krlimage({"check", "--names", script});
    EXPECT_EQ(done.code, 1);
    EXPECT_TELLS(done.err, "xtras.ls:3:16: there is no xtra \"Blur\", only \"KRLImageXtra\"");
    EXPECT_EQ(countOf(done.err, "^\n"), 1u) << done.err;
}

TEST_F(Check, ReportsTooDeepNestingOnce) {
    const auto nested = [](const char* first, const char* last) {
        std::string script = "on main\n";
        for (int i = 0; i < 20000; ++i) script += first;
        script += "put 1\n";
        for (int i = 0; i < 20000; ++i) script += last;
        return script + "end\non other\n  if 1 put 2\nend\n";
    };
    const std::pair<const char*, const char*> blocks[] = {
        {"if 1 then\n", "end if\n"}, {"repeat while 1\n", "end repeat\n"}, {"case 1 of\n1:\n", "end case\n"}};
    for (const auto& [first, last] : blocks) {
        const std::string script = text("deep.ls", nested(first, last));
        const CliResult done = krlimage({"check", script});
        EXPECT_EQ(done.code, 1);
        EXPECT_EQ(countOf(done.err, "the statements are nested too deeply"), 1u) << first;
        EXPECT_EQ(countOf(done.err, "^\n"), 2u) << "and the mistake of the other handler";
        EXPECT_EQ(countOf(krlimage({"run", script}).err, "^\n"), 1u) << first;
    }
}

TEST_F(Check, ChecksEveryFormOfStatement) {
    const std::string wrong = "x.krlImageInvert(1)";
    const std::vector<std::string> bodies = {
        wrong,
        "return " + wrong,
        "set y to " + wrong,
        "y = [1, " + wrong + "]",
        "put " + wrong + " into y",
        "put 1, " + wrong,
        "if " + wrong + " then nothing",
        "if 1 then\n  nothing\nelse\n  " + wrong + "\nend if",
        "repeat while " + wrong + "\nend repeat",
        "repeat with i in " + wrong + "\nend repeat",
        "case " + wrong + " of\n  1: nothing\nend case",
        "case 1 of\n  1: " + wrong + "\nend case",
        "case 1 of\n  1: nothing\n  otherwise: " + wrong + "\nend case",
        "y = -f(" + wrong + " + 1)[2].name",
        "y = char 1 to " + wrong + " of \"abc\"",
    };
    for (const std::string& body : bodies)
        EXPECT_TELLS(errorsOf(body), "colourOrAlpha: expected #RGB or #Alpha, got 1") << body;
}

TEST_F(Check, NamesWhatThereIsNotAndWhatNeedsAStage) {
    const std::string script =
        text("names.ls",
             "property pSize\non main me\n  x = lenght(\"a\")\n  put [1].cuont, me.pSize, x.own\n"
             "  put the milisecond, #own\n  sprite(5).locH = 1\n  go 3\n"
             "  x.copyPixels(x, x.rect, x.rect, [#ink: 3, #blendLevl: 5])\n  helper x\nend\n"
             "on helper x\nend\n");
    EXPECT_EQ(krlimage({"check", script}).err, "") << "only where it is asked for";
    const std::string errors = krlimage({"check", "--names", script}).err;
    EXPECT_TELLS(errors, "names.ls:3:7: there is no handler or function \"lenght\", did you mean length?");
    EXPECT_TELLS(errors, "names.ls:4:11: there is no property \"cuont\", did you mean count?");
    EXPECT_TELLS(errors, "names.ls:5:11: there is no \"the milisecond\", did you mean milliseconds?");
    EXPECT_TELLS(errors, "names.ls:6:3: this needs a stage, which krlimage does not have: sprite");
    EXPECT_TELLS(errors, "names.ls:7:3: this needs a stage, which krlimage does not have: go");
    EXPECT_TELLS(errors, "there is no option #blendLevl, did you mean blendLevel?");
    EXPECT_EQ(countOf(errors, "^\n"), 6u) << errors;
}

TEST_F(Check, KnowsThePropertiesOfWhatNeedsAStage) {
    const std::string script =
        text("sprites.ls",
             "on main\n  sprite(1).loc = point(1, 1)\n  put (the stage).drawRect.width\n"
             "  s.loc = 5\n  put s.lco\nend\n");
    const std::string errors = krlimage({"check", "--names", script}).err;
    EXPECT_TELLS(errors, "sprites.ls:2:3: this needs a stage, which krlimage does not have: sprite");
    EXPECT_TELLS(errors, "sprites.ls:3:12: this needs a stage, which krlimage does not have: stage");
    EXPECT_TELLS(errors, "sprites.ls:4:5: this needs a stage, which krlimage does not have: loc");
    EXPECT_TELLS(errors, "sprites.ls:5:9: there is no property \"lco\"");
    EXPECT_EQ(countOf(errors, "^\n"), 4u) << errors;
}

TEST_F(Check, TakesManyHandlersInTheirOrder) {
    std::string script;
    for (int i = 0; i < 80000; ++i)
        script += "on h" + std::to_string(i) + "\n  return h" + std::to_string(i / 2) + "()\nend\n";
    const std::clock_t start = std::clock();
    EXPECT_EQ(krlimage({"check", text("many.ls", script)}).code, 0);
    EXPECT_LT(double(std::clock() - start) / CLOCKS_PER_SEC, 3) << "seconds";
    EXPECT_TELLS(krlimage({"check", text("twice.ls", script + "on h7\nend\n")}).err,
                 "the handler \"h7\" is already defined");
}

TEST_F(Check, ReportsScriptsThatCannotBeParsedOrRead) {
    EXPECT_TELLS(errorsOf("  if 1 put 2"), "a.ls:2:");
    EXPECT_EQ(krlimage({"check", at("none.ls")}).code, 1);
}

TEST(Thumbnails, AverageColoursWeightedByAlpha) {
    Bitmap picture{
        2, 2, {{10, 20, 30, 255}, {30, 40, 50, 255}, {200, 200, 200, 0}, {90, 90, 90, 0}}, nullptr};
    EXPECT_EQ(scaled(picture, 1, 1).pixels, (std::vector<Pixel>{{20, 30, 40, 128}}));
    EXPECT_EQ(scaled(picture, 2, 2).pixels, picture.pixels);
    EXPECT_EQ(scaled(picture, 4, 4).row(0)[3], picture.row(0)[1]);
    EXPECT_EQ(noWiderThan(Bitmap{9, 6, std::vector<Pixel>(54, Pixel{7, 8, 9, 255}), nullptr}, 3).pixels,
              std::vector<Pixel>(6, Pixel{7, 8, 9, 255}));
    EXPECT_EQ(noWiderThan(picture, 2).width, 2);
}

class Sheet : public CliTest {};

TEST_F(Sheet, ShowsEveryEffectWithItsPicture) {
    if (!isPictureName("x.webp")) GTEST_SKIP() << "this build supports only PAM";
    const CliResult done = krlimage({"gallery", picture("in.pam", 48, 32), "-o", at("sheet")});
    ASSERT_EQ(done.code, 0) << done.err;
    EXPECT_EQ(done.out, at("sheet/index.html") + "\n");
    const std::string page = contentOf(at("sheet/index.html"));
    for (const Family& group : catalogue().families())
        for (const Method* method : group.methods) {
            if (method->managesTheEngine()) continue;
            EXPECT_TELLS(page, "<h3>" + method->shortName() + "</h3>");
        }
    EXPECT_TELLS(page, "<code>--look noir</code>");
    EXPECT_TRUE(std::filesystem::exists(at("sheet/noir.webp")));
    EXPECT_EQ(countOf(page, "Failed "), 0u);
    EXPECT_EQ(readPicture(at("sheet/invert.webp")).width, 48);
    EXPECT_TRUE(std::filesystem::exists(at("sheet/thumbnails/invert.webp")));
    EXPECT_TELLS(page, "data-picture=\"invert.webp\"");
    EXPECT_TELLS(page, "src=\"thumbnails/invert.webp\"");
    const std::string all = " of " + std::to_string(shortMethodNames().size()) + " methods and ";
    EXPECT_TELLS(page, all);
}

TEST_F(Sheet, ShowsKeysAndAlphaOnPicturesThatFitThem) {
    if (!isPictureName("x.webp")) GTEST_SKIP() << "this build supports only PAM";
    writePicture(at("grey.pam"), Bitmap{48, 32, std::vector<Pixel>(1536, Pixel{99, 99, 99, 255}), nullptr});
    ASSERT_EQ(krlimage({"gallery", at("grey.pam"), "-o", at("sheet")}).code, 0);
    EXPECT_NE(readPicture(at("sheet/chromaKey.webp")).width, 48);
    EXPECT_NE(readPicture(at("sheet/outerGlow.webp")).width, 48);
    EXPECT_EQ(readPicture(at("sheet/brightness.webp")).width, 48);
    const std::string page = contentOf(at("sheet/index.html"));
    EXPECT_TELLS(page, "On greenscreen.png, which it is made for.");
    EXPECT_TELLS(page, "data-before=\"before-logo.webp\"");
    EXPECT_EQ(countOf(page, "Failed "), 0u);

    Bitmap screen{48, 32, std::vector<Pixel>(1536, Pixel{20, 200, 20, 255}), nullptr};
    screen.pixels.resize(1536 - 100);
    screen.pixels.resize(1536, Pixel{0, 0, 0, 0});
    writePicture(at("screen.pam"), screen);
    ASSERT_EQ(krlimage({"gallery", at("screen.pam"), "-o", at("own")}).code, 0);
    EXPECT_EQ(countOf(contentOf(at("own/index.html")), "which it is made for"), 0u);
}

}  // namespace
}  // namespace krl::player
