#pragma once

#include "player/lingo/Syntax.h"

namespace krl::player {

/// The half of the parser that reads expressions; statements stand on it.
class ExpressionParser {
protected:
    ExpressionParser(std::shared_ptr<const Source> source, SymbolTable& symbols);

    // The token at hand.
    const Token& here() const { return tokens_[at_]; }
    const Token& ahead(size_t count = 1) const { return tokens_[std::min(at_ + count, tokens_.size() - 1)]; }
    Token take() { return here().kind == TokenKind::End ? here() : tokens_[at_++]; }
    bool takeMark(const char* mark);
    bool takeWord(const char* word);
    void expectMark(const char* mark, const char* after);
    void expectWord(const char* word, const char* after);
    /// A name for something new, `what` as a message tells it.
    Token expectName(const char* what);
    /// `hint` ends the message, such as with what was meant.
    [[noreturn]] void fail(const std::string& expected, const std::string& hint = "") const;
    [[noreturn]] void failAt(Place place, const std::string& message) const;

    ExpressionPointer expression();
    /// What may stand left of `=`: no operators but those of access.
    ExpressionPointer accessPath();
    std::vector<ExpressionPointer> expressionsUpTo(const char* mark);
    std::unique_ptr<VariableExpression> variable(const Token& name);
    std::unique_ptr<CallExpression> call(const Token& name);
    template <class Node>
    std::unique_ptr<Node> node(ExpressionKind kind, Place place) {
        return std::make_unique<Node>(kind, place);
    }
    /// Counts `part` into the depth of `whole`, which is bounded.
    void contain(Expression& whole, const ExpressionPointer& part) const;
    /// Whether a word ends an expression, and so begins none.
    static bool isJoiningWord(const Token& token);
    /// Whether the token at hand can begin an expression.
    bool beginsExpression() const;
    static bool isChunkName(const Token& token, ChunkKind& kind);

    SymbolTable& symbols_;
    std::shared_ptr<const Source> source_;
    std::unique_ptr<Script> script_;
    /// Every variable of the handler at hand, to be told its scope at the end.
    std::vector<VariableExpression*> variables_;

private:
    struct Level;

    ExpressionPointer binary(size_t level);
    ExpressionPointer unary();
    ExpressionPointer postfix(ExpressionPointer object);
    ExpressionPointer dotted(ExpressionPointer object);
    ExpressionPointer indexed(ExpressionPointer object);
    ExpressionPointer chunkByDot(ChunkKind kind, ExpressionPointer source, Place place);
    ExpressionPointer primary();
    ExpressionPointer named();
    bool beginsReference() const;
    ExpressionPointer reference(const Token& name);
    ExpressionPointer literal();
    ExpressionPointer constant();
    ExpressionPointer text(std::string characters, Place place);
    ExpressionPointer bracketed();
    ExpressionPointer list(Place place);
    ExpressionPointer propertyList(Place place, std::unique_ptr<ListExpression> made,
                                   ExpressionPointer firstKey);
    ExpressionPointer propertyKey();
    bool beginsChunk(ChunkKind& kind) const;
    ExpressionPointer chunk(ChunkKind kind);
    ExpressionPointer the();
    void expectIn();

    std::vector<Token> tokens_;
    size_t at_ = 0;
    int nesting_ = 0;
};

}  // namespace krl::player
