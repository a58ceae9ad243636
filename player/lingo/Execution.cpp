#include "core/Numbers.h"
#include "player/host/Compare.h"
#include "player/lingo/Arithmetic.h"
#include "player/lingo/Chunks.h"
#include "player/lingo/InterpreterScopes.h"
#include "player/lingo/StageNames.h"

/// Statements and assignments.
namespace krl::player {

Interpreter::Flow Interpreter::execute(const Block& block) {
    for (const StatementPointer& statement : block)
        if (const Flow flow = execute(*statement); flow != Flow::Onward) return flow;
    return Flow::Onward;
}

Interpreter::Flow Interpreter::execute(const Statement& statement) {
    const DepthGuard guard(*this);
    place_ = statement.place;
    countStep();
    switch (statement.kind) {
        case StatementKind::Evaluate:
            evaluate(*static_cast<const ExpressionStatement&>(statement).expression);
            return Flow::Onward;
        case StatementKind::Assign: {
            const auto& assignment = static_cast<const AssignStatement&>(statement);
            if (!growInPlace(assignment)) assign(*assignment.target, evaluate(*assignment.value));
            return Flow::Onward;
        }
        case StatementKind::Put:
            put(static_cast<const PutStatement&>(statement));
            return Flow::Onward;
        case StatementKind::PutInto:
            putInto(static_cast<const AssignStatement&>(statement));
            return Flow::Onward;
        case StatementKind::Delete:
            remove(*static_cast<const ExpressionStatement&>(statement).expression);
            return Flow::Onward;
        case StatementKind::If:
            return executeIf(static_cast<const IfStatement&>(statement));
        case StatementKind::RepeatWhile:
            return repeatWhile(static_cast<const RepeatStatement&>(statement));
        case StatementKind::RepeatWith:
            return repeatWith(static_cast<const RepeatStatement&>(statement));
        case StatementKind::RepeatIn:
            return repeatIn(static_cast<const RepeatStatement&>(statement));
        case StatementKind::Case:
            return executeCase(static_cast<const CaseStatement&>(statement));
        case StatementKind::Return: {
            const auto& answer = static_cast<const ExpressionStatement&>(statement);
            if (answer.expression) frame().answer = evaluate(*answer.expression);
            return Flow::Return;
        }
        case StatementKind::Exit:
            return Flow::Return;
        case StatementKind::ExitRepeat:
            return Flow::ExitRepeat;
        case StatementKind::NextRepeat:
            return Flow::NextRepeat;
        case StatementKind::Nothing:
            break;
    }
    return Flow::Onward;
}

Interpreter::Flow Interpreter::executeIf(const IfStatement& statement) {
    for (const IfStatement::Branch& branch : statement.branches)
        if (truthOf(evaluate(*branch.condition))) return execute(branch.body);
    return execute(statement.otherwise);
}

Interpreter::Flow Interpreter::executeCase(const CaseStatement& statement) {
    const Value subject = evaluate(*statement.subject);
    for (const CaseStatement::Branch& branch : statement.branches)
        for (const ExpressionPointer& label : branch.labels)
            if (equal(symbols, subject, evaluate(*label))) return execute(branch.body);
    return execute(statement.otherwise);
}

void Interpreter::countStep() {
    if (++steps_ > options_.stepLimit)
        throw HostError("the script takes more than " + std::to_string(options_.stepLimit) + " steps");
}

bool Interpreter::goOn(const RepeatStatement& statement, Flow& flow) {
    countStep();
    flow = execute(statement.body);
    if (flow == Flow::Return) return false;
    const bool ended = flow == Flow::ExitRepeat;
    flow = Flow::Onward;
    return !ended;
}

Interpreter::Flow Interpreter::repeatWhile(const RepeatStatement& statement) {
    Flow flow = Flow::Onward;
    while (truthOf(evaluate(*statement.condition)) && goOn(statement, flow)) {
    }
    return flow;
}

/// The end is evaluated again for every turn, and the body may change the variable.
Interpreter::Flow Interpreter::repeatWith(const RepeatStatement& statement) {
    const auto whole = [&](const Value& value) {
        Value number;
        place_ = statement.place;
        if (!numberIn(value, number, heap))
            throw HostError("expected a number to count with, not " + kindName(value.kind()));
        return number.isInteger() ? number.integer() : rounded(number.number());
    };
    const int32_t step = statement.down ? -1 : 1;
    const int32_t limit = statement.down ? INT32_MIN : INT32_MAX;
    int32_t number = whole(evaluate(*statement.from));
    Flow flow = Flow::Onward;
    for (;;) {
        assignVariable(*statement.variable, Value::integer(number));
        const int32_t end = whole(evaluate(*statement.to));
        if (statement.down ? number < end : number > end) return flow;
        if (!goOn(statement, flow)) return flow;
        number = whole(evaluateVariable(*statement.variable));
        if (number == limit) return flow;
        number += step;
    }
}

Interpreter::Flow Interpreter::repeatIn(const RepeatStatement& statement) {
    const Value list = evaluate(*statement.list);
    place_ = statement.place;
    const auto* linear = list.as<ListObject>();
    const auto* properties = list.as<PropertyListObject>();
    if (!linear && !properties)
        throw HostError("expected a list to repeat over, not " + kindName(list.kind()));
    Flow flow = Flow::Onward;
    // The body may change the list, so its length is read for every turn.
    for (size_t i = 0; i < (linear ? linear->items.size() : properties->entries.size()); ++i) {
        assignVariable(*statement.variable, linear ? linear->items[i] : properties->entries[i].value);
        if (!goOn(statement, flow)) break;
    }
    return flow;
}

void Interpreter::put(const PutStatement& statement) {
    std::string line = "--";
    for (const ExpressionPointer& value : statement.values)
        line += ' ' + shownText(style(), evaluate(*value));
    writeLines(output, line + '\n');
}

/// The string in a variable, if nothing else holds it.
StringObject* Interpreter::growable(const Expression& target) {
    if (target.kind != ExpressionKind::Variable) return nullptr;
    const Value* held = variable(static_cast<const VariableExpression&>(target));
    return held && held->is(Kind::String) && heap.isSole(held->words()) ? held->as<StringObject>() : nullptr;
}

void Interpreter::grow(StringObject& text, const std::string& more) {
    const size_t whole = text.text.size() + more.size();
    if (whole > text.text.capacity()) heap.mustHold(whole);
    text.append(more);
    heap.recount(text);
}

namespace {

bool joins(const Expression& expression) {
    if (expression.kind != ExpressionKind::Binary) return false;
    const Operator operation = static_cast<const BinaryExpression&>(expression).operation;
    return operation == Operator::Concatenate || operation == Operator::ConcatenateSpaced;
}

/// The slot of the local variable that a joined text begins with; -1 for anything else.
int firstSlot(const Expression& expression) {
    const Expression* at = &expression;
    while (joins(*at)) at = static_cast<const BinaryExpression&>(*at).left.get();
    if (at == &expression || at->kind != ExpressionKind::Variable) return -1;
    const auto& name = static_cast<const VariableExpression&>(*at);
    return name.scope == VariableScope::Local ? name.slot : -1;
}

}  // namespace

/// What a joined text adds to the variable that it begins with.
std::string Interpreter::addedText(const Expression& joined) {
    if (!joins(joined)) return "";
    const auto& sum = static_cast<const BinaryExpression&>(joined);
    std::string added = addedText(*sum.left);
    if (sum.operation == Operator::ConcatenateSpaced) added += ' ';
    return added += plain(evaluate(*sum.right));
}

/// `s = s & x` with a local variable, whose string grows where it is.
bool Interpreter::growInPlace(const AssignStatement& statement) {
    if (!joins(*statement.value) || !growable(*statement.target)) return false;
    const auto& target = static_cast<const VariableExpression&>(*statement.target);
    if (target.scope != VariableScope::Local || firstSlot(*statement.value) != target.slot) return false;
    const std::string added = addedText(*statement.value);
    place_ = statement.value->place;
    // What was evaluated may have taken hold of the string.
    if (StringObject* grown = growable(target))
        grow(*grown, added);
    else
        assign(target, text(plain(evaluateVariable(target)) + added));
    return true;
}

void Interpreter::putInto(const AssignStatement& statement) {
    Value value = evaluate(*statement.value);
    if (StringObject* text = statement.mode == PutMode::After ? growable(*statement.target) : nullptr)
        return grow(*text, plain(value));
    if (statement.mode == PutMode::Into) return assign(*statement.target, std::move(value));
    // An unassigned variable counts as an empty string here.
    std::string present;
    const bool named = statement.target->kind == ExpressionKind::Variable;
    const Value* known =
        named ? variable(static_cast<const VariableExpression&>(*statement.target)) : nullptr;
    if (known || !named) present = plain(known ? *known : evaluate(*statement.target));
    const std::string added = plain(value);
    heap.mustHold(present.size() + added.size());
    assign(*statement.target, text(statement.mode == PutMode::After ? present + added : added + present));
}

void Interpreter::assign(const Expression& target, Value value) {
    switch (target.kind) {
        case ExpressionKind::Variable:
            return assignVariable(static_cast<const VariableExpression&>(target), std::move(value));
        case ExpressionKind::Property:
            return assignProperty(static_cast<const PropertyExpression&>(target), value);
        case ExpressionKind::SystemProperty: {
            const auto& property = static_cast<const PropertyExpression&>(target);
            place_ = target.place;
            return setSystemProperty(property.name, value);
        }
        case ExpressionKind::Index: {
            const auto& index = static_cast<const IndexExpression&>(target);
            const Value object = evaluate(*index.object), place = evaluate(*index.index);
            place_ = target.place;
            if (skipsStage() && object.isVoid()) return;
            return setItem(object, place, value);
        }
        case ExpressionKind::Call: {
            // `put text into field "name"`
            const auto& call = static_cast<const CallExpression&>(target);
            if (call.arguments.empty() || call.name != symbols.identifier("field")) break;
            const Value name = evaluate(*call.arguments.front());
            place_ = target.place;
            return setMemberText(*this, callByName(symbols.identifier("member"), {&name, 1}, false), value);
        }
        case ExpressionKind::Chunk:
            return assignChunk(static_cast<const ChunkExpression&>(target), plain(value));
        default:
            break;
    }
    // `put x into member("name").image[1]` and the like end up here when nested in a chunk.
    place_ = target.place;
    throw HostError("cannot assign to this");
}

void Interpreter::setSystemProperty(SymbolId name, const Value& value) {
    const PropertyEntry* entry = propertyOf(Kind::Void, name);
    if (entry && entry->write) return entry->write(*this, Value(), value);
    const std::string& spelled = symbols.spelling(name);
    const char* need = entry ? nullptr : neededBy(spelled);
    if (!need) throw HostError("\"the " + spelled + "\" cannot be set");
    missing(need, name, nullptr);
}

/// `object[index] = value`
void Interpreter::setItem(const Value& object, const Value& index, const Value& value) {
    Value* property = index.is(Kind::Symbol) ? instanceProperty(object, index.symbol()) : nullptr;
    if (!property) return setElement(*this, object, index, value);
    const Value gone = std::exchange(*property, value);
}

Value* Interpreter::variable(const VariableExpression& expression) {
    switch (expression.scope) {
        case VariableScope::Local: {
            Value& local = frame().locals[static_cast<size_t>(expression.slot)];
            return local.isUnassigned() ? nullptr : &local;
        }
        case VariableScope::Global: {
            const auto found = globals_.find(expression.name);
            return found == globals_.end() ? nullptr : &found->second;
        }
        case VariableScope::Property:
            break;
    }
    return instanceProperty(frame().owner, expression.name);
}

void Interpreter::assignVariable(const VariableExpression& target, Value value) {
    switch (target.scope) {
        case VariableScope::Local:
            frame().locals[static_cast<size_t>(target.slot)] = std::move(value);
            return;
        case VariableScope::Global:
            globals_[target.name] = std::move(value);
            return;
        case VariableScope::Property:
            break;
    }
    if (Value* place = instanceProperty(frame().owner, target.name))
        *place = std::move(value);
    else
        unknownVariable(target);
}

void Interpreter::assignProperty(const PropertyExpression& target, const Value& value) {
    const Value object = evaluate(*target.object);
    place_ = target.place;
    if (auto* properties = object.as<PropertyListObject>())
        return setEntry(*this, *properties, Value::symbol(target.name), value);
    if (Value* place = instanceProperty(object, target.name)) {
        *place = value;
        return;
    }
    if (const auto* environment = object.as<EnvironmentObject>()) {
        if (std::string_view(environment->name) != "_global") return setSystemProperty(target.name, value);
        globals_[target.name] = value;
        return;
    }
    if (skipsStage() && object.isVoid()) return;
    if (object.is(Kind::Colour)) return assign(*target.object, withChannel(object, target.name, value));
    const PropertyEntry* entry = propertyOf(object.kind(), target.name);
    if (!entry) unknownProperty(object, target.name);
    if (!entry->write)
        throw HostError("the property \"" + symbols.spelling(target.name) + "\" of " +
                        kindName(object.kind()) + " cannot be set");
    entry->write(*this, object, value);
}

/// Colours are immutable: the variable gets a changed copy.
Value Interpreter::withChannel(const Value& colour, SymbolId name, const Value& level) {
    static constexpr const char* channels[] = {"red", "green", "blue"};
    uint32_t word = colour.colour().word;
    for (int i = 0; i < 3; ++i) {
        if (compareText(symbols.spelling(name), channels[i]) != 0) continue;
        if (!level.isNumber())
            throw HostError("expected a number for a colour, not " + kindName(level.kind()));
        const int32_t whole = level.isInteger() ? level.integer() : rounded(level.number());
        word = (word & ~(0xFFu << i * 8)) | uint32_t(clampByte(whole)) << i * 8;
        return Value::colour(Colour(word));
    }
    unknownProperty(colour, name);
}

void Interpreter::assignChunk(const ChunkExpression& target, const std::string& added) {
    const std::string whole = plain(evaluate(*target.source));
    const auto [first, last] = chunkRange(target, whole);
    heap.mustHold(whole.size() + added.size() + static_cast<size_t>(std::max(first, 0)));
    assign(*target.source, text(withChunk(whole, target.chunk, first, last, settings.itemDelimiter, added)));
}

void Interpreter::remove(const Expression& target) {
    if (target.kind == ExpressionKind::Chunk) return deleteChunk(static_cast<const ChunkExpression&>(target));
    const auto& index = static_cast<const IndexExpression&>(target);
    const Value object = evaluate(*index.object), place = evaluate(*index.index);
    place_ = target.place;
    deleteElement(*this, object, place);
}

void Interpreter::deleteChunk(const ChunkExpression& target) {
    const std::string whole = plain(evaluate(*target.source));
    const auto [first, last] = chunkRange(target, whole);
    assign(*target.source, text(withoutChunk(whole, target.chunk, first, last, settings.itemDelimiter)));
}

}  // namespace krl::player
