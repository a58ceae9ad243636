#include "catalogue/NearestName.h"
#include "player/host/Compare.h"
#include "player/lingo/Arithmetic.h"
#include "player/lingo/Chunks.h"
#include "player/lingo/InterpreterScopes.h"

/// Expressions.
namespace krl::player {

Value Interpreter::evaluate(const Expression& expression) {
    const DepthGuard guard(*this);
    switch (expression.kind) {
        case ExpressionKind::Integer:
            return Value::integer(static_cast<const LiteralExpression&>(expression).integer);
        case ExpressionKind::Float:
        case ExpressionKind::String:
            return frame().script.literals[static_cast<size_t>(
                static_cast<const LiteralExpression&>(expression).index)];
        case ExpressionKind::Symbol:
            return Value::symbol(static_cast<const LiteralExpression&>(expression).symbol);
        case ExpressionKind::Void:
            return Value();
        case ExpressionKind::List:
            return evaluateList(static_cast<const ListExpression&>(expression));
        case ExpressionKind::PropertyList:
            return evaluatePropertyList(static_cast<const ListExpression&>(expression));
        case ExpressionKind::Variable:
            return evaluateVariable(static_cast<const VariableExpression&>(expression));
        case ExpressionKind::Negation: {
            const Value operand = evaluate(*static_cast<const UnaryExpression&>(expression).operand);
            place_ = expression.place;
            return negated(*this, operand);
        }
        case ExpressionKind::Not:
            return Value::truth(!truthOf(evaluate(*static_cast<const UnaryExpression&>(expression).operand)));
        case ExpressionKind::Binary:
            return evaluateBinary(static_cast<const BinaryExpression&>(expression));
        case ExpressionKind::Call:
        case ExpressionKind::MethodCall:
            return evaluateCall(static_cast<const CallExpression&>(expression));
        case ExpressionKind::Property:
            return evaluateProperty(static_cast<const PropertyExpression&>(expression));
        case ExpressionKind::SystemProperty:
            return evaluateSystemProperty(static_cast<const PropertyExpression&>(expression));
        case ExpressionKind::Index:
            return evaluateIndex(static_cast<const IndexExpression&>(expression));
        case ExpressionKind::Chunk:
            return evaluateChunk(static_cast<const ChunkExpression&>(expression));
        case ExpressionKind::ChunkCount: {
            const auto& chunk = static_cast<const ChunkExpression&>(expression);
            const std::string whole = plain(evaluate(*chunk.source));
            return Value::integer(countChunks(whole, chunk.chunk, settings.itemDelimiter));
        }
    }
    return Value();
}

Value Interpreter::evaluateVariable(const VariableExpression& expression) {
    if (expression.scope == VariableScope::Local) {
        const Value& local = frame().locals[static_cast<size_t>(expression.slot)];
        if (!local.isUnassigned()) return local;
    } else if (const Value* found = variable(expression)) {
        return *found;
    } else if (expression.scope == VariableScope::Global) {
        return Value();
    }
    unknownVariable(expression);
}

/// Both sides are always evaluated, even for `and` and `or`. Two integers take the fast path.
Value Interpreter::evaluateBinary(const BinaryExpression& expression) {
    const Value left = evaluate(*expression.left);
    const Value right = evaluate(*expression.right);
    Value result;
    const bool integers = left.isInteger() && right.isInteger();
    if (integers && operateOnIntegers(expression.operation, left.integer(), right.integer(), result))
        return result;
    place_ = expression.place;
    return operate(*this, expression.operation, left, right);
}

Value Interpreter::evaluateList(const ListExpression& expression) {
    Value made = heap.make<ListObject>();
    auto& list = *made.as<ListObject>();
    list.items.reserve(expression.items.size());
    for (const ExpressionPointer& item : expression.items) list.items.push_back(evaluate(*item));
    heap.recount(list);
    return made;
}

Value Interpreter::evaluatePropertyList(const ListExpression& expression) {
    Value made = heap.make<PropertyListObject>();
    auto& list = *made.as<PropertyListObject>();
    list.entries.reserve(expression.items.size());
    for (size_t i = 0; i < expression.items.size(); ++i) {
        Value key = evaluate(*expression.keys[i]);
        list.entries.push_back({std::move(key), evaluate(*expression.items[i])});
    }
    heap.recount(list);
    return made;
}

Value Interpreter::evaluateProperty(const PropertyExpression& expression) {
    const Value object = evaluate(*expression.object);
    return property(object, expression.name, expression.place);
}

Value Interpreter::property(const Value& object, SymbolId name, Place place) {
    place_ = place;
    if (const auto* list = object.as<PropertyListObject>())
        if (const auto* entry = findEntry(symbols, *list, Value::symbol(name))) return entry->value;
    if (const Value* found = instanceProperty(object, name)) return *found;
    if (const PropertyEntry* entry = propertyOf(object.kind(), name)) return entry->read(*this, object);
    if (const Builtin* function = functionAsProperty(object.kind(), name))
        return callBuiltin(*function, {&object, 1});
    unknownProperty(object, name);
}

/// A function of one number, string or symbol can be written as a property: `"12".integer`.
const Builtin* Interpreter::functionAsProperty(Kind kind, SymbolId name) const {
    const Builtin* known = builtin(name);
    const bool plain =
        kind == Kind::Integer || kind == Kind::Float || kind == Kind::Symbol || kind == Kind::String;
    if (!known || !plain || known->least != 1) return nullptr;
    for (const auto& family : {mathBuiltins(), textBuiltins()})
        for (const Builtin& entry : family)
            if (&entry == known) return known;
    return nullptr;
}

Value* Interpreter::instanceProperty(const Value& object, SymbolId name) {
    Value* found = nullptr;
    alongAncestors(object, [&](PropertyHolder& holder, const Value&) {
        found = holder.property(name);
        return found != nullptr;
    });
    return found;
}

Value Interpreter::evaluateSystemProperty(const PropertyExpression& expression) {
    place_ = expression.place;
    if (const PropertyEntry* entry = propertyOf(Kind::Void, expression.name))
        return entry->read(*this, Value());
    const std::string& name = symbols.spelling(expression.name);
    throw HostError("there is no \"the " + name + '"' + didYouMean(name, propertyNames(Kind::Void)));
}

Value Interpreter::evaluateIndex(const IndexExpression& expression) {
    const Value object = evaluate(*expression.object);
    const Value index = evaluate(*expression.index);
    place_ = expression.place;
    return elementOf(*this, object, index);
}

Value Interpreter::evaluateChunk(const ChunkExpression& expression) {
    static constexpr const char* names[] = {"char", "word", "item", "line"};
    const Value source = evaluate(*expression.source);
    // `list.item[2]` looks like a chunk but is the property of that name.
    if (source.is(Kind::PropertyList) || source.is(Kind::ScriptInstance)) {
        const SymbolId name = symbols.identifier(names[static_cast<size_t>(expression.chunk)]);
        const Value inner = property(source, name, expression.place);
        return expression.first ? elementOf(*this, inner, evaluate(*expression.first)) : inner;
    }
    const std::string whole = plain(source);
    const auto [first, last] = chunkRange(expression, whole);
    return text(
        std::string(findChunk(whole, expression.chunk, first, last, settings.itemDelimiter).of(whole)));
}

std::pair<int32_t, int32_t> Interpreter::chunkRange(const ChunkExpression& expression,
                                                    const std::string& whole) {
    if (!expression.first) {
        const int32_t count = countChunks(whole, expression.chunk, settings.itemDelimiter);
        return {count, count};
    }
    const auto number = [&](const Expression& part) {
        const Value value = evaluate(part);
        place_ = part.place;
        Value found;
        if (!numberIn(value, found, heap))
            throw HostError("expected a number for the position of the chunk, not " + kindName(value.kind()));
        return found.isInteger() ? found.integer() : rounded(found.number());
    };
    const int32_t first = number(*expression.first);
    const int32_t last = expression.last ? number(*expression.last) : first;
    return rangeOf(whole, expression.chunk, first, last, settings.itemDelimiter);
}

const PropertyEntry* Interpreter::propertyOf(Kind kind, SymbolId name) const {
    const auto found = properties_.find(uint64_t(kind) << 32 | static_cast<uint32_t>(name));
    return found == properties_.end() ? nullptr : found->second;
}

std::vector<std::string> Interpreter::propertyNames(Kind kind) const {
    std::vector<std::string> names;
    for (const auto& entry : properties_)
        if (entry.second->kind == kind) names.emplace_back(entry.second->name);
    std::sort(names.begin(), names.end());
    return names;
}

void Interpreter::unknownVariable(const VariableExpression& expression) {
    place_ = expression.place;
    const std::string& name = symbols.spelling(expression.name);
    std::vector<std::string> known;
    for (const SymbolId local : frame().handler.locals)
        if (local != expression.name) known.push_back(symbols.spelling(local));
    for (const SymbolId property : frame().script.syntax->properties)
        known.push_back(symbols.spelling(property));
    for (const SymbolId global : frame().script.syntax->globals) known.push_back(symbols.spelling(global));
    throw HostError("the variable \"" + name + "\" has no value yet" + didYouMean(name, known));
}

void Interpreter::unknownProperty(const Value& object, SymbolId name) {
    const std::string& wanted = symbols.spelling(name);
    std::vector<std::string> known = propertyNames(object.kind());
    if (const auto* list = object.as<PropertyListObject>())
        for (const auto& entry : list->entries)
            if (entry.key.is(Kind::Symbol)) known.push_back(symbols.spelling(entry.key.symbol()));
    PropertyHolder* holder = object.as<InstanceObject>();
    if (!holder) holder = object.as<ScriptObject>();
    if (holder)
        for (const SymbolId property : holder->script.syntax->properties)
            known.push_back(symbols.spelling(property));
    throw HostError(kindName(object.kind()) + " has no property \"" + wanted + '"' +
                    didYouMean(wanted, known));
}

}  // namespace krl::player
