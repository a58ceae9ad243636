#include "catalogue/NearestName.h"
#include "player/host/Compare.h"
#include "player/lingo/Arithmetic.h"
#include "player/lingo/Chunks.h"
#include "player/lingo/InterpreterScopes.h"
#include "player/lingo/StageNames.h"

/// Expressions.
namespace krl::player {

/// Literals and variables contain nothing else.
Value Interpreter::evaluate(const Expression& expression) {
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
        case ExpressionKind::Variable:
            return evaluateVariable(static_cast<const VariableExpression&>(expression));
        default:
            return evaluateCompound(expression);
    }
}

Value Interpreter::evaluateCompound(const Expression& expression) {
    const DepthGuard guard(*this);
    switch (expression.kind) {
        case ExpressionKind::List:
            return evaluateList(static_cast<const ListExpression&>(expression));
        case ExpressionKind::PropertyList:
            return evaluatePropertyList(static_cast<const ListExpression&>(expression));
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
            const Value whole = asText(evaluate(*chunk.source));
            return Value::integer(countIn(*whole.as<StringObject>(), chunk.chunk, settings.itemDelimiter));
        }
        default:
            return Value();
    }
}

Value Interpreter::evaluateVariable(const VariableExpression& expression) {
    if (expression.scope == VariableScope::Local) {
        const Value& local = frame().locals[static_cast<size_t>(expression.slot)];
        return local.isUnassigned() ? Value() : local;
    } else if (const Value* found = variable(expression)) {
        return *found;
    } else if (expression.scope == VariableScope::Global) {
        return Value();
    }
    unknownVariable(expression);
}

/// The value of a local variable where it is, or that of any other expression in `held`.
const Value& Interpreter::operand(const Expression& expression, Value& held) {
    const auto& variable = static_cast<const VariableExpression&>(expression);
    if (expression.kind == ExpressionKind::Variable && variable.scope == VariableScope::Local) {
        const Value& local = frame().locals[static_cast<size_t>(variable.slot)];
        if (!local.isUnassigned()) return local;
    }
    return held = evaluate(expression);
}

/// Both sides are always evaluated, even for `and` and `or`. Two integers take the fast path.
Value Interpreter::evaluateBinary(const BinaryExpression& expression) {
    Value heldLeft, heldRight;
    // A variable on the left keeps its value if the right side calls nothing.
    const ExpressionKind kind = expression.right->kind;
    const bool simple = kind <= ExpressionKind::Void || kind == ExpressionKind::Variable;
    if (!simple) heldLeft = evaluate(*expression.left);
    const Value& left = simple ? operand(*expression.left, heldLeft) : heldLeft;
    const Value& right = operand(*expression.right, heldRight);
    Value found;
    const bool integers = left.isInteger() && right.isInteger();
    if (integers && operateOnIntegers(expression.operation, left.integer(), right.integer(), found))
        return found;
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
    if (const auto* environment = object.as<EnvironmentObject>())
        return environmentProperty(*environment, name);
    if (skipsStage() && object.isVoid()) return Value();
    if (const auto* list = object.as<PropertyListObject>())
        if (const auto* entry = findEntry(symbols, *list, Value::symbol(name))) return entry->value;
    if (const Value* found = instanceProperty(object, name)) return *found;
    if (const PropertyEntry* entry = propertyOf(object.kind(), name)) return entry->read(*this, object);
    if (const Builtin* function = functionAsProperty(object.kind(), name))
        return callBuiltin(*function, {&object, 1});
    unknownProperty(object, name);
}

Value Interpreter::propertyNamed(const Value& object, const Value& name) {
    return property(object, symbols.identifier(plain(name)), place_);
}

void Interpreter::setPropertyNamed(const Value& object, const Value& name, const Value& value) {
    const SymbolId property = symbols.identifier(plain(name));
    Value* place = instanceProperty(object, property);
    if (!place) unknownProperty(object, property);
    const Value gone = std::exchange(*place, value);
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

/// The last ancestor can be a property list.
Value* Interpreter::instanceProperty(const Value& object, SymbolId name) {
    if (PropertyHolder* holder = holderOf(object))
        if (Value* found = holder->property(name)) return found;
    Value at = object;
    for (int links = 0; links < kDeepestNesting; ++links) {
        if (auto* list = at.as<PropertyListObject>(); list && links > 0) {
            const auto* entry = findEntry(symbols, *list, Value::symbol(name));
            return entry ? const_cast<Value*>(&entry->value) : nullptr;
        }
        PropertyHolder* holder = holderOf(at);
        if (!holder) return nullptr;
        if (Value* found = holder->property(name)) return found;
        if (name == ancestorName_) return &holder->ancestor;
        at = Value(ancestorOf(*holder));
    }
    return nullptr;
}

/// A global variable, or the system property of that name.
Value Interpreter::environmentProperty(const EnvironmentObject& environment, SymbolId name) {
    if (std::string_view(environment.name) != "_global") return systemProperty(name);
    const auto found = globals_.find(name);
    return found == globals_.end() ? Value() : found->second;
}

Value Interpreter::evaluateSystemProperty(const PropertyExpression& expression) {
    place_ = expression.place;
    return systemProperty(expression.name);
}

Value Interpreter::systemProperty(SymbolId property) {
    if (const PropertyEntry* entry = propertyOf(Kind::Void, property)) return entry->read(*this, Value());
    const std::string& name = symbols.spelling(property);
    if (const char* need = neededBy(name)) return missing(need, property, nullptr);
    throw HostError("there is no \"the " + name + '"' + didYouMean(name, propertyNames(Kind::Void)));
}

Value Interpreter::evaluateIndex(const IndexExpression& expression) {
    const Value object = evaluate(*expression.object);
    const Value index = evaluate(*expression.index);
    place_ = expression.place;
    if (skipsStage() && object.isVoid()) return Value();
    if (holderOf(object) && index.is(Kind::Symbol)) return property(object, index.symbol(), expression.place);
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
    const Value held = asText(source);
    const auto& whole = *held.as<StringObject>();
    const auto [first, last] = chunkRange(expression, whole.text);
    return text(
        std::string(findIn(whole, expression.chunk, first, last, settings.itemDelimiter).of(whole.text)));
}

/// The value itself if it is a string, so that its index of characters is used again.
Value Interpreter::asText(const Value& value) { return value.is(Kind::String) ? value : text(plain(value)); }

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
