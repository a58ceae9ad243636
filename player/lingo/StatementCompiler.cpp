#include "player/lingo/StatementCompiler.h"

#include <algorithm>

#include "player/host/Compare.h"
#include "player/lingo/Operations.h"

namespace krl::player {

HandlerCode StatementCompiler::compile() {
    block(code_.handler->body);
    emit(code_.handler->place, Operations::end);
    return std::move(code_);
}

void StatementCompiler::block(const Block& statements) {
    if (statements.empty()) return;
    emit(statements.front()->place, Operations::step, stepsOf(statements));
    body(statements);
}

int32_t StatementCompiler::stepsOf(const Block& statements) {
    return static_cast<int32_t>(statements.size());
}

/// A block whose statements are counted elsewhere.
void StatementCompiler::body(const Block& statements) {
    for (const StatementPointer& one : statements) {
        const Temporaries inner(*this);
        statement(*one);
    }
}

void StatementCompiler::statement(const Statement& statement) {
    switch (statement.kind) {
        case StatementKind::Evaluate:
            return evaluate(*static_cast<const ExpressionStatement&>(statement).expression);
        case StatementKind::Assign:
            return assignment(static_cast<const AssignStatement&>(statement));
        case StatementKind::Put:
            return put(static_cast<const PutStatement&>(statement));
        case StatementKind::PutInto:
            return putInto(static_cast<const AssignStatement&>(statement));
        case StatementKind::Delete:
            return remove(*static_cast<const ExpressionStatement&>(statement).expression);
        case StatementKind::If:
            return conditional(static_cast<const IfStatement&>(statement));
        case StatementKind::RepeatWhile:
            return repeatWhile(static_cast<const RepeatStatement&>(statement));
        case StatementKind::RepeatWith:
            return repeatWith(static_cast<const RepeatStatement&>(statement));
        case StatementKind::RepeatIn:
            return repeatIn(static_cast<const RepeatStatement&>(statement));
        case StatementKind::Case:
            return choice(static_cast<const CaseStatement&>(statement));
        case StatementKind::Return:
            return answer(static_cast<const ExpressionStatement&>(statement));
        case StatementKind::Exit:
            emit(statement.place, Operations::end);
            return;
        case StatementKind::ExitRepeat:
            return leave(statement, &Loop::exits);
        case StatementKind::NextRepeat:
            return leave(statement, &Loop::nexts);
        case StatementKind::Nothing:
            break;
    }
}

void StatementCompiler::evaluate(const Expression& expression) {
    if (expression.kind == ExpressionKind::Call || expression.kind == ExpressionKind::MethodCall)
        return call(static_cast<const CallExpression&>(expression));
    const int32_t value = operand(expression);
    if (isTemporary(value)) emit(expression.place, Operations::clear, value);
}

/// Each value is shown before the next one is evaluated.
void StatementCompiler::put(const PutStatement& statement) {
    const auto count = static_cast<int32_t>(statement.values.size());
    const int32_t first = temporary(count);
    for (int32_t i = 0; i < count; ++i) {
        const Temporaries inner(*this);
        const Expression& value = *statement.values[static_cast<size_t>(i)];
        emit(statement.place, Operations::show, first + i, operand(value));
    }
    emit(statement.place, Operations::put, first, count);
}

void StatementCompiler::answer(const ExpressionStatement& statement) {
    if (statement.expression)
        emit(statement.place, Operations::answer, operand(*statement.expression));
    else
        emit(statement.place, Operations::end);
}

void StatementCompiler::finish(const std::vector<size_t>& ends) {
    for (const size_t end : ends) land(end);
}

/// The jump where a condition does not hold.
size_t StatementCompiler::jumpUnless(const Expression& condition) {
    const Temporaries inner(*this);
    if (condition.kind == ExpressionKind::Binary && !asJoin(condition)) {
        const auto& binary = static_cast<const BinaryExpression&>(condition);
        if (const LiteralExpression* number = asInteger(*binary.right)) {
            const int32_t left = operand(*binary.left);
            return emit(binary.place, Operations::jumpUnlessBinaryBy(binary.operation), left,
                        number->integer);
        }
        const auto [left, right] = operands(binary);
        return emit(binary.place, Operations::jumpUnlessBinary(binary.operation), left, right);
    }
    return emit(condition.place, Operations::jumpUnless, operand(condition));
}

void StatementCompiler::conditional(const IfStatement& statement) {
    std::vector<size_t> ends;
    for (const IfStatement::Branch& branch : statement.branches) {
        const size_t otherwise = jumpUnless(*branch.condition);
        block(branch.body);
        ends.push_back(emit(statement.place, Operations::jump));
        land(otherwise);
    }
    block(statement.otherwise);
    finish(ends);
}

void StatementCompiler::choice(const CaseStatement& statement) {
    const int32_t subject = temporaryOf(*statement.subject);
    std::vector<size_t> ends;
    for (const CaseStatement::Branch& branch : statement.branches) {
        std::vector<size_t> matches;
        for (const ExpressionPointer& label : branch.labels) {
            const Temporaries inner(*this);
            const int32_t value = operand(*label);
            matches.push_back(emit(label->place, Operations::jumpIfEqual, subject, value));
        }
        const size_t none = emit(statement.place, Operations::jump);
        finish(matches);
        block(branch.body);
        ends.push_back(emit(statement.place, Operations::jump));
        land(none);
    }
    block(statement.otherwise);
    finish(ends);
    emit(statement.place, Operations::clear, subject);
}

/// Outside a loop, the handler ends.
void StatementCompiler::leave(const Statement& statement, std::vector<size_t> Loop::*jumps) {
    const size_t jump = emit(statement.place, loop_ ? Operations::jump : Operations::end);
    if (loop_) (loop_->*jumps).push_back(jump);
}

/// Compiles the body of a loop. `turn` is the jump that leaves the loop, `again` goes back to its beginning.
template <class Again>
void StatementCompiler::turns(const RepeatStatement& statement, size_t turn, Again&& again) {
    Loop loop;
    Loop* const outer = std::exchange(loop_, &loop);
    body(statement.body);
    loop_ = outer;
    finish(loop.nexts);
    again();
    land(turn);
    finish(loop.exits);
}

void StatementCompiler::repeatWhile(const RepeatStatement& statement) {
    const size_t begin = here();
    const size_t turn = jumpUnless(*statement.condition);
    emit(statement.place, Operations::step, 1 + stepsOf(statement.body));
    turns(statement, turn, [&] { land(emit(statement.place, Operations::jump), begin); });
}

/// The end is evaluated again for every turn, and the body may change the variable.
void StatementCompiler::repeatWith(const RepeatStatement& statement) {
    const VariableExpression& variable = *statement.variable;
    const int32_t steps = 1 + stepsOf(statement.body), direction = statement.down ? -steps : steps;
    if (localSlot(variable) >= 0 &&
        (localSlot(*statement.to) >= 0 || statement.to->kind <= ExpressionKind::Void))
        return countLocal(statement, direction);
    const int32_t number = temporary(), assigned = temporary();
    emit(statement.place, Operations::count, number, operand(*statement.from));
    const size_t begin = here();
    const bool local = localSlot(variable) >= 0;
    emit(statement.place, Operations::copy, local ? variable.slot : assigned, number);
    if (!local) assignVariable(variable, assigned);
    const int32_t end = operand(*statement.to);
    const size_t turn = emit(statement.place, Operations::countTurn, number, end, direction);
    turns(statement, turn, [&] {
        const int32_t reached = operand(variable);
        land(emit(statement.place, Operations::countOn, number, reached, direction), begin);
    });
}

/// Counts with a local variable to an end that needs no evaluation.
void StatementCompiler::countLocal(const RepeatStatement& statement, int32_t direction) {
    const int32_t number = statement.variable->slot;
    emit(statement.place, Operations::count, number, operand(*statement.from));
    const int32_t end = operand(*statement.to);
    const size_t turn = emit(statement.place, Operations::countTurn, number, end, direction);
    const size_t begin = here();
    turns(statement, turn,
          [&] { land(emit(statement.place, Operations::countAgain, number, end, direction), begin); });
}

void StatementCompiler::repeatIn(const RepeatStatement& statement) {
    const VariableExpression& variable = *statement.variable;
    const int32_t list = temporary(3), item = list + 2;
    into(*statement.list, list);
    emit(statement.place, Operations::each, list);
    const size_t begin = here();
    const bool local = localSlot(variable) >= 0;
    const size_t turn = emit(statement.place, Operations::eachTurn, local ? variable.slot : item, list,
                             1 + stepsOf(statement.body));
    if (!local) assignVariable(variable, item);
    turns(statement, turn, [&] { land(emit(statement.place, Operations::jump), begin); });
    emit(statement.place, Operations::clear, list);
}

}  // namespace krl::player
