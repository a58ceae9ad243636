#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "player/lingo/Parser.h"

namespace krl::player {
namespace {

namespace fs = std::filesystem;

std::unique_ptr<Script> parsed(const std::string& text, SymbolTable& symbols) {
    return parseScript(std::make_shared<Source>(Source{"test.ls", text}), symbols);
}

/// The only handler of a script of these lines.
class Parsing : public testing::Test {
protected:
    const Handler& handler(const std::string& lines) {
        script = parsed("on main\n" + lines + "\nend\n", symbols);
        return *script->handlers.front();
    }

    SymbolTable symbols;
    std::unique_ptr<Script> script;
};

TEST_F(Parsing, AnElseBelongsToTheIfByIndentation) {
    const Handler& outer = handler("  if a then\n    if b then c()\n  else\n    d()\n  end if");
    const auto& first = static_cast<const IfStatement&>(*outer.body.front());
    EXPECT_EQ(first.otherwise.size(), 1u);
    const Handler& inner = handler("  if a then\n    if b then c()\n    else d()\n  end if");
    const auto& second = static_cast<const IfStatement&>(*inner.body.front());
    EXPECT_TRUE(second.otherwise.empty());
    EXPECT_EQ(static_cast<const IfStatement&>(*second.branches[0].body[0]).otherwise.size(), 1u);
}

TEST_F(Parsing, KeywordsCanNameVariables) {
    const Handler& made =
        handler("  line = 1\n  word = line + 2\n  put item\n  char.x = 5\n  to2 = word - 1");
    EXPECT_EQ(made.locals.size(), 5u);
    for (const StatementPointer& statement : made.body)
        EXPECT_TRUE(statement->kind == StatementKind::Assign || statement->kind == StatementKind::Put);
}

TEST_F(Parsing, VariablesHaveTheRightScope) {
    script = parsed(
        "global g\nproperty p\non main g2, p\n  global later\n  g = p + q + later\nend\non other\n  p = 1\n  "
        "later = 2\nend\n",
        symbols);
    const auto& sum = static_cast<const AssignStatement&>(*script->handlers[0]->body[0]);
    EXPECT_EQ(static_cast<const VariableExpression&>(*sum.target).scope, VariableScope::Global);
    const auto& outer = static_cast<const BinaryExpression&>(*sum.value);
    EXPECT_EQ(static_cast<const VariableExpression&>(*outer.right).scope, VariableScope::Global);
    const auto& inner = static_cast<const BinaryExpression&>(*outer.left);
    EXPECT_EQ(static_cast<const VariableExpression&>(*inner.left).scope, VariableScope::Local)
        << "a parameter hides the property";
    const auto& property = static_cast<const AssignStatement&>(*script->handlers[1]->body[0]);
    EXPECT_EQ(static_cast<const VariableExpression&>(*property.target).scope, VariableScope::Property);
    const auto& local = static_cast<const AssignStatement&>(*script->handlers[1]->body[1]);
    EXPECT_EQ(static_cast<const VariableExpression&>(*local.target).scope, VariableScope::Local)
        << "declared in another handler alone";
}

/// In every encoding used by older editors.
TEST_F(Parsing, OlderScriptsContinueALineWithTheNotSign) {
    for (const char* mark : {"\\", "\xC2\xAC", "\xAC", "\xC2"})
        for (const char* end : {"\n", "\r\n", "  \r", " -- why\n"}) {
            const Handler& made = handler(std::string("  x = 1 + ") + mark + end + "  2");
            EXPECT_EQ(made.body.size(), 1u) << mark << end;
        }
    EXPECT_THROW(handler("  x = 1 \xC2\xAC + 2"), ScriptError);
}

TEST_F(Parsing, NoBreakSpacesAreSpaces) {
    EXPECT_EQ(handler("\xC2\xA0 x\xC2\xA0= 1\xC2\xA0").body.size(), 1u);
}

TEST_F(Parsing, LineEndsOfEveryKindCountOnce) {
    const std::string lines[] = {"on main", "  put 1", "  put ?", "end", ""};
    for (const char* end : {"\n", "\r", "\r\n"}) {
        std::string text;
        for (const std::string& line : lines) text += line + end;
        try {
            parsed(text, symbols);
            FAIL();
        } catch (const ScriptError& error) {
            EXPECT_EQ(error.place().line, 3);
            EXPECT_EQ(error.excerpt(), "  put ?\n      ^");
        }
    }
}

/// On separate lines and on a single line alike, since the stack is limited.
TEST_F(Parsing, NestingOfStatementsIsLimited) {
    const auto nested = [](int times, const std::string& open, const std::string& close) {
        std::string lines;
        for (int i = 0; i < times; ++i) lines += open;
        lines += "nothing";
        for (int i = 0; i < times; ++i) lines += close;
        return lines;
    };
    const std::pair<std::string, std::string> forms[] = {
        {"if a then ", ""},
        {"if a then\n", "\nend if"},
        {"case a of\n1: ", "\nend case"},
        {"case a of\n1:\n", "\nend case"},
        {"case a of\notherwise: ", "\nend case"},
        {"if a then repeat while b\n", "\nend repeat"},
        {"repeat with i = 1 to 2\n", "\nend repeat"},
    };
    for (const auto& [open, close] : forms) {
        EXPECT_NO_THROW(handler(nested(40, open, close))) << open;
        try {
            handler(nested(20000, open, close));
            ADD_FAILURE() << open;
        } catch (const ScriptError& error) {
            EXPECT_EQ(error.message(), "the statements are nested too deeply") << open;
            EXPECT_LT(error.excerpt().size(), 500u) << open;
        }
    }
    EXPECT_NO_THROW(handler(nested(20000, "if a then b() else ", ""))) << "consecutive, not nested";
}

TEST_F(Parsing, AByteOrderMarkIsSkipped) {
    EXPECT_EQ(parsed("\xEF\xBB\xBFon main\nend", symbols)->handlers.size(), 1u);
}

/// A script truncated anywhere is parsed or ends in a syntax error.
TEST_F(Parsing, EveryPrefixOfAScriptIsHandled) {
    int refused = 0, scripts = 0;
    for (const auto& entry : fs::directory_iterator(fs::path(KRL_SOURCE_DIR) / "tests" / "scripts")) {
        if (entry.path().extension() != ".ls") continue;
        ++scripts;
        std::ifstream in(entry.path(), std::ios::binary);
        std::ostringstream whole;
        whole << in.rdbuf();
        EXPECT_NO_THROW(parsed(whole.str(), symbols)) << entry.path();
        for (size_t length = 0; length < whole.str().size(); length += 3) {
            try {
                parsed(whole.str().substr(0, length), symbols);
            } catch (const ScriptError& error) {
                EXPECT_GT(error.place().line, 0);
                ++refused;
            }
        }
    }
    EXPECT_GT(scripts, 10);
    EXPECT_GT(refused, 1000);
}

/// All mistakes of a script, as line and column.
std::string mistakesOf(const std::string& text) {
    SymbolTable symbols;
    std::vector<ScriptError> mistakes;
    parseScript(std::make_shared<Source>(Source{"test.ls", text}), symbols, mistakes);
    std::string places;
    for (const ScriptError& mistake : mistakes)
        places += (places.empty() ? "" : " ") + std::to_string(mistake.place().line) + ':' +
                  std::to_string(mistake.place().column);
    return places;
}

TEST(ParsingOn, EveryMistakeIsCollected) {
    EXPECT_EQ(mistakesOf("on main\n  x = 5 6\n  y =\nend\nno\non other\n  put ?\nend\n"), "2:9 3:6 5:1 7:7");
    EXPECT_EQ(mistakesOf("on main\n  put 1\nend\n"), "");
}

TEST(ParsingOn, ABlockWithABrokenFirstLineKeepsItsEnd) {
    EXPECT_EQ(mistakesOf("on main\n  if x put 1\n    if y then\n      z()\n    end if\n  else\n  end if\n"
                         "  repeat until x\n    f()\n  end repeat\nend\non other\nend\n"),
              "2:8 8:10");
}

TEST(ParsingOn, AMissingEndIsReportedOnce) {
    EXPECT_EQ(mistakesOf("on main\n  repeat while a\n    repeat while b\n      f()\n    end repeat\nend\n"
                         "on other\nend\n"),
              "6:1");
    EXPECT_EQ(mistakesOf("on main\n  f()\n"), "") << "the last handler needs none";
}

TEST_F(Parsing, StageStatementsAreCalls) {
    for (const char* line :
         {"go to frame 5", "go 2", "go loop", "go to the frame + 1 of movie \"x\"", "play done",
          "sound playFile 1, \"x\"", "open window \"x\"", "open \"a\" with \"b\""}) {
        const Handler& made = handler(std::string("  ") + line);
        ASSERT_EQ(made.body.size(), 1u) << line;
        EXPECT_EQ(static_cast<const ExpressionStatement&>(*made.body[0]).expression->kind,
                  ExpressionKind::Call)
            << line;
    }
    for (const char* line : {"tell window 1\nf()\nend tell", "tell x to f()", "when keyDown then f()"})
        EXPECT_EQ(handler(line).body[0]->kind, StatementKind::If) << line;
}

TEST_F(Parsing, ReferencesNeedNoBrackets) {
    for (const char* line :
         {"set the locH of sprite 5 to 10", "sprite(5).loc = x", "x = sprite me.spriteNum",
          "x = the name of member 3 of castLib 1", "x = the loc of sprite the spriteNum of me",
          "put 5 into field 3", "x = the number of castMembers of castLib \"a\"", "x = castLib \"a\"",
          "x = member(5) of castLib 2"})
        EXPECT_EQ(handler(line).body.size(), 1u) << line;
}

}  // namespace
}  // namespace krl::player
