#include "player/lingo/Parser.h"
#include "player/lingo/Session.h"

/// Parses calls from the command line without running them.
namespace krl::player {

namespace {

class CallReader {
public:
    explicit CallReader(std::string_view text)
        : source_(std::make_shared<Source>(Source{"call", std::string(text)})), tokens_(tokensOf(*source_)) {
        for (const Token& token : tokens_)
            if (token.kind == TokenKind::Wrong) throw source_->error(token.place, token.text);
    }

    WrittenCall read() {
        WrittenCall call;
        if (here().kind != TokenKind::Name) fail("the name of a method");
        call.name = tokens_[at_++].text;
        if (here().isMark("(")) arguments(call);
        while (here().kind == TokenKind::LineEnd) ++at_;
        if (here().kind != TokenKind::End) fail("the end of the call");
        return call;
    }

private:
    const Token& here() const { return tokens_[at_]; }

    [[noreturn]] void fail(const std::string& expected) const {
        throw source_->error(here().place, "expected " + expected + ", not " + here().described());
    }

    void arguments(WrittenCall& call) {
        ++at_;
        if (here().isMark(")")) {
            ++at_;
            return;
        }
        for (;;) {
            call.arguments.push_back(argument());
            const bool more = here().isMark(",");
            if (!more && !here().isMark(")")) fail("\",\" or \")\"");
            ++at_;
            if (!more) return;
        }
    }

    WrittenCall::Argument argument() {
        WrittenCall::Argument made;
        if (here().kind == TokenKind::Name && tokens_[at_ + 1].isMark(":")) {
            made.name = here().text;
            at_ += 2;
        }
        made.place = here().place;
        const size_t begin = here().begin;
        size_t end = begin;
        // Read up to a comma or closing bracket at the top level.
        for (int open = 0; !here().endsLine(); ++at_) {
            const bool closes = here().isAnyMark({")", "]", "}"});
            if (open == 0 && (closes || here().isMark(","))) break;
            if (here().isAnyMark({"(", "[", "{"})) ++open;
            if (closes) --open;
            end = here().end;
        }
        made.value = source_->text.substr(begin, end - begin);
        requireExpression(made);
        return made;
    }

    /// Parses the argument in place, so that errors have the right column.
    void requireExpression(const WrittenCall::Argument& argument) const {
        SymbolTable symbols;
        try {
            parseExpression(std::make_shared<Source>(Source{"call", argument.value}), symbols);
        } catch (const ScriptError& error) {
            const int column = argument.place.column + error.place().column - 1;
            throw source_->error({argument.place.line, column}, error.message());
        }
    }

    std::shared_ptr<const Source> source_;
    std::vector<Token> tokens_;
    size_t at_ = 0;
};

}  // namespace

WrittenCall readCall(std::string_view text) { return CallReader(text).read(); }

}  // namespace krl::player
