#pragma once

#include "player/lingo/Syntax.h"

namespace krl::player {

/// The part of the parser that reads expressions; the statement parser builds on it.
class ExpressionParser {
protected:
    ExpressionParser(std::shared_ptr<const Source> source, SymbolTable& symbols);

    // The current token.
    const Token& here() const { return tokens_[at_]; }
    const Token& ahead(size_t count = 1) const { return tokens_[std::min(at_ + count, tokens_.size() - 1)]; }
    const Token& take() { return here().kind == TokenKind::End ? here() : tokens_[at_++]; }
    bool takeMark(std::string_view mark);
    bool takeWord(std::string_view word);
    void expectMark(const char* mark, const char* after);
    void expectWord(const char* word, const char* after);
    /// Takes a name for a new entity; `what` describes it in messages.
    const Token& expectName(const char* what);
    /// `hint` ends the message, for example with a suggestion.
    [[noreturn]] void fail(const std::string& expected, const std::string& hint = "") const;
    std::string foreignHint() const;
    bool breaksLine() const;
    [[noreturn]] void failAt(Place place, const std::string& message) const;

    /// For parsing to go on after a mistake.
    void resetNesting() { nesting_ = 0; }
    ExpressionPointer expression();
    /// What is allowed left of `=`: no operators except access.
    ExpressionPointer accessPath();
    std::vector<ExpressionPointer> expressionsUpTo(const char* mark);
    std::unique_ptr<VariableExpression> variable(const Token& name);
    std::unique_ptr<CallExpression> call(const Token& name);
    template <class Node>
    std::unique_ptr<Node> node(ExpressionKind kind, Place place) {
        return std::make_unique<Node>(kind, place);
    }
    /// Updates the depth of `whole` for `part`, and checks the limit.
    void contain(Expression& whole, const ExpressionPointer& part) const;
    /// Whether a word ends an expression, and so cannot begin one.
    static bool isJoiningWord(const Token& token);
    /// Whether the current token can begin an expression.
    bool beginsExpression() const;
    static bool isChunkName(const Token& token, ChunkKind& kind);
    static bool opensBracket(const Token& token) { return token.isAnyMark({"(", "[", "{"}); }
    static bool closesBracket(const Token& token) { return token.isAnyMark({")", "]", "}"}); }
    bool beginsReference() const;
    std::unique_ptr<CallExpression> reference(const Token& name);
    ExpressionPointer bracketed();
    /// A string literal.
    ExpressionPointer text(std::string characters, Place place);

    SymbolTable& symbols_;
    std::shared_ptr<const Source> source_;
    std::unique_ptr<Script> script_;
    /// All variables of the current handler, to be resolved at the end.
    std::vector<VariableExpression*> variables_;

private:
    /// With operators of the level `lowest` and above.
    ExpressionPointer binary(int lowest);
    ExpressionPointer unary();
    ExpressionPointer postfix(ExpressionPointer object);
    ExpressionPointer dotted(ExpressionPointer object);
    ExpressionPointer indexed(ExpressionPointer object);
    ExpressionPointer charactersOf(ExpressionPointer source, ExpressionPointer first, Place place);
    ExpressionPointer chunkByDot(ChunkKind kind, ExpressionPointer source, Place place);
    ExpressionPointer primary();
    ExpressionPointer named();
    ExpressionPointer referenced();
    ExpressionPointer bracketedReference();
    ExpressionPointer referredTo();
    void ofCast(CallExpression& member);
    ExpressionPointer newObject();
    ExpressionPointer literal();
    ExpressionPointer constant();
    ExpressionPointer list(const char* closing);
    ExpressionPointer propertyList(std::unique_ptr<ListExpression> made, ExpressionPointer firstKey,
                                   const char* closing);
    ExpressionPointer propertyKey();
    bool beginsChunk(ChunkKind& kind) const;
    ExpressionPointer chunk(ChunkKind kind);
    ExpressionPointer the();
    ExpressionPointer theNumberOf(Place place);
    ExpressionPointer countOf(ChunkKind kind, ExpressionKind what, Place place);
    ExpressionPointer theProperty(const Token& name, SymbolId property);
    bool takesOf();
    void expectIn();

    const std::vector<Token> tokens_;
    size_t at_ = 0;
    int nesting_ = 0;
};

}  // namespace krl::player
