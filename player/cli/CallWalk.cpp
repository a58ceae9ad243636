#include "player/cli/CallWalk.h"

namespace krl::player {

namespace {

class Walk {
public:
    explicit Walk(const std::function<void(const Expression&)>& visit) : visit_(visit) {}

    void walk(const Block& block) {
        for (const StatementPointer& statement : block) walk(*statement);
    }

private:
    template <class Node, class Base>
    static const Node& as(const Base& base) {
        return static_cast<const Node&>(base);
    }

    void walk(const ExpressionPointer& expression) {
        if (expression) walk(*expression);
    }

    void walk(const std::vector<ExpressionPointer>& expressions) {
        for (const ExpressionPointer& expression : expressions) walk(expression);
    }

    void walkCall(const CallExpression& call) {
        walk(call.object);
        walk(call.arguments);
    }

    void walk(const Expression& expression) {
        visit_(expression);
        switch (expression.kind) {
            case ExpressionKind::Call:
            case ExpressionKind::MethodCall:
                return walkCall(as<CallExpression>(expression));
            case ExpressionKind::List:
            case ExpressionKind::PropertyList:
                walk(as<ListExpression>(expression).keys);
                return walk(as<ListExpression>(expression).items);
            case ExpressionKind::Negation:
            case ExpressionKind::Not:
                return walk(as<UnaryExpression>(expression).operand);
            case ExpressionKind::Binary:
                walk(as<BinaryExpression>(expression).left);
                return walk(as<BinaryExpression>(expression).right);
            case ExpressionKind::Property:
            case ExpressionKind::SystemProperty:
                return walk(as<PropertyExpression>(expression).object);
            case ExpressionKind::Index:
                walk(as<IndexExpression>(expression).object);
                return walk(as<IndexExpression>(expression).index);
            case ExpressionKind::Chunk:
            case ExpressionKind::ChunkCount:
                walk(as<ChunkExpression>(expression).first);
                walk(as<ChunkExpression>(expression).last);
                return walk(as<ChunkExpression>(expression).source);
            case ExpressionKind::Integer:
            case ExpressionKind::Float:
            case ExpressionKind::String:
            case ExpressionKind::Symbol:
            case ExpressionKind::Void:
            case ExpressionKind::Variable:
                return;
        }
    }

    void walk(const Statement& statement) {
        switch (statement.kind) {
            case StatementKind::Evaluate:
            case StatementKind::Delete:
            case StatementKind::Return:
                return walk(as<ExpressionStatement>(statement).expression);
            case StatementKind::Assign:
            case StatementKind::PutInto:
                walk(as<AssignStatement>(statement).target);
                return walk(as<AssignStatement>(statement).value);
            case StatementKind::Put:
                return walk(as<PutStatement>(statement).values);
            case StatementKind::If:
                return walkBranches(as<IfStatement>(statement));
            case StatementKind::RepeatWhile:
            case StatementKind::RepeatWith:
            case StatementKind::RepeatIn:
                return walkRepeat(as<RepeatStatement>(statement));
            case StatementKind::Case:
                return walkCase(as<CaseStatement>(statement));
            case StatementKind::Exit:
            case StatementKind::ExitRepeat:
            case StatementKind::NextRepeat:
            case StatementKind::Nothing:
                return;
        }
    }

    void walkBranches(const IfStatement& statement) {
        for (const IfStatement::Branch& branch : statement.branches) {
            walk(branch.condition);
            walk(branch.body);
        }
        walk(statement.otherwise);
    }

    void walkRepeat(const RepeatStatement& statement) {
        for (const ExpressionPointer* part :
             {&statement.condition, &statement.from, &statement.to, &statement.list})
            walk(*part);
        walk(statement.body);
    }

    void walkCase(const CaseStatement& statement) {
        walk(statement.subject);
        for (const CaseStatement::Branch& branch : statement.branches) {
            walk(branch.labels);
            walk(branch.body);
        }
        walk(statement.otherwise);
    }

    const std::function<void(const Expression&)>& visit_;
};

}  // namespace

void visitExpressions(const Script& script, const std::function<void(const Expression&)>& visit) {
    Walk walk(visit);
    for (const auto& handler : script.handlers) walk.walk(handler->body);
}

void visitCalls(const Script& script, const std::function<void(const CallExpression&)>& visit) {
    visitExpressions(script, [&](const Expression& expression) {
        if (expression.kind == ExpressionKind::Call || expression.kind == ExpressionKind::MethodCall)
            visit(static_cast<const CallExpression&>(expression));
    });
}

}  // namespace krl::player
