#pragma once

#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "player/host/SymbolTable.h"
#include "player/lingo/ScriptError.h"

namespace krl::player {

/// A script's text, kept for error messages.
struct Source {
    std::string name;  ///< for messages; may be empty
    std::string text;

    /// Line `number`, from 1, without its end.
    std::string line(int number) const;
    ScriptError error(Place place, const std::string& message) const;
};

enum class TokenKind {
    End,
    LineEnd,
    Integer,
    Float,
    String,
    Symbol,
    Name,   ///< including keywords: Lingo reserves hardly any
    Mark,   ///< an operator or bracket, in `text`
    Wrong,  ///< what begins no token; `text` is the complaint
};

struct Token {
    TokenKind kind = TokenKind::End;
    Place place;
    std::string text;  ///< a name as spelled, a string's content, a mark
    int32_t integer = 0;
    double real = 0;
    size_t begin = 0, end = 0;  ///< in the source's text

    bool isMark(std::string_view mark) const { return kind == TokenKind::Mark && text == mark; }
    bool isWord(std::string_view word) const { return kind == TokenKind::Name && sameText(text, word); }
    bool isAnyMark(std::initializer_list<std::string_view> marks) const;
    bool isAnyWord(std::initializer_list<std::string_view> words) const;
    bool endsLine() const { return kind == TokenKind::End || kind == TokenKind::LineEnd; }
    /// The token for messages: `"then"`, `the end of the line`.
    std::string described() const;
};

/// Splits a script into tokens: comments and continued line ends are dropped, consecutive line ends are
/// merged, and the last token is `End`. Mistakes become `Wrong` tokens.
std::vector<Token> tokensOf(const Source& source);

}  // namespace krl::player
