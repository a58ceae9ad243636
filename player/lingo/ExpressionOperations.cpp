#include <utility>

#include "player/host/Compare.h"
#include "player/host/HostError.h"
#include "player/lingo/Operations.h"

/// Values, calculations and parts of objects.
namespace krl::player {

using Next = Operations::Next;

/// Stores the result of an operation on the operands b and c.
Next Operations::result(Frame& frame, const Instruction& at, Value made) {
    frame.drop(at.b);
    frame.drop(at.c);
    frame.registers[at.a] = std::move(made);
    return &at + 1;
}

Next Operations::move(Interpreter&, Frame& frame, const Instruction& at) {
    frame.registers[at.a] = frame.take(at.b);
    return &at + 1;
}

Next Operations::copy(Interpreter&, Frame& frame, const Instruction& at) {
    frame.registers[at.a] = Value(frame.operand(at.b));
    return &at + 1;
}

Next Operations::clear(Interpreter&, Frame& frame, const Instruction& at) {
    frame.registers[at.a] = Value();
    return &at + 1;
}

Next Operations::loadGlobal(Interpreter& interpreter, Frame& frame, const Instruction& at) {
    const Value& found = interpreter.globals_[at.b];
    frame.registers[at.a] = found.isVoid() ? Value() : found;
    return &at + 1;
}

Next Operations::storeGlobal(Interpreter& interpreter, Frame& frame, const Instruction& at) {
    interpreter.globals_[at.a] = frame.take(at.b);
    return &at + 1;
}

template <>
Value& Operations::variable<VariableScope::Local>(Interpreter&, Frame& frame, const Instruction& at,
                                                  int32_t) {
    return frame.registers[at.a];
}

template <>
Value& Operations::variable<VariableScope::Global>(Interpreter& interpreter, Frame&, const Instruction& at,
                                                   int32_t) {
    return interpreter.globals_[at.a];
}

/// Properties are declared in the script that runs; without an object they have no place.
template <>
Value& Operations::variable<VariableScope::Property>(Interpreter& interpreter, Frame& frame,
                                                     const Instruction& at, int32_t name) {
    const auto place = static_cast<size_t>(at.a);
    if (!frame.properties || place >= frame.properties->properties.size())
        interpreter.unknownVariable(SymbolId(name));
    return frame.properties->properties[place];
}

Next Operations::loadProperty(Interpreter& interpreter, Frame& frame, const Instruction& at) {
    const Instruction place{nullptr, at.b, 0, 0, 0};
    frame.registers[at.a] = Value(variable<VariableScope::Property>(interpreter, frame, place, at.c));
    return &at + 1;
}

Next Operations::storeProperty(Interpreter& interpreter, Frame& frame, const Instruction& at) {
    variable<VariableScope::Property>(interpreter, frame, at, at.c) = frame.take(at.b);
    return &at + 1;
}

namespace {

/// A list with room for what its literal adds.
template <class ListType, class Content>
Value emptyList(Heap& heap, Content ListType::*content, int32_t room) {
    auto made = std::make_unique<ListType>();
    (made.get()->*content).reserve(static_cast<size_t>(room));
    return heap.keep(std::move(made));
}

}  // namespace

Next Operations::list(Interpreter& interpreter, Frame& frame, const Instruction& at) {
    frame.registers[at.a] = emptyList(interpreter.heap, &ListObject::items, at.b);
    return &at + 1;
}

Next Operations::addItem(Interpreter&, Frame& frame, const Instruction& at) {
    frame.registers[at.a].as<ListObject>()->items.push_back(frame.take(at.b));
    return &at + 1;
}

Next Operations::propertyList(Interpreter& interpreter, Frame& frame, const Instruction& at) {
    frame.registers[at.a] = emptyList(interpreter.heap, &PropertyListObject::entries, at.b);
    return &at + 1;
}

Next Operations::addEntry(Interpreter&, Frame& frame, const Instruction& at) {
    auto& entries = frame.registers[at.a].as<PropertyListObject>()->entries;
    entries.push_back({frame.take(at.b), frame.take(at.c)});
    return &at + 1;
}

Next Operations::negate(Interpreter& interpreter, Frame& frame, const Instruction& at) {
    Value made = negated(interpreter, frame.operand(at.b));
    frame.drop(at.b);
    frame.registers[at.a] = std::move(made);
    return &at + 1;
}

Next Operations::invert(Interpreter&, Frame& frame, const Instruction& at) {
    const bool held = truthOf(frame.operand(at.b));
    frame.drop(at.b);
    frame.registers[at.a] = Value::truth(!held);
    return &at + 1;
}

/// Two integers take the fast path. A temporary one needs no release.
template <Operator kOperation>
Next Operations::calculate(Interpreter& interpreter, Frame& frame, const Instruction& at) {
    const Value& left = frame.operand(at.b);
    const Value& right = frame.operand(at.c);
    const bool integers = left.isInteger() && right.isInteger();
    if (integers && operateOnIntegers(kOperation, left.integer(), right.integer(), frame.registers[at.a]))
        return &at + 1;
    return result(frame, at, operate(interpreter, kOperation, left, right));
}

/// The right operand is an integer as written.
template <Operator kOperation>
Next Operations::calculateBy(Interpreter& interpreter, Frame& frame, const Instruction& at) {
    const Value& left = frame.operand(at.b);
    if (left.isInteger() && operateOnIntegers(kOperation, left.integer(), at.c, frame.registers[at.a]))
        return &at + 1;
    Value made = operate(interpreter, kOperation, left, Value::integer(at.c));
    frame.drop(at.b);
    frame.registers[at.a] = std::move(made);
    return &at + 1;
}

template <Operator kOperation>
Next Operations::unlessBy(Interpreter& interpreter, Frame& frame, const Instruction& at) {
    const Value& left = frame.operand(at.a);
    Value found;
    if (left.isInteger() && operateOnIntegers(kOperation, left.integer(), at.b, found))
        return &at + (found.integer() != 0 ? 1 : at.d);
    const bool holds = truthOf(operate(interpreter, kOperation, left, Value::integer(at.b)));
    frame.drop(at.a);
    return &at + (holds ? 1 : at.d);
}

/// Two integers make no value for the result.
template <Operator kOperation>
Next Operations::unless(Interpreter& interpreter, Frame& frame, const Instruction& at) {
    const Value& left = frame.operand(at.a);
    const Value& right = frame.operand(at.b);
    Value found;
    const bool integers = left.isInteger() && right.isInteger();
    if (integers && operateOnIntegers(kOperation, left.integer(), right.integer(), found))
        return &at + (found.integer() != 0 ? 1 : at.d);
    const bool holds = truthOf(operate(interpreter, kOperation, left, right));
    frame.drop(at.a);
    frame.drop(at.b);
    return &at + (holds ? 1 : at.d);
}

namespace {

template <size_t... kNumbers>
constexpr std::array<Operation, sizeof...(kNumbers)> tableOf(auto make, std::index_sequence<kNumbers...>) {
    return {make.template operator()<static_cast<Operator>(kNumbers)>()...};
}

constexpr auto kEveryOperator = std::make_index_sequence<static_cast<size_t>(Operator::Or) + 1>();

}  // namespace

Operation Operations::binary(Operator operation) {
    static constexpr auto kTable =
        tableOf([]<Operator kOperation>() -> Operation { return &calculate<kOperation>; }, kEveryOperator);
    return kTable[static_cast<size_t>(operation)];
}

Operation Operations::binaryBy(Operator operation) {
    static constexpr auto kTable =
        tableOf([]<Operator kOperation>() -> Operation { return &calculateBy<kOperation>; }, kEveryOperator);
    return kTable[static_cast<size_t>(operation)];
}

Operation Operations::jumpUnlessBinaryBy(Operator operation) {
    static constexpr auto kTable =
        tableOf([]<Operator kOperation>() -> Operation { return &unlessBy<kOperation>; }, kEveryOperator);
    return kTable[static_cast<size_t>(operation)];
}

Operation Operations::jumpUnlessBinary(Operator operation) {
    static constexpr auto kTable =
        tableOf([]<Operator kOperation>() -> Operation { return &unless<kOperation>; }, kEveryOperator);
    return kTable[static_cast<size_t>(operation)];
}

Next Operations::join(Interpreter& interpreter, Frame& frame, const Instruction& at) {
    std::string whole = interpreter.joined(nullptr, {frame.registers + at.b, static_cast<size_t>(at.c)});
    frame.drop(at.b, at.c);
    frame.registers[at.a] = interpreter.text(std::move(whole));
    return &at + 1;
}

/// A string that nothing else holds grows where it is.
template <VariableScope kScope>
Next Operations::appendTo(Interpreter& interpreter, Frame& frame, const Instruction& at) {
    Value& held = variable<kScope>(interpreter, frame, at, at.d);
    const std::span<const Value> added{frame.registers + at.b, static_cast<size_t>(at.c)};
    if (held.is(Kind::String) && interpreter.heap.isSole(held.words())) {
        auto& text = *held.as<StringObject>();
        for (const Value& one : added) interpreter.grow(text, one);
    } else {
        held = interpreter.text(interpreter.joined(&held, added));
    }
    frame.drop(at.b, at.c);
    return &at + 1;
}

Operation Operations::append(VariableScope scope) {
    switch (scope) {
        case VariableScope::Local:
            return &appendTo<VariableScope::Local>;
        case VariableScope::Global:
            return &appendTo<VariableScope::Global>;
        default:
            return &appendTo<VariableScope::Property>;
    }
}

Next Operations::property(Interpreter& interpreter, Frame& frame, const Instruction& at) {
    Value found = interpreter.property(frame.operand(at.b), at.c);
    frame.drop(at.b);
    frame.registers[at.a] = std::move(found);
    return &at + 1;
}

Next Operations::setProperty(Interpreter& interpreter, Frame& frame, const Instruction& at) {
    interpreter.setProperty(frame.operand(at.a), at.b, frame.take(at.c));
    frame.drop(at.a);
    return &at + 1;
}

/// Colours are immutable: what follows assigns the changed one.
Next Operations::setChannel(Interpreter& interpreter, Frame& frame, const Instruction& at) {
    const Value object = std::move(frame.registers[at.a]);
    if (!object.is(Kind::Colour)) {
        interpreter.setProperty(object, at.b, frame.take(at.c));
        return &at + at.d;
    }
    frame.registers[at.a] = interpreter.withChannel(object, at.b, frame.take(at.c));
    return &at + 1;
}

Next Operations::systemProperty(Interpreter& interpreter, Frame& frame, const Instruction& at) {
    frame.registers[at.a] = interpreter.systemProperty(at.b);
    return &at + 1;
}

Next Operations::setSystemProperty(Interpreter& interpreter, Frame& frame, const Instruction& at) {
    interpreter.setSystemProperty(at.a, frame.take(at.b));
    return &at + 1;
}

Next Operations::item(Interpreter& interpreter, Frame& frame, const Instruction& at) {
    return result(frame, at, interpreter.item(frame.operand(at.b), frame.operand(at.c)));
}

Next Operations::setItem(Interpreter& interpreter, Frame& frame, const Instruction& at) {
    interpreter.setItem(frame.operand(at.a), frame.operand(at.b), frame.take(at.c));
    frame.drop(at.a);
    frame.drop(at.b);
    return &at + 1;
}

Next Operations::deleteItem(Interpreter& interpreter, Frame& frame, const Instruction& at) {
    deleteElement(interpreter, frame.operand(at.a), frame.operand(at.b));
    frame.drop(at.a);
    frame.drop(at.b);
    return &at + 1;
}

// `put text into field "name"`
Next Operations::setField(Interpreter& interpreter, Frame& frame, const Instruction& at) {
    const Value name = frame.take(at.a);
    const SymbolId member = interpreter.symbols.identifier("member");
    setMemberText(interpreter, interpreter.callByName(member, {&name, 1}, false), frame.take(at.b));
    return &at + 1;
}

Next Operations::refuse(Interpreter&, Frame&, const Instruction&) {
    throw HostError("cannot assign to this");
}

}  // namespace krl::player
