#include <algorithm>
#include <iterator>
#include <span>

#include "player/host/SymbolTable.h"
#include "player/lingo/Operations.h"
#include "player/lingo/StatementCompiler.h"

/// Assignments and `delete`.
namespace krl::player {

namespace {

/// The variable that a chain of `&` begins with.
const Expression& firstJoined(const BinaryExpression& joined) {
    const Expression* first = &joined;
    while (const BinaryExpression* join = asJoin(*first)) first = join->left.get();
    return *first;
}

constexpr const char* kChannels[] = {"red", "green", "blue", "colorType", "paletteIndex"};
/// Calls that name a member.
constexpr const char* kFields[] = {"field", "member", "cast"};

bool isAnyOf(std::span<const char* const> names, const std::string& wanted) {
    return std::any_of(names.begin(), names.end(), [&](const char* name) { return sameText(wanted, name); });
}

}  // namespace

/// `s = s & x` with a local variable appends to it.
void StatementCompiler::assignment(const AssignStatement& statement) {
    const Expression& target = *statement.target;
    const int32_t slot = localSlot(target);
    if (slot < 0) return assign(target, operand(*statement.value, target.calls));
    const BinaryExpression* joined = asJoin(*statement.value);
    if (!joined || localSlot(firstJoined(*joined)) != slot) return into(*statement.value, slot);
    append(static_cast<const VariableExpression&>(target), joined->place, joinedValues(*joined, true));
}

void StatementCompiler::append(const VariableExpression& target, Place place, Row values) {
    int32_t slot = target.slot;
    if (target.scope == VariableScope::Global) slot = globals_.number(target.name);
    if (target.scope == VariableScope::Property) slot = property(target.name);
    emit(place, Operations::append(target.scope), slot, values.first, values.count, target.name);
}

/// A variable without a value counts as an empty string here.
void StatementCompiler::putInto(const AssignStatement& statement) {
    const Expression& target = *statement.target;
    if (statement.mode == PutMode::Into) return assignment(statement);
    const bool after = statement.mode == PutMode::After;
    const int32_t values = temporary(2);
    into(*statement.value, values + after);
    if (after && target.kind == ExpressionKind::Variable)
        return append(static_cast<const VariableExpression&>(target), statement.place, {values + 1, 1});
    into(target, values + !after);
    emit(statement.place, Operations::join, values, values, 2);
    assign(target, values);
}

void StatementCompiler::assign(const Expression& target, int32_t value) {
    switch (target.kind) {
        case ExpressionKind::Variable:
            return assignVariable(static_cast<const VariableExpression&>(target), value);
        case ExpressionKind::Property:
            return assignProperty(static_cast<const PropertyExpression&>(target), value);
        case ExpressionKind::SystemProperty:
            emit(target.place, Operations::setSystemProperty,
                 static_cast<const PropertyExpression&>(target).name, value);
            return;
        case ExpressionKind::Index:
            return assignItem(static_cast<const IndexExpression&>(target), value);
        case ExpressionKind::Call:
            return assignField(static_cast<const CallExpression&>(target), value);
        case ExpressionKind::Chunk:
            return assignChunk(static_cast<const ChunkExpression&>(target), value);
        default:
            emit(target.place, Operations::refuse);
    }
}

void StatementCompiler::assignVariable(const VariableExpression& target, int32_t value) {
    switch (target.scope) {
        case VariableScope::Local:
            emit(target.place, Operations::move, target.slot, value);
            return;
        case VariableScope::Global:
            emit(target.place, Operations::storeGlobal, globals_.number(target.name), value);
            return;
        case VariableScope::Property:
            emit(target.place, Operations::storeProperty, property(target.name), value, target.name);
    }
}

void StatementCompiler::assignProperty(const PropertyExpression& target, int32_t value) {
    if (!isAnyOf(kChannels, symbols_.spelling(target.name))) {
        emit(target.place, Operations::setProperty, operand(*target.object), target.name, value);
        return;
    }
    const int32_t object = temporaryOf(*target.object);
    const size_t changed = emit(target.place, Operations::setChannel, object, target.name, value);
    assign(*target.object, object);
    land(changed);
}

void StatementCompiler::assignItem(const IndexExpression& target, int32_t value) {
    const int32_t object = operand(*target.object, target.index->calls);
    const int32_t index = operand(*target.index);
    emit(target.place, Operations::setItem, object, index, value);
}

/// `put text into field "name"`, or into a chunk of `member "name"`
void StatementCompiler::assignField(const CallExpression& target, int32_t value) {
    if (target.arguments.empty() || !isAnyOf(kFields, symbols_.spelling(target.name))) {
        emit(target.place, Operations::refuse);
        return;
    }
    emit(target.place, Operations::setField, operand(*target.arguments.front()), value);
}

void StatementCompiler::assignChunk(const ChunkExpression& target, int32_t value) {
    const int32_t first = temporary(3), source = temporary();
    emit(target.place, Operations::text, first + 2, value);
    chunkSource(target, source, first);
    emit(target.place, Operations::putChunk, source, source, first, formOf(target));
    assign(*target.source, source);
}

/// The text that chunks are changed in, and their positions.
void StatementCompiler::chunkSource(const ChunkExpression& chunk, int32_t source, int32_t first) {
    into(*chunk.source, source);
    if (chunk.inBrackets) emit(chunk.place, Operations::requireText, source);
    const bool named = chunk.source->kind == ExpressionKind::Call;
    emit(chunk.source->place, Operations::chunkText, source, source, named);
    positions(chunk, first);
}

void StatementCompiler::remove(const Expression& target) {
    if (target.kind == ExpressionKind::Chunk) {
        const auto& chunk = static_cast<const ChunkExpression&>(target);
        const int32_t first = temporary(2), source = temporary();
        chunkSource(chunk, source, first);
        emit(target.place, Operations::deleteChunk, source, source, first, formOf(chunk));
        return assign(*chunk.source, source);
    }
    const auto& index = static_cast<const IndexExpression&>(target);
    const int32_t object = operand(*index.object, index.index->calls);
    emit(target.place, Operations::deleteItem, object, operand(*index.index));
}

}  // namespace krl::player
