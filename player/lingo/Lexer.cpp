#include "player/lingo/Lexer.h"

#include <algorithm>

#include "player/host/Compare.h"

namespace krl::player {

namespace {

bool isDigit(char letter) { return letter >= '0' && letter <= '9'; }
bool isBlank(char letter) { return letter == ' ' || letter == '\t'; }
bool isPlainLetter(char letter) {
    return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') || letter == '_' ||
           letter == '$';
}

/// Second byte of the no-break space in UTF-8, which is common in text from the web.
constexpr char kNoBreak = '\xA0';

/// What other languages write, and what to write in Lingo.
struct ForeignMark {
    std::string_view mark;
    const char* instead;
};
constexpr ForeignMark kForeignMarks[] = {
    {"!=", "unequal is written <>"},
    {"'", "strings are in double quotes"},
    {";", "a statement ends with its line"},
};

class Lexer {
public:
    explicit Lexer(const Source& source) : text_(source.text) {}

    std::vector<Token> run() {
        if (text_.substr(0, 3) == "\xEF\xBB\xBF") at_ = 3;  // UTF-8 byte order mark
        lineStart_ = at_;
        tokens_.reserve(text_.size() / 4);
        while (at_ < text_.size()) step();
        if (!tokens_.empty() && tokens_.back().kind != TokenKind::LineEnd) add(TokenKind::LineEnd, at_);
        add(TokenKind::End, at_);
        return std::move(tokens_);
    }

private:
    char peek(size_t ahead = 0) const { return at_ + ahead < text_.size() ? text_[at_ + ahead] : '\0'; }
    Place placeOf(size_t position) const { return {line_, static_cast<int>(position - lineStart_) + 1}; }

    Token& add(TokenKind kind, size_t begin) {
        Token& token = tokens_.emplace_back();
        token.kind = kind;
        token.place = placeOf(begin);
        token.begin = begin;
        token.end = at_;
        token.text = text_.substr(begin, at_ - begin);
        return token;
    }

    void step() {
        const char letter = peek();
        if (isBlank(letter))
            ++at_;
        else if (letter == '\xC2' && peek(1) == kNoBreak)
            at_ += 2;
        else if (letter == '\n' || letter == '\r')
            endLine();
        else if (letter == '-' && peek(1) == '-')
            skipComment();
        else if (continuationBytes() > 0)
            continueLine();
        else if (letter == '"')
            takeString();
        else if (letter == '#')
            takeSymbol();
        else if (isDigit(letter) || (letter == '.' && isDigit(peek(1))))
            takeNumber();
        else if (nameBytes() > 0)
            takeName();
        else
            takeMark();
    }

    Token& addWrong(Place place, size_t begin, std::string complaint) {
        Token& token = add(TokenKind::Wrong, begin);
        token.place = place;
        token.text = std::move(complaint);
        return token;
    }

    /// A comment that ends with a continuation mark goes on in the next line if it has its line to itself.
    /// After code, it is the code that goes on, if it is unfinished.
    void skipComment() {
        const bool alone = tokens_.empty() || tokens_.back().kind == TokenKind::LineEnd;
        do {
            const size_t begin = at_;
            while (!atLineEnd()) ++at_;
            size_t last = at_;
            while (last > begin && isBlank(text_[last - 1])) --last;
            if (text_[last - 1] != '\\' || at_ == text_.size()) return;
            if (!alone && !isUnfinished()) return;
            passLineEnd();
        } while (alone);
    }

    /// Whether the statement of this line needs the next line: a bracket is open, or an operand is missing
    /// before or after the line end here.
    bool isUnfinished() const {
        const Token& last = tokens_.back();
        if (brackets_ > 0 || last.isAnyWord({"and", "or", "not", "mod", "contains", "starts"})) return true;
        if (last.kind == TokenKind::Mark && !last.isAnyMark({")", "]", "}"})) return true;
        size_t next = at_ + (peek() == '\r' && peek(1) == '\n' ? 2 : 1);
        while (next < text_.size() && isBlank(text_[next])) ++next;
        const std::string_view rest = text_.substr(next);
        const bool comment = rest.substr(0, 2) == "--";
        return !comment && !rest.empty() && std::string_view("+-*/&=<>,.)]}").find(rest.front()) < SIZE_MAX;
    }

    bool atLineEnd() const { return at_ >= text_.size() || peek() == '\n' || peek() == '\r'; }

    /// Takes one line end of any of the three kinds.
    void passLineEnd() {
        at_ += peek() == '\r' && peek(1) == '\n' ? 2 : 1;
        ++line_;
        lineStart_ = at_;
    }

    void endLine() {
        if (!tokens_.empty() && tokens_.back().kind != TokenKind::LineEnd) add(TokenKind::LineEnd, at_);
        brackets_ = 0;
        passLineEnd();
    }

    /// Length of a line continuation mark, 0 if there is none: a backslash, or the not sign of older scripts
    /// in UTF-8, Mac Roman or Latin-1.
    size_t continuationBytes() const {
        if (peek() == '\\' || peek() == '\xAC') return 1;
        if (peek() != '\xC2') return 0;
        if (peek(1) == '\xAC') return 2;
        return (peek(1) & 0xC0) == 0x80 ? 0 : 1;
    }

    void continueLine() {
        const size_t begin = at_;
        at_ += continuationBytes();
        while (isBlank(peek())) ++at_;
        if (peek() == '-' && peek(1) == '-')
            while (!atLineEnd()) ++at_;
        if (!atLineEnd())
            addWrong(placeOf(begin), begin, "expected the end of the line after \"\\\", which continues it");
        else if (at_ < text_.size())
            passLineEnd();
    }

    /// A string may go on in the next line after a continuation mark.
    void takeString() {
        const size_t begin = at_++;
        const Place place = placeOf(begin);
        std::string characters;
        while (!atLineEnd() && peek() != '"') {
            const size_t mark = at_;
            if (peek() != '\\' || !stringContinues()) {
                at_ = mark + 1;
                characters += text_[mark];
            }
        }
        if (peek() != '"') {
            addWrong(place, begin, "expected a closing quote on the same line");
            return;
        }
        ++at_;
        Token& token = add(TokenKind::String, begin);
        token.place = place;
        token.text = std::move(characters);
    }

    /// Passes a backslash and the line end after it, if the string closes in one of the following lines.
    bool stringContinues() {
        ++at_;
        while (isBlank(peek())) ++at_;
        if (!atLineEnd() || at_ == text_.size()) return false;
        const size_t quote = text_.find('"', at_);
        if (quote == std::string_view::npos) return false;
        passLineEnd();
        return true;
    }

    void takeSymbol() {
        const size_t begin = at_++;
        if (!takeNameParts()) {
            addWrong(placeOf(begin), begin, "expected a name after \"#\"");
            return;
        }
        Token& token = add(TokenKind::Symbol, begin);
        token.text.erase(0, 1);
    }

    /// Length of the letter here that may begin a name: ASCII, `$`, or any letter beyond ASCII in UTF-8 or
    /// an older encoding. General punctuation, such as curly quotes, is none.
    size_t nameBytes() const {
        if (isPlainLetter(peek())) return 1;
        if (!(peek() & 0x80) || continuationBytes() > 0) return 0;
        if (peek() == '\xC2') return peek(1) == kNoBreak ? 0 : 2;
        const bool punctuation = peek() == '\xE2' && (peek(1) == '\x80' || peek(1) == '\x81');
        return punctuation ? 0 : 1;
    }

    bool takeNameParts() {
        const size_t begin = at_;
        while (isDigit(peek()) || nameBytes() > 0) at_ += std::max<size_t>(nameBytes(), 1);
        return at_ > begin;
    }

    void takeName() {
        const size_t begin = at_;
        takeNameParts();
        add(TokenKind::Name, begin);
    }

    /// Whether the dot here is that of a number: not of a range, and not before the name of a property.
    bool endsNumber() const { return peek(1) != '.' && (peek(1) & 0x80) == 0 && !isPlainLetter(peek(1)); }

    void takeNumber() {
        const size_t begin = at_;
        while (isDigit(peek())) ++at_;
        bool real = false;
        if (peek() == '.' && endsNumber()) {
            real = true;
            do ++at_;
            while (isDigit(peek()));
        }
        const size_t sign = peek(1) == '+' || peek(1) == '-' ? 2 : 1;
        if ((peek() == 'e' || peek() == 'E') && isDigit(peek(sign))) {
            real = true;
            at_ += sign;
            while (isDigit(peek())) ++at_;
        }
        if (isPlainLetter(peek())) {
            const size_t tail = at_;
            takeNameParts();
            addWrong(placeOf(tail), begin,
                     "expected the number to end before \"" + std::string(1, text_[tail]) + '"');
            return;
        }
        Token& token = add(real ? TokenKind::Float : TokenKind::Integer, begin);
        // Integers wrap to 32 bits, like all of Lingo's arithmetic.
        if (!real)
            for (char digit : token.text)
                token.integer = static_cast<int32_t>(static_cast<uint32_t>(token.integer) * 10u +
                                                     static_cast<uint32_t>(digit - '0'));
        else if (!readNumber(token.text, token.real))
            addWrong(token.place, begin, "the number is out of range for a float");
    }

    void takeMark() {
        static constexpr std::string_view kPairs[] = {"..", "<>", "<=", ">=", "&&"};
        static constexpr std::string_view kOpening = "([{", kClosing = ")]}", kOthers = ",:.=<>&+-*/";
        const size_t begin = at_;
        const auto has = [&](std::string_view marks) { return marks.find(peek()) < marks.size(); };
        const bool opens = has(kOpening), closes = has(kClosing);
        const bool isPair =
            std::find(std::begin(kPairs), std::end(kPairs), text_.substr(at_, 2)) != std::end(kPairs);
        if (opens || closes || isPair || has(kOthers)) {
            at_ += isPair ? 2 : 1;
            brackets_ += opens - closes;
            add(TokenKind::Mark, begin);
            return;
        }
        for (const auto& [foreign, instead] : kForeignMarks)
            if (text_.substr(at_, foreign.size()) == foreign) {
                at_ += foreign.size();
                addWrong(placeOf(begin), begin, "unexpected \"" + std::string(foreign) + "\"; " + instead);
                return;
            }
        const bool shown = peek() > ' ' && peek() < 0x7F;
        const std::string complaint =
            shown ? "unexpected character \"" + std::string(1, peek()) + '"' : "unexpected character";
        do ++at_;
        while ((peek() & 0xC0) == 0x80);
        addWrong(placeOf(begin), begin, complaint);
    }

    std::string_view text_;
    size_t at_ = 0;
    size_t lineStart_ = 0;
    int line_ = 1;
    int brackets_ = 0;  ///< open ones in this statement
    std::vector<Token> tokens_;
};

}  // namespace

std::string Source::line(int number) const {
    size_t begin = text.rfind("\xEF\xBB\xBF", 0) == 0 ? 3 : 0;
    for (int passed = 1; passed < number; ++passed) {
        const size_t end = text.find_first_of("\r\n", begin);
        if (end == std::string::npos) return "";
        begin = end + (text.compare(end, 2, "\r\n") == 0 ? 2 : 1);
    }
    return text.substr(begin, text.find_first_of("\r\n", begin) - begin);
}

ScriptError Source::error(Place place, const std::string& message) const {
    return ScriptError(name, place, message, line(place.line));
}

bool Token::isAnyMark(std::initializer_list<std::string_view> marks) const {
    return std::any_of(marks.begin(), marks.end(), [this](std::string_view mark) { return isMark(mark); });
}

bool Token::isAnyWord(std::initializer_list<std::string_view> words) const {
    return std::any_of(words.begin(), words.end(), [this](std::string_view word) { return isWord(word); });
}

std::string Token::described() const {
    if (kind == TokenKind::End) return "the end of the script";
    if (kind == TokenKind::LineEnd) return "the end of the line";
    if (kind == TokenKind::Symbol) return "#" + text;
    if (kind == TokenKind::String) return "a string";
    return '"' + text + '"';
}

std::vector<Token> tokensOf(const Source& source) { return Lexer(source).run(); }

}  // namespace krl::player
