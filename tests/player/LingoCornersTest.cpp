#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "player/lingo/Session.h"
#include "support/ScratchFolder.h"

/// Corners of the language where two readings of a line are near each other.
namespace krl::player {
namespace {

/// What a script of these lines prints, or its error.
std::string outcomeOf(const std::string& script, uint64_t memoryLimit = uint64_t{64} << 20,
                      uint64_t stepLimit = UINT64_MAX) {
    const test::ScratchFolder folder;
    std::ofstream(folder.path() / "script.ls") << script;
    std::ostringstream printed;
    SessionOptions options;
    options.output = options.alerts = &printed;
    options.memoryLimit = memoryLimit;
    options.stepLimit = stepLimit;
    Session session(options);
    try {
        session.run(folder.path() / "script.ls", {});
    } catch (const ScriptError& error) {
        return std::to_string(error.place().line) + ':' + std::to_string(error.place().column) + ' ' +
               error.message();
    }
    return printed.str();
}

std::string printedBy(const std::string& lines) { return outcomeOf("on main\n" + lines + "\nend\n"); }

TEST(LingoCorners, CountsWhatHasAFixedNumberOfParts) {
    EXPECT_EQ(printedBy("  put count(point(7, 8)), count(rect(1, 2, 3, 4)), count(9), count(VOID)"),
              "-- 2 4 0 0\n");
}

TEST(LingoCorners, TakesAPropertyNamedLikeAChunkForAProperty) {
    EXPECT_EQ(printedBy("  p = [#word: [#size: 3], #line: 5]\n  put p.word.size, p.line"), "-- 3 5\n");
    EXPECT_EQ(printedBy("  s = \"one two three\"\n  put s.word.count, s.word[2], s.char[2..4]"),
              "-- 3 \"two\" \"ne \"\n");
}

TEST(LingoCorners, ShowsFloatsWithTheirPrecision) {
    const std::string shown = "\n  put 2.0, 1.25, 1.0 / 3, 0.4, 100.0, 1.5e-7";
    EXPECT_EQ(printedBy("  the floatPrecision = 0" + shown), "-- 2 1 0 0 100 0\n");
    EXPECT_EQ(printedBy("  the floatPrecision = -3" + shown), "-- 2.0 1.25 0.333 0.4 100.0 1.500e-7\n");
    EXPECT_EQ(printedBy("  the floatPrecision = 2" + shown), "-- 2.00 1.25 0.33 0.40 100.00 1.50e-7\n");
}

TEST(LingoCorners, CountsTheItemsThatAChunkAddsAndNoOtherPositions) {
    EXPECT_EQ(printedBy("  s = \"abc\"\n  put \"x\" into char 2000000000 of s\n  put s"), "-- \"abcx\"\n");
    EXPECT_EQ(printedBy("  s = \"abc\"\n  put \"x\" into item 2000000000 of s"),
              "3:16 out of memory: the script's values and images may take 64 MB together");
}

TEST(LingoCorners, KeepsACallWithoutBracketsApartFromAnExpressionInThem) {
    const std::string show = "on show a, b\n  put a, b\nend\n";
    EXPECT_EQ(outcomeOf("on main\n  show (1 + 2)\nend\n" + show), "-- 3 <Void>\n");
    EXPECT_EQ(outcomeOf("on main\n  show (1, 2)\nend\n" + show), "-- 1 2\n");
    EXPECT_EQ(outcomeOf("on main\n  show ([1, 2])\nend\n" + show), "-- [1, 2] <Void>\n");
}

TEST(LingoCorners, PlacesAnErrorOfALoopAtTheLoop) {
    EXPECT_EQ(printedBy("  repeat with i = 1 to \"x\"\n  end repeat"),
              "2:3 expected a number to count with, not a string");
    EXPECT_EQ(printedBy("  repeat with i in 5\n  end repeat"),
              "2:3 expected a list to repeat over, not an integer");
}

TEST(LingoCorners, RefusesDeepNestingAtBothEndsOfARange) {
    const std::string deep = std::string(240, '(') + "1" + std::string(240, ')');
    const std::string deeper = std::string(1000, '(') + "1" + std::string(1000, ')');
    for (const std::string& range : {deeper + "..2", "1.." + deeper})
        EXPECT_NE(printedBy("  s = \"abc\"\n  put s.char[" + range + "]").find("nested"), std::string::npos);
    EXPECT_EQ(printedBy("  s = \"abc\"\n  put s.char[1.." + deep + "]"), "-- \"a\"\n");
}

TEST(LingoCorners, NamesAPropertyThatIsNotThere) {
    EXPECT_EQ(printedBy("  p = [#a: 1]\n  p.setProp(#b, 2)"), "3:5 the list has no property #b");
    EXPECT_EQ(printedBy("  p = [#a: 1]\n  p.setProp(#a, 2)\n  put p"), "-- [#a: 2]\n");
}

TEST(LingoCorners, LengthensAListOnlyWithinItsMemory) {
    const auto lengthened = [](int place) {
        return outcomeOf(
            "on main\n  l = [1]\n  setAt(l, " + std::to_string(place) + ", 2)\n  put l.count\nend\n",
            uint64_t{1} << 20);
    };
    EXPECT_EQ(lengthened(1000), "-- 1000\n");
    EXPECT_EQ(lengthened(20000), "-- 20000\n");
    EXPECT_NE(lengthened(200000).find("memory"), std::string::npos);
}

TEST(LingoCorners, GivesTheMemoryOfDroppedValuesBack) {
    const std::string turns =
        "on main\n  repeat with i = 1 to 400\n    l = []\n    setAt(l, 10000, i)\n  end repeat\n"
        "  put l[10000]\nend\n";
    EXPECT_EQ(outcomeOf(turns, uint64_t{1} << 20), "-- 400\n");
}

TEST(LingoCorners, EndsAfterAsManyStepsAsTheHostAllows) {
    const std::string endless = "on main\n  repeat while TRUE\n  end repeat\nend\n";
    EXPECT_EQ(outcomeOf(endless, uint64_t{1} << 20, 100), "2:3 the script takes more than 100 steps");
    EXPECT_EQ(outcomeOf("on main\n  put 1\nend\n", uint64_t{1} << 20, 1), "-- 1\n");
    EXPECT_EQ(outcomeOf("on main\n  put 1\n  put 2\nend\n", uint64_t{1} << 20, 1),
              "2:3 the script takes more than 1 steps")
        << "a block counts when it begins";
}

}  // namespace
}  // namespace krl::player
