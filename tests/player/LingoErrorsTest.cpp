#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "player/lingo/Session.h"
#include "support/ScratchFolder.h"

/// Script errors: the position, what was expected and suggestions.
namespace krl::player {
namespace {

/// Runs a script of these lines and returns its output; errors are thrown.
class Script {
public:
    explicit Script(const std::string& text) {
        std::ofstream(folder_.path() / "script.ls") << text;
        options.output = &printed;
        options.alerts = &printed;
    }
    std::string run() {
        Session session(options);
        session.run(folder_.path() / "script.ls", {});
        return printed.str();
    }
    /// Line, column and message of the error.
    std::string failure() {
        try {
            run();
        } catch (const ScriptError& error) {
            excerpt = error.excerpt();
            return std::to_string(error.place().line) + ':' + std::to_string(error.place().column) + ' ' +
                   error.message();
        }
        return "no failure";
    }

    SessionOptions options;
    std::ostringstream printed;
    std::string excerpt;

private:
    test::ScratchFolder folder_;
};

/// The error of a `main` with these lines, which start at line 2.
std::string failureOf(const std::string& lines) { return Script("on main\n" + lines + "\nend\n").failure(); }

TEST(LingoErrors, SyntaxErrors) {
    EXPECT_EQ(failureOf("  if x = 1 put 2"), "2:12 expected \"then\" after the condition, not \"put\"");
    EXPECT_EQ(failureOf("  put (1 + 2"), "2:13 expected \")\" after the expression, not the end of the line");
    EXPECT_EQ(failureOf("  x = "), "2:7 expected an expression, not the end of the line");
    EXPECT_EQ(failureOf("  put \"open"), "2:7 expected a closing quote on the same line");
    EXPECT_EQ(failureOf("  put 12abc"), "2:9 expected the number to end before \"a\"");
    EXPECT_EQ(failureOf("  x = 5 6"), "2:9 expected the end of the line, not \"6\"");
    EXPECT_EQ(failureOf("  repeat until x"),
              "2:10 expected \"while\" or \"with\" after \"repeat\", not \"until\"");
    EXPECT_EQ(failureOf("  5 = x"), "2:3 expected a statement, not \"5\"");
    EXPECT_EQ(failureOf("  f() = 1"),
              "2:3 expected a variable, a property, an element of a list or a chunk to assign to");
    EXPECT_EQ(failureOf("  put ?"), "2:7 unexpected character \"?\"");
    EXPECT_EQ(failureOf("  put [1, 2"), "2:12 expected \",\" or \"]\" in the list, not the end of the line");
    EXPECT_EQ(failureOf("  put [#a: 1, #b]"), "2:17 expected \":\" after the property, not \"]\"");
    EXPECT_EQ(failureOf("  repeat with i = 1 to 3\n  put i"),
              "4:1 expected \"end repeat\" for the \"repeat\" of line 2, not \"end\"");
    EXPECT_EQ(failureOf("  case 1 of\n  put 2\n  end case"),
              "3:3 expected a value and \":\", \"otherwise\" or \"end case\", not \"put\"");
    EXPECT_EQ(failureOf("  put 1 \\ 2"), "2:9 expected the end of the line after \"\\\", which continues it");
}

TEST(LingoErrors, SaysWhatToWriteInsteadOfWhatOtherLanguagesDo) {
    EXPECT_EQ(failureOf("  if x == 1 then put 2"),
              "2:9 expected an expression, not \"=\"; equality is written =");
    EXPECT_EQ(failureOf("  x += 1"), "2:5 expected \"=\" or the end of the line, not \"+\"; write x = x + 1");
    EXPECT_EQ(failureOf("  x++"), "2:4 expected \"=\" or the end of the line, not \"+\"; write x = x + 1");
    EXPECT_EQ(failureOf("  // note"), "2:3 expected a statement, not \"/\"; a comment begins with --");
    EXPECT_EQ(failureOf("  x = 1 // note"),
              "2:10 expected an expression, not \"/\"; a comment begins with --");
    EXPECT_EQ(failureOf("  if x != 1 then put 2"), "2:8 unexpected \"!=\"; unequal is written <>");
    EXPECT_EQ(failureOf("  put 'a'"), "2:7 unexpected \"'\"; strings are in double quotes");
    EXPECT_EQ(failureOf("  put 1;"), "2:8 unexpected \";\"; a statement ends with its line");
}

TEST(LingoErrors, SaysHowALineGoesOn) {
    EXPECT_EQ(failureOf("  x = [1,\n    2]"),
              "2:10 expected an expression, not the end of the line; a line that goes on ends with \"\\\"");
    EXPECT_EQ(
        failureOf("  x = [1\n    , 2]"),
        "2:9 expected \",\" or \"]\" in the list, not the end of the line; a line that goes on ends with "
        "\"\\\"");
}

TEST(LingoErrors, CountsTheArgumentsOfAMethodAfterTheDot) {
    const std::string image = "  i = image(2, 2, 32)\n";
    EXPECT_EQ(failureOf(image + "  i.fill(i.rect, \"red\")"),
              "3:5 fill: expected a colour or a property list as argument 2, not a string");
    EXPECT_EQ(failureOf(image + "  fill(i, i.rect, \"red\")"),
              "3:3 fill: expected a colour or a property list as argument 3, not a string");
    EXPECT_EQ(failureOf(image + "  i.copyPixels(i, i.rect)"),
              "3:5 copyPixels takes at least 3 arguments, not 2");
    EXPECT_EQ(failureOf("  put 5.paramCount()"), "2:9 paramCount takes at most 0 arguments, not 1");
    EXPECT_EQ(failureOf(image + "  i.rotate(90)"),
              "3:5 rotate: expected a transform before the dot, not an image");
}

TEST(LingoErrors, NamesAVariableWithoutAValue) {
    EXPECT_EQ(failureOf("  put picture.width"),
              "2:15 VOID has no property \"width\": the variable \"picture\" has no value yet");
    EXPECT_EQ(failureOf("  put list[1]"),
              "2:11 expected a list before the brackets, not VOID: the variable \"list\" has no value yet");
    EXPECT_EQ(failureOf("  list[1] = 2"),
              "2:7 expected a list before the brackets, not VOID: the variable \"list\" has no value yet");
    EXPECT_EQ(failureOf("  put [VOID][1].width"), "2:17 VOID has no property \"width\"");
}

TEST(LingoErrors, RefusesRangesOfWhatIsNoString) {
    EXPECT_EQ(failureOf("  put [1, 2, 3][1..2]"),
              "2:16 expected a string before the brackets with a range, not a list");
    EXPECT_EQ(failureOf("  list = [1, 2]\n  put 5 into list[1..2]"),
              "3:18 expected a string before the brackets with a range, not a list");
    EXPECT_EQ(failureOf("  s = \"abc\"\n  delete s[1]"),
              "3:11 expected a list to delete from, not a string: delete char n of changes a text");
}

TEST(LingoErrors, NamesMembersByNumberWhereTheyHaveNoName) {
    EXPECT_EQ(failureOf("  put member(3).image"), "2:17 there is no picture for the member 3");
    EXPECT_EQ(failureOf("  put member(3).text"), "2:17 there is no text for the member 3");
}

TEST(LingoErrors, PlacesAnErrorOfATextAtTheStatementThatRunsIt) {
    EXPECT_EQ(failureOf("  do \"x = 1\" & RETURN & \"put nowhere(x)\""),
              "2:3 line 2, column 5 of the text: there is no handler or function \"nowhere\"");
    EXPECT_EQ(failureOf("  do \"put 1 +\""),
              "2:3 line 1, column 8 of the text: expected an expression, not the end of the line");
    EXPECT_EQ(Script("on main\n  do \"helper\"\nend\non helper\n  put nowhere()\nend\n").failure(),
              "5:7 there is no handler or function \"nowhere\"");
}

TEST(LingoErrors, RefusesTheLayoutOfMembers) {
    EXPECT_EQ(failureOf("  put member(\"page\").fontSize"),
              "2:22 this needs a stage, which krlimage does not have: the fontSize");
    EXPECT_EQ(failureOf("  set the font of member \"page\" = \"Arial\""),
              "2:11 this needs a stage, which krlimage does not have: the font");
    EXPECT_EQ(failureOf("  put member(\"page\").fontSise"), "2:22 a member has no property \"fontSise\"");
    Script skipping("on main\n  member(\"page\").fontSize = 12\n  put member(\"page\").fontSize\nend\n");
    skipping.options.stageless = Stageless::Ignore;
    EXPECT_EQ(skipping.run(), "-- <Void>\nskipped without a stage: fontSize (2 times)\n");
}

TEST(LingoErrors, RefusesSoundAndOtherXtras) {
    EXPECT_EQ(failureOf("  put _sound.soundLevel"),
              "2:7 this needs sound, which krlimage does not have: _sound()");
    EXPECT_EQ(failureOf("  openXlib \"FileIO\""),
              "2:3 this needs other xtras, which krlimage does not have: openXlib(\"FileIO\")");
}

TEST(LingoErrors, MisspelledStatements) {
    EXPECT_EQ(failureOf("  retrun x y"),
              "2:12 expected \",\" or the end of the line, not \"y\", did you mean return?");
    EXPECT_EQ(Script("no main\nend\n").failure(),
              "1:1 expected a handler, which begins with \"on\", not \"no\", did you mean on?");
}

TEST(LingoErrors, TheCaretIsUnderTheColumn) {
    Script script("on main\n\tput 1 +\nend\n");
    EXPECT_EQ(script.failure(), "2:9 expected an expression, not the end of the line");
    EXPECT_EQ(script.excerpt, "\tput 1 +\n\t       ^");
}

TEST(LingoErrors, TheExcerptOfAVeryLongLineShowsThePartAroundTheColumn) {
    const std::string sum = "1 + ";
    std::string line = "put ";
    while (line.size() < 3000) line += sum;
    const std::string whole = line + ", " + line;
    const ScriptError inside("a.ls", {1, static_cast<int>(line.size()) + 1}, "wrong", whole);
    const std::string shown = inside.excerpt();
    const size_t end = shown.find('\n');
    EXPECT_LT(end, 200u);
    EXPECT_EQ(shown.substr(0, 3), "...");
    EXPECT_EQ(shown.substr(end - 3, 3), "...");
    EXPECT_EQ(shown[shown.size() - 1 - (end + 1)], ',') << "the caret is under the comma";
    const ScriptError first("a.ls", {1, 1}, "wrong", whole);
    EXPECT_EQ(first.excerpt().substr(0, 7), "put 1 +");
    EXPECT_EQ(first.excerpt().substr(first.excerpt().size() - 2), "\n^");
    // No character is split.
    std::string umlauts;
    for (int i = 0; i < 400; ++i) umlauts += "\xC3\xA4";
    for (int column = 200; column < 204; ++column) {
        const std::string cut = ScriptError("a.ls", {1, column}, "wrong", umlauts).excerpt();
        EXPECT_EQ(cut.substr(0, 5), "...\xC3\xA4") << column;
        EXPECT_EQ(cut[cut.find('\n') - 4], '\xA4') << column;
    }
}

TEST(LingoErrors, TheLineStartsWithFileLineAndColumn) {
    const test::ScratchFolder folder;
    std::ofstream(folder.path() / "bad.ls") << "on main\n  put\n  put nothingHere()\nend\n";
    std::ostringstream out;
    SessionOptions options;
    options.output = &out;
    Session session(options);
    try {
        session.run(folder.path() / "bad.ls", {});
        FAIL();
    } catch (const ScriptError& error) {
        EXPECT_EQ(std::string(error.what()), (folder.path() / "bad.ls").string() +
                                                 ":3:7: there is no handler or function \"nothingHere\"");
    }
    EXPECT_EQ(out.str(), "--\n");
}

TEST(LingoErrors, MisspelledNames) {
    EXPECT_EQ(failureOf("  put lenght(\"x\")"),
              "2:7 there is no handler or function \"lenght\", did you mean length?");
    EXPECT_EQ(failureOf("  put [1].cuont"), "2:11 a list has no property \"cuont\", did you mean count?");
    EXPECT_EQ(failureOf("  p = [#speed: 1]\n  put p.sped"),
              "3:9 a property list has no property \"sped\", did you mean speed?");
    EXPECT_EQ(failureOf("  put the milisecond"),
              "2:11 there is no \"the milisecond\", did you mean milliseconds?");
    EXPECT_EQ(
        failureOf("  x = new(xtra \"KRLImageXtra\")\n  x.krlImageBrightnes(1, #RGB)"),
        "3:5 an instance of an xtra has no method \"krlImageBrightnes\", did you mean krlImageBrightness?");
    EXPECT_EQ(failureOf("  put xtra(\"Other\")"), "2:7 there is no xtra \"Other\", only \"KRLImageXtra\"");
    EXPECT_EQ(Script("on main\n  helo\nend\non hello\nend\n").failure(),
              "2:3 there is no handler or function \"helo\", did you mean hello?");
}

TEST(LingoErrors, WhatNeedsAStageIsRefused) {
    EXPECT_EQ(failureOf("  sprite(5).locH = 1"),
              "2:3 this needs a stage, which krlimage does not have: sprite(5)");
    EXPECT_EQ(failureOf("  go to frame 5"), "2:3 this needs a stage, which krlimage does not have: go(5)");
    EXPECT_EQ(failureOf("  x = the mouseH"),
              "2:11 this needs a stage, which krlimage does not have: the mouseH");
    EXPECT_EQ(failureOf("  the stageColor = 3"),
              "2:7 this needs a stage, which krlimage does not have: the stageColor");
    EXPECT_EQ(failureOf("  puppetSound \"bang\""),
              "2:3 this needs sound, which krlimage does not have: puppetSound(\"bang\")");
    EXPECT_EQ(failureOf("  getNetText \"page\""),
              "2:3 this needs a network, which krlimage does not have: getNetText(\"page\")");
    EXPECT_EQ(failureOf("  put getPref(\"size\")"),
              "2:7 this needs preferences, which krlimage does not have: getPref(\"size\")");
    EXPECT_EQ(failureOf("  put member(1) of castLib 2 & castLib(2)"),
              "2:32 there is no castLib 2, only 1, \"Internal\"");
    EXPECT_EQ(failureOf("  tell window 1\n    f()\n  end tell"),
              "2:8 this needs a stage, which krlimage does not have: window(1)");
}

TEST(LingoErrors, WhatNeedsAStageCanBeSkipped) {
    Script script(
        "on main\n  sprite(5).locH = 1\n  sprite(6).image.fill(1)\n  put the mouseH, sprite(1)[2]\n"
        "  the stageColor = 3\n  tell window 1\n    put 5\n  end tell\n  updateStage\nend\n");
    script.options.stageless = Stageless::Ignore;
    EXPECT_EQ(script.run(),
              "-- <Void> <Void>\n"
              "skipped without a stage: mouseH, sprite (3 times), stageColor, tell, updateStage, window\n");
}

TEST(LingoErrors, AStringOrListMayHaveALimit) {
    const auto failure = [](const std::string& body) {
        Script script("on main\n" + body + "\nend\n");
        script.options.valueLimit = uint64_t{1} << 20;
        return script.failure();
    };
    EXPECT_EQ(failure("  s = \"ab\"\n  repeat while TRUE\n    put s after s\n  end repeat"),
              "4:5 a string may take at most 1 MB");
    EXPECT_EQ(failure("  l = []\n  repeat while TRUE\n    l.add(1)\n  end repeat"),
              "4:7 a list may take at most 1 MB");
    EXPECT_EQ(failure("  l = [:]\n  repeat with i = 1 to 1000000\n    l.addProp(i, 1)\n  end repeat"),
              "4:7 a list may take at most 1 MB");
}

TEST(LingoErrors, FramesRunAfterTheStart) {
    Script script(
        "on startMovie\n  put \"start\"\nend\non exitFrame\n  put the frame\nend\n"
        "on stopMovie\n  put \"stop\"\nend\n");
    script.options.frames = 2;
    EXPECT_EQ(script.run(), "-- \"start\"\n-- 1\n-- 2\n-- \"stop\"\n");
}

TEST(LingoErrors, WrongTypesOfValues) {
    EXPECT_EQ(failureOf("  put 1 / 0"), "2:9 an integer cannot be divided by zero");
    EXPECT_EQ(failureOf("  put 1 mod 0"), "2:9 an integer cannot be divided by zero");
    EXPECT_EQ(failureOf("  put 1 + #a"),
              "2:9 expected numbers on both sides of \"+\", not an integer and a symbol");
    EXPECT_EQ(failureOf("  put [1][2]"), "2:10 list: expected an index from 1 to 1, not 2");
    EXPECT_EQ(failureOf("  put sqrt(\"x\")"), "2:7 sqrt: expected a number as argument 1, not a string");
    EXPECT_EQ(failureOf("  put sqrt()"), "2:7 sqrt takes at least 1 argument, not 0");
    EXPECT_EQ(failureOf("  put abs(1, 2)"), "2:7 abs takes at most 1 argument, not 2");
    EXPECT_EQ(failureOf("  x = 5\n  x.y = 1"), "3:5 an integer has no property \"y\"");
    EXPECT_EQ(failureOf("  repeat with x in 5\n  end repeat"),
              "2:3 expected a list to repeat over, not an integer");
    EXPECT_EQ(failureOf("  put rgb(\"blue\")"),
              "2:7 rgb: expected a colour such as \"#FF8000\", not \"blue\"");
    EXPECT_EQ(failureOf("  put image(0, 5, 32)"),
              "2:7 an image must be at least 1 pixel wide and high, not 0 by 5");
    EXPECT_EQ(failureOf("  put image(100000, 100000, 32)"),
              "2:7 an image of 100000 by 100000 pixels is larger than 2 GB");
    EXPECT_EQ(failureOf("  img = image(2, 2, 32)\n  img.width = 3"),
              "3:7 the property \"width\" of an image cannot be set");
    EXPECT_EQ(failureOf("  put getProp([#a: 1], #b)"), "2:7 the list has no property #b");
    EXPECT_EQ(failureOf("  p = point(1, 2)\n  p[1] = \"x\""),
              "3:4 expected a number for a coordinate, not a string");
    EXPECT_EQ(failureOf("  r = rect(1, 2, 3, 4)\n  setAt(r, 4, [])"),
              "3:3 expected a number for a coordinate, not a list");
    EXPECT_EQ(failureOf("  x = [1].integer"), "2:11 a list has no property \"integer\"");
    EXPECT_EQ(failureOf("  x = \"a\".alert"), "2:11 a string has no property \"alert\"");
    const std::string image = "  i = image(2, 2, 32)\n";
    EXPECT_EQ(failureOf(image + "  i.fill(i.rect, [#shapeType: #star, #color: rgb(1, 2, 3)])"),
              "3:5 fill: expected the #shapeType #rect, #oval, #roundRect or #line, not #star");
    EXPECT_EQ(failureOf(image + "  i.copyPixels(i, i.rect, i.rect, [#blendLevl: 5])"),
              "3:5 copyPixels: there is no option #blendLevl, did you mean blendLevel?");
    EXPECT_EQ(failureOf(image + "  i.copyPixels(i, i.rect, i.rect, [#ink: #darkst])"),
              "3:5 copyPixels: there is no ink #darkst, did you mean darkest?");
    EXPECT_EQ(failureOf(image + "  i.copyPixels(i, [1, 2], i.rect)"),
              "3:5 copyPixels: expected a rect or a list of four points as argument 2, not a list");
    EXPECT_EQ(failureOf(image + "  i.copyPixels(i, i.rect, i.rect, [#maskImage: i, #maskOffset: 1])"),
              "3:5 copyPixels: expected a point under #maskOffset, not an integer");
}

TEST(LingoErrors, RecursionIsBounded) {
    EXPECT_EQ(Script("on main\n  again\nend\non again\n  again\nend\n").failure(),
              "5:3 handlers call each other more than 400 deep; \"again\" may never end");
    std::string deep = "on main\n  put ";
    for (int i = 0; i < 100000; ++i) deep += '(';
    EXPECT_EQ(Script(deep).failure().substr(0, 5), "2:257");
    deep = "on main\n  put 1";
    for (int i = 0; i < 100000; ++i) deep += " + 1";
    EXPECT_NE(Script(deep).failure().find("nested too deeply"), std::string::npos);
    deep = "on main\n";
    for (int i = 0; i < 100000; ++i) deep += "if 1 then\n";
    EXPECT_NE(Script(deep).failure().find("nested too deeply"), std::string::npos);
    deep = "on main\n  put ";
    for (int i = 0; i < 100000; ++i) deep += "- ";
    EXPECT_NE(Script(deep).failure().find("nested too deeply"), std::string::npos);
}

/// Handlers of any depth and size, where more calls are allowed than the stack holds.
TEST(LingoErrors, TheStackIsBounded) {
    const auto repeated = [](int times, const std::string& text) {
        std::string all;
        for (int i = 0; i < times; ++i) all += text;
        return all;
    };
    const std::string bodies[] = {
        "return " + repeated(240, "abs(") + "deep(n - 1)" + repeated(240, ")"),
        "return " + repeated(60, "[#a: [") + "deep(n - 1)" + repeated(60, "]]"),
        repeated(90, "if 1 then\n") + "return deep(n - 1)\n" + repeated(90, "end if\n"),
    };
    for (const std::string& body : bodies) {
        Script script("on main\n  deep(100000)\nend\non deep n\n" + body + "\nend\n");
        script.options.recursionLimit = 1000000;
        const std::string message = script.failure();
        EXPECT_NE(message.find("the calls and expressions are nested too deeply"), std::string::npos)
            << message;
    }
}

TEST(LingoErrors, DeepButAllowedScriptsRun) {
    std::string inner = "1";
    for (int i = 0; i < 200; ++i) inner = "(" + inner + ")";
    // Each of the allowed handlers evaluates an expression of the greatest allowed depth.
    Script script("on main\n  put deep(390)\nend\non deep n\n  if n = 0 then return " + inner +
                  "\n  return deep(n - 1) + 1\nend\n");
    EXPECT_EQ(script.failure(), "no failure");
    EXPECT_EQ(script.printed.str(), "-- 391\n");
}

// Their variables take several pieces of memory, each of which is entered again once it was left.
TEST(LingoErrors, ThousandsOfHandlersKeepTheirVariables) {
    Script script(
        "on main\n  put sum(3000)\n  put sum(2)\n  put sum(3000)\nend\n"
        "on sum n\n  if n = 0 then return 0\n  own = [n]\n  rest = sum(n - 1)\n"
        "  return rest + last(own)\nend\n"
        "on last all\n  other = all.duplicate()\n  return other[1]\nend\n");
    script.options.recursionLimit = 5000;
    EXPECT_EQ(script.failure(), "no failure");
    EXPECT_EQ(script.printed.str(), "-- 4501500\n-- 3\n-- 4501500\n");
}

TEST(LingoErrors, ListsThatContainThemselvesEndInAMessage) {
    EXPECT_EQ(failureOf("  l = []\n  l.add(l)\n  put l"), "4:3 the list to show is nested too deeply");
    EXPECT_EQ(failureOf("  l = []\n  l.add(l)\n  m = []\n  m.add(m)\n  put l = m"),
              "6:9 the lists to compare are nested too deeply");
    EXPECT_EQ(failureOf("  l = []\n  l.add(l)\n  m = l.duplicate()"),
              "4:9 duplicate: the list is nested too deeply");
    EXPECT_EQ(failureOf("  l = [1]\n  l.add(l)\n  l = l + 1"),
              "4:9 the lists in this calculation are nested too deeply");
}

TEST(LingoErrors, MemoryIsBounded) {
    const char* const hungry[] = {
        "on main\n  s = \"0123456789\"\n  repeat while TRUE\n    s = s & s\n  end repeat\nend\n",
        "on main\n  l = []\n  repeat while TRUE\n    l.add([1, 2, 3])\n  end repeat\nend\n",
        "on main\n  l = []\n  repeat while TRUE\n    l.add(0.5)\n  end repeat\nend\n",
        "on main\n  l = []\n  repeat while TRUE\n    l.add(image(500, 500, 32))\n  end repeat\nend\n",
        "on main\n  l = []\n  l[2000000000] = 1\nend\n",
        "on main\n  s = \"\"\n  put \"x\" into item 2000000000 of s\nend\n",
        "on main\n  s = \"0123456789\"\n  repeat while TRUE\n    put s after s\n  end repeat\nend\n",
    };
    for (const char* text : hungry) {
        Script script(text);
        script.options.memoryLimit = uint64_t(32) << 20;
        EXPECT_NE(
            script.failure().find("out of memory: the script's values and images may take 32 MB together"),
            std::string::npos)
            << text << script.failure();
    }
}

TEST(LingoErrors, AFailedScriptLeavesNothingBehind) {
    const test::ScratchFolder folder;
    std::ofstream(folder.path() / "fails.ls") << "global g\non main\n  g = [image(2, 2, 32), new(xtra "
                                                 "\"KRLImageXtra\")]\n  l = [g]\n  l.add(l)\n  oops\nend\n";
    Session session({});
    EXPECT_THROW(session.run(folder.path() / "fails.ls", {}), ScriptError);
    EXPECT_EQ(session.close().text(), "nothing");
}

TEST(LingoErrors, MissingScripts) {
    Session session({});
    EXPECT_THROW(session.run("no such script.ls", {}), ScriptError);
    EXPECT_EQ(Script("").failure().substr(0, 4), "0:0 ");
    EXPECT_EQ(
        Script("-- nothing but a comment").failure().find("expected a handler to run") != std::string::npos,
        true);
}

}  // namespace
}  // namespace krl::player
