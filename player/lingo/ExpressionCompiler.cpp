#include "player/lingo/ExpressionCompiler.h"

#include <algorithm>

#include "player/lingo/Operations.h"

namespace krl::player {

int32_t localSlot(const Expression& expression) {
    if (expression.kind != ExpressionKind::Variable) return -1;
    const auto& name = static_cast<const VariableExpression&>(expression);
    return name.scope == VariableScope::Local ? name.slot : -1;
}

const BinaryExpression* asJoin(const Expression& expression) {
    if (expression.kind != ExpressionKind::Binary) return nullptr;
    const auto& binary = static_cast<const BinaryExpression&>(expression);
    const bool joins =
        binary.operation == Operator::Concatenate || binary.operation == Operator::ConcatenateSpaced;
    return joins ? &binary : nullptr;
}

const LiteralExpression* asInteger(const Expression& expression) {
    const bool integer = expression.kind == ExpressionKind::Integer;
    return integer ? &static_cast<const LiteralExpression&>(expression) : nullptr;
}

size_t ExpressionCompiler::emit(Place place, Operation run, int32_t a, int32_t b, int32_t c, int32_t d) {
    code_.instructions.push_back({run, a, b, c, d});
    code_.places.push_back(place);
    return here() - 1;
}

void ExpressionCompiler::land(size_t from, size_t target) {
    code_.instructions[from].d = static_cast<int32_t>(target) - static_cast<int32_t>(from);
}

int32_t ExpressionCompiler::temporary(int32_t count) {
    const int32_t first = next_;
    next_ += count;
    code_.registers = std::max(code_.registers, next_);
    return first;
}

int32_t ExpressionCompiler::constant(Value value) {
    code_.constants.push_back(std::move(value));
    return ~static_cast<int32_t>(code_.constants.size() - 1);
}

int32_t ExpressionCompiler::constant(const LiteralExpression& literal) {
    Value value;
    switch (literal.kind) {
        case ExpressionKind::Float:
            return constant(heap_.number(literal.real));
        case ExpressionKind::String:
            return constant(heap_.string(literal.text));
        case ExpressionKind::Integer:
            value = Value::integer(literal.integer);
            break;
        case ExpressionKind::Symbol:
            value = Value::symbol(literal.symbol);
            break;
        default:
            break;
    }
    const auto [known, added] = known_.try_emplace({value.kind(), value.words().words[1]});
    if (added) known->second = constant(std::move(value));
    return known->second;
}

int32_t ExpressionCompiler::operand(const Expression& expression) {
    if (const int32_t slot = localSlot(expression); slot >= 0) return slot;
    if (expression.kind <= ExpressionKind::Void)
        return constant(static_cast<const LiteralExpression&>(expression));
    return temporaryOf(expression);
}

int32_t ExpressionCompiler::operand(const Expression& expression, bool othersCall) {
    const bool mayChange = othersCall && localSlot(expression) >= 0;
    return mayChange ? temporaryOf(expression) : operand(expression);
}

int32_t ExpressionCompiler::temporaryOf(const Expression& expression) {
    const int32_t target = temporary();
    into(expression, target);
    return target;
}

void ExpressionCompiler::into(const Expression& expression, int32_t target) {
    const Temporaries inner(*this);
    switch (expression.kind) {
        case ExpressionKind::Variable:
            return variable(static_cast<const VariableExpression&>(expression), target);
        case ExpressionKind::List:
        case ExpressionKind::PropertyList:
            return list(static_cast<const ListExpression&>(expression), target);
        case ExpressionKind::Negation:
            return unary(static_cast<const UnaryExpression&>(expression), Operations::negate, target);
        case ExpressionKind::Not:
            return unary(static_cast<const UnaryExpression&>(expression), Operations::invert, target);
        case ExpressionKind::Binary:
            return binary(static_cast<const BinaryExpression&>(expression), target);
        case ExpressionKind::Call:
        case ExpressionKind::MethodCall:
            return call(static_cast<const CallExpression&>(expression), target);
        case ExpressionKind::Property: {
            const auto& property = static_cast<const PropertyExpression&>(expression);
            const int32_t object = operand(*property.object);
            emit(property.place, Operations::property, target, object, property.name);
            return;
        }
        case ExpressionKind::SystemProperty:
            emit(expression.place, Operations::systemProperty, target,
                 static_cast<const PropertyExpression&>(expression).name);
            return;
        case ExpressionKind::Index:
            return item(static_cast<const IndexExpression&>(expression), target);
        case ExpressionKind::Chunk:
            return chunk(static_cast<const ChunkExpression&>(expression), target);
        case ExpressionKind::ChunkCount:
            return chunkCount(static_cast<const ChunkExpression&>(expression), target);
        default:
            emit(expression.place, Operations::move, target, operand(expression));
    }
}

void ExpressionCompiler::variable(const VariableExpression& expression, int32_t target) {
    switch (expression.scope) {
        case VariableScope::Local:
            emit(expression.place, Operations::move, target, expression.slot);
            return;
        case VariableScope::Global:
            emit(expression.place, Operations::loadGlobal, target, globals_.number(expression.name));
            return;
        case VariableScope::Property:
            emit(expression.place, Operations::loadProperty, target, property(expression.name),
                 expression.name);
    }
}

int32_t ExpressionCompiler::property(SymbolId name) const {
    const auto found = std::find(script_.properties.begin(), script_.properties.end(), name);
    return static_cast<int32_t>(found - script_.properties.begin());
}

void ExpressionCompiler::unary(const UnaryExpression& expression, Operation run, int32_t target) {
    const int32_t value = operand(*expression.operand);
    emit(expression.place, run, target, value);
}

/// Both sides are always evaluated, even for `and` and `or`.
void ExpressionCompiler::binary(const BinaryExpression& expression, int32_t target) {
    if (asJoin(expression)) {
        const Row row = joinedValues(expression, false);
        emit(expression.place, Operations::join, target, row.first, row.count);
        return;
    }
    if (const LiteralExpression* number = asInteger(*expression.right)) {
        const int32_t left = operand(*expression.left);
        emit(expression.place, Operations::binaryBy(expression.operation), target, left, number->integer);
        return;
    }
    const auto [left, right] = operands(expression);
    emit(expression.place, Operations::binary(expression.operation), target, left, right);
}

std::pair<int32_t, int32_t> ExpressionCompiler::operands(const BinaryExpression& expression) {
    const int32_t left = operand(*expression.left, expression.right->calls);
    return {left, operand(*expression.right)};
}

/// What is evaluated before a call becomes text before it, since the call may change a list.
ExpressionCompiler::Row ExpressionCompiler::joinedValues(const BinaryExpression& joined, bool fromSecond) {
    struct Part {
        const Expression* value;
        bool spaced;
    };
    std::vector<Part> parts;
    const Expression* first = &joined;
    while (const BinaryExpression* join = asJoin(*first)) {
        parts.push_back({join->right.get(), join->operation == Operator::ConcatenateSpaced});
        first = join->left.get();
    }
    if (!fromSecond) parts.push_back({first, false});
    Row row{temporary(static_cast<int32_t>(parts.size()) * 2), 0};
    for (auto part = parts.rbegin(); part != parts.rend(); ++part) {
        if (part->value->calls && row.count > (fromSecond ? 0 : 1)) {
            emit(joined.place, Operations::join, row.first, row.first, row.count);
            row.count = 1;
        }
        if (part->spaced) emit(joined.place, Operations::move, row.first + row.count++, space());
        into(*part->value, row.first + row.count++);
    }
    return row;
}

int32_t ExpressionCompiler::space() {
    if (space_ == 0) space_ = constant(heap_.string(" "));
    return space_;
}

/// A local variable gets a list when it is complete, since the items may name it.
void ExpressionCompiler::list(const ListExpression& expression, int32_t target) {
    const bool keyed = expression.kind == ExpressionKind::PropertyList;
    const int32_t made = isTemporary(target) ? target : temporary();
    emit(expression.place, keyed ? Operations::propertyList : Operations::list, made,
         static_cast<int32_t>(expression.items.size()));
    for (size_t i = 0; i < expression.items.size(); ++i) {
        const Temporaries inner(*this);
        const Expression& item = *expression.items[i];
        const int32_t key = keyed ? operand(*expression.keys[i], item.calls) : 0;
        const int32_t value = operand(item);
        if (keyed)
            emit(item.place, Operations::addEntry, made, key, value);
        else
            emit(item.place, Operations::addItem, made, value);
    }
    if (made != target) emit(expression.place, Operations::move, target, made);
}

void ExpressionCompiler::item(const IndexExpression& expression, int32_t target) {
    const int32_t object = operand(*expression.object, expression.index->calls);
    const int32_t index = operand(*expression.index);
    emit(expression.place, Operations::item, target, object, index);
}

void ExpressionCompiler::positions(const ChunkExpression& chunk, int32_t first) {
    if (chunk.first) into(*chunk.first, first);
    if (chunk.last) into(*chunk.last, first + 1);
}

int32_t ExpressionCompiler::formOf(const ChunkExpression& chunk) {
    return ChunkForm{chunk.chunk, chunk.first != nullptr, chunk.last != nullptr}.packed();
}

void ExpressionCompiler::chunk(const ChunkExpression& expression, int32_t target) {
    const bool calls =
        (expression.first && expression.first->calls) || (expression.last && expression.last->calls);
    const int32_t source =
        expression.inBrackets ? temporaryOf(*expression.source) : operand(*expression.source, calls);
    if (expression.inBrackets) emit(expression.place, Operations::requireText, source);
    int32_t first = 0;
    if (expression.first && !expression.last) {
        first = operand(*expression.first);
    } else {
        first = temporary(2);
        positions(expression, first);
    }
    emit(expression.place, Operations::chunk, target, source, first, formOf(expression));
}

void ExpressionCompiler::chunkCount(const ChunkExpression& expression, int32_t target) {
    const int32_t source = operand(*expression.source);
    emit(expression.place, Operations::chunkCount, target, source, 0, formOf(expression));
}

void ExpressionCompiler::call(const CallExpression& expression, int32_t target) {
    const Temporaries inner(*this);
    const bool method = expression.object != nullptr;
    const auto count = static_cast<int32_t>(expression.arguments.size()) + method;
    const int32_t first = temporary(count);
    if (method) into(*expression.object, first);
    for (int32_t i = method; i < count; ++i)
        into(*expression.arguments[static_cast<size_t>(i - method)], first + i);
    emit(expression.place, method ? Operations::send : Operations::call, target, expression.name, first,
         count);
}

}  // namespace krl::player
