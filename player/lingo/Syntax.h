#pragma once

#include <memory>
#include <string>
#include <vector>

#include "player/host/SymbolTable.h"
#include "player/lingo/Lexer.h"

/// A parsed script: handlers, their statements and expressions.
namespace krl::player {

enum class ExpressionKind {
    Integer,
    Float,
    String,
    Symbol,
    Void,
    List,
    PropertyList,
    Variable,
    Negation,
    Not,
    Binary,
    Call,
    MethodCall,
    Property,
    SystemProperty,
    Index,
    Chunk,
    ChunkCount,
};

struct Expression {
    Expression(ExpressionKind what, Place where)
        : kind(what),
          place(where),
          calls(what == ExpressionKind::Call || what == ExpressionKind::MethodCall) {}
    virtual ~Expression() = default;

    const ExpressionKind kind;
    Place place;
    bool calls;     ///< whether it contains a call
    int depth = 1;  ///< levels of nested expressions, including this one
};
using ExpressionPointer = std::unique_ptr<Expression>;

/// A number, string, symbol or VOID as written.
struct LiteralExpression : Expression {
    using Expression::Expression;
    int32_t integer = 0;
    double real = 0;
    std::string text;
    SymbolId symbol = -1;
};

struct ListExpression : Expression {
    using Expression::Expression;
    std::vector<ExpressionPointer> keys;  ///< in a property list, one per item
    std::vector<ExpressionPointer> items;
};

/// The scope of a variable; resolved after the whole script has been parsed.
enum class VariableScope { Local, Global, Property };

struct VariableExpression : Expression {
    using Expression::Expression;
    SymbolId name = -1;
    VariableScope scope = VariableScope::Local;
    int slot = -1;  ///< of a local variable
};

/// Negation and `not`.
struct UnaryExpression : Expression {
    using Expression::Expression;
    ExpressionPointer operand;
};

enum class Operator {
    Add,
    Subtract,
    Multiply,
    Divide,
    Modulo,
    Concatenate,
    ConcatenateSpaced,
    Equal,
    Unequal,
    Less,
    Greater,
    LessOrEqual,
    GreaterOrEqual,
    Contains,
    Starts,
    Intersects,  ///< of sprites, like `Within`
    Within,
    And,
    Or,
};

struct BinaryExpression : Expression {
    using Expression::Expression;
    Operator operation = Operator::Add;
    ExpressionPointer left, right;
};

/// `name(arguments)`, `object.name(arguments)`, or the command form `name arguments`.
struct CallExpression : Expression {
    using Expression::Expression;
    ExpressionPointer object;  ///< in a method call
    SymbolId name = -1;
    std::vector<ExpressionPointer> arguments;
};

/// `object.name`, `the name of object`, and without an object `the name`.
struct PropertyExpression : Expression {
    using Expression::Expression;
    ExpressionPointer object;
    SymbolId name = -1;
};

/// `object[index]`.
struct IndexExpression : Expression {
    using Expression::Expression;
    ExpressionPointer object, index;
};

enum class ChunkKind { Char, Word, Item, Line };

/// `char first to last of source`; without `first`, the last chunk. As a count, `the number of chars in`.
struct ChunkExpression : Expression {
    using Expression::Expression;
    ChunkKind chunk = ChunkKind::Char;
    ExpressionPointer first, last, source;
    bool inBrackets = false;  ///< `source[first..last]`, of strings alone
};

enum class StatementKind {
    Evaluate,
    Assign,
    Put,
    PutInto,
    Delete,
    If,
    RepeatWhile,
    RepeatWith,
    RepeatIn,
    Case,
    Return,
    Exit,
    ExitRepeat,
    NextRepeat,
    Nothing,
};

struct Statement {
    Statement(StatementKind what, Place where) : kind(what), place(where) {}
    virtual ~Statement() = default;

    const StatementKind kind;
    Place place;
};
using StatementPointer = std::unique_ptr<Statement>;
using Block = std::vector<StatementPointer>;

/// A call, `return` with or without a value, or `delete chunk`.
struct ExpressionStatement : Statement {
    using Statement::Statement;
    ExpressionPointer expression;
};

enum class PutMode { Into, After, Before };

/// `target = value`, `set target to value`, `put value into target`.
struct AssignStatement : Statement {
    using Statement::Statement;
    PutMode mode = PutMode::Into;
    ExpressionPointer target, value;
};

struct PutStatement : Statement {
    using Statement::Statement;
    std::vector<ExpressionPointer> values;
};

struct IfStatement : Statement {
    using Statement::Statement;
    struct Branch {
        ExpressionPointer condition;
        Block body;
    };
    std::vector<Branch> branches;
    Block otherwise;
};

/// All forms of `repeat`: with a condition, with a counter, over a list.
struct RepeatStatement : Statement {
    using Statement::Statement;
    ExpressionPointer condition;
    std::unique_ptr<VariableExpression> variable;
    ExpressionPointer from, to, list;
    bool down = false;
    Block body;
};

struct CaseStatement : Statement {
    using Statement::Statement;
    struct Branch {
        std::vector<ExpressionPointer> labels;
        Block body;
    };
    ExpressionPointer subject;
    std::vector<Branch> branches;
    Block otherwise;
};

struct Handler {
    SymbolId name = -1;
    Place place;
    size_t parameters = 0;
    std::vector<SymbolId> locals;  ///< parameters first
    Block body;
};

/// A parsed script file.
struct Script {
    std::shared_ptr<const Source> source;
    std::vector<std::unique_ptr<Handler>> handlers;
    std::vector<SymbolId> properties;
    std::vector<SymbolId> globals;

    const Handler* handler(SymbolId name) const;
};

}  // namespace krl::player
