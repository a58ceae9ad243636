#include <cstdlib>

#include "player/host/Compare.h"
#include "player/host/HostError.h"
#include "player/lingo/Chunks.h"
#include "player/lingo/Operations.h"

/// Texts, calls and the course of statements.
namespace krl::player {

using Next = Operations::Next;

namespace {

/// Whether a chunk of a value is the property of that name.
bool isKeyed(const Value& value) { return value.is(Kind::PropertyList) || value.is(Kind::ScriptInstance); }

const char* chunkName(ChunkKind kind) {
    static constexpr const char* names[] = {"char", "word", "item", "line"};
    return names[static_cast<size_t>(kind)];
}

void dropPositions(Frame& frame, const Instruction& at) {
    const ChunkForm form = ChunkForm::of(at.d);
    if (form.first) frame.drop(at.c);
    if (form.last) frame.drop(at.c + 1);
}

}  // namespace

Next Operations::text(Interpreter& interpreter, Frame& frame, const Instruction& at) {
    const Value taken = frame.take(at.b);
    frame.registers[at.a] = interpreter.asText(taken);
    return &at + 1;
}

Next Operations::chunkText(Interpreter& interpreter, Frame& frame, const Instruction& at) {
    const Value taken = frame.take(at.b);
    if (taken.is(Kind::Member) && at.c == 0)
        throw HostError("expected a text to change, not a member; set its property \"text\"");
    frame.registers[at.a] = interpreter.textOf(taken);
    return &at + 1;
}

Next Operations::requireText(Interpreter&, Frame& frame, const Instruction& at) {
    const Kind kind = frame.operand(at.a).kind();
    if (kind != Kind::String)
        throw HostError("expected a string before the brackets with a range, not " + kindName(kind));
    return &at + 1;
}

Next Operations::show(Interpreter& interpreter, Frame& frame, const Instruction& at) {
    frame.registers[at.a] = interpreter.text(shownText(interpreter.style(), frame.take(at.b)));
    return &at + 1;
}

/// A number in an operand as the position of a chunk.
int32_t Operations::position(Interpreter& interpreter, const Frame& frame, int32_t operand) {
    const Value& value = frame.operand(operand);
    if (value.isInteger()) return value.integer();
    Value found;
    if (!numberIn(value, found, interpreter.heap))
        throw HostError("expected a number for the position of the chunk, not " + kindName(value.kind()));
    return found.isInteger() ? found.integer() : rounded(found.number());
}

/// The chunks that are meant, from 1; without positions the last one.
std::pair<int32_t, int32_t> Operations::range(Interpreter& interpreter, Frame& frame, const Instruction& at,
                                              std::string_view text) {
    const ChunkForm form = ChunkForm::of(at.d);
    const char delimiter = interpreter.settings.itemDelimiter;
    if (!form.first) {
        const int32_t count = countChunks(text, form.kind, delimiter);
        return {count, count};
    }
    const int32_t first = position(interpreter, frame, at.c);
    const int32_t last = form.last ? position(interpreter, frame, at.c + 1) : first;
    return rangeOf(text, form.kind, first, last, delimiter);
}

/// `list.item[2]` looks like a chunk but is the property of that name, which can have any key.
Next Operations::chunk(Interpreter& interpreter, Frame& frame, const Instruction& at) {
    const ChunkForm form = ChunkForm::of(at.d);
    const Value& source = frame.operand(at.b);
    Value found;
    if (form.isOneChar() && source.is(Kind::String) && frame.operand(at.c).isInteger())
        if (const Value* letter =
                interpreter.letterOf(*source.as<StringObject>(), frame.operand(at.c).integer())) {
            found = Value(*letter);
            frame.drop(at.b);
            frame.registers[at.a] = std::move(found);
            return &at + 1;
        }
    if (isKeyed(source)) {
        found = interpreter.property(source, interpreter.symbols.identifier(chunkName(form.kind)));
        if (form.first) found = elementOf(interpreter, found, frame.operand(at.c));
    } else {
        const Value held = interpreter.textOf(source);
        const auto& whole = *held.as<StringObject>();
        const auto [first, last] = range(interpreter, frame, at, whole.text);
        const Stretch place = findIn(whole, form.kind, first, last, interpreter.settings.itemDelimiter);
        found = interpreter.piece(place.of(whole.text));
    }
    dropPositions(frame, at);
    frame.drop(at.b);
    frame.registers[at.a] = std::move(found);
    return &at + 1;
}

Next Operations::chunkCount(Interpreter& interpreter, Frame& frame, const Instruction& at) {
    const Value whole = interpreter.textOf(frame.take(at.b));
    const ChunkKind kind = ChunkForm::of(at.d).kind;
    frame.registers[at.a] =
        Value::integer(countIn(*whole.as<StringObject>(), kind, interpreter.settings.itemDelimiter));
    return &at + 1;
}

Next Operations::putChunk(Interpreter& interpreter, Frame& frame, const Instruction& at) {
    const Value source = frame.take(at.b), added = std::move(frame.registers[at.c + 2]);
    const std::string& whole = source.as<StringObject>()->text;
    const std::string& more = added.as<StringObject>()->text;
    const auto [first, last] = range(interpreter, frame, at, whole);
    dropPositions(frame, at);
    const ChunkKind kind = ChunkForm::of(at.d).kind;
    const bool padded = kind == ChunkKind::Item || kind == ChunkKind::Line;
    const size_t most = whole.size() + more.size() + (padded ? static_cast<size_t>(std::max(first, 0)) : 0);
    interpreter.heap.mustHold(most);
    interpreter.heap.mustFit("string", most);
    frame.registers[at.a] =
        interpreter.text(withChunk(whole, kind, first, last, interpreter.settings.itemDelimiter, more));
    return &at + 1;
}

Next Operations::deleteChunk(Interpreter& interpreter, Frame& frame, const Instruction& at) {
    const Value source = frame.take(at.b);
    const std::string& whole = source.as<StringObject>()->text;
    const auto [first, last] = range(interpreter, frame, at, whole);
    dropPositions(frame, at);
    frame.registers[at.a] = interpreter.text(
        withoutChunk(whole, ChunkForm::of(at.d).kind, first, last, interpreter.settings.itemDelimiter));
    return &at + 1;
}

Next Operations::call(Interpreter& interpreter, Frame& frame, const Instruction& at) {
    return callBy<false>(interpreter, frame, at);
}

Next Operations::send(Interpreter& interpreter, Frame& frame, const Instruction& at) {
    return callBy<true>(interpreter, frame, at);
}

template <bool kMethod>
Next Operations::callBy(Interpreter& interpreter, Frame& frame, const Instruction& at) {
    const std::span<const Value> arguments{frame.registers + at.c, static_cast<size_t>(at.d)};
    // Values up to images have no handlers of their own.
    if (!kMethod && (arguments.empty() || arguments.front().kind() <= Kind::Image))
        if (const HandlerCode* code = frame.script->handler(at.b))
            return interpreter.begin(*frame.script, *code, frame.owner, arguments).at;
    Interpreter::Callee callee;
    if (interpreter.findCallee(at.b, arguments, kMethod, callee))
        return interpreter.begin(*callee.script, *callee.code, callee.owner, arguments).at;
    Value answer = interpreter.callByName(at.b, arguments, kMethod);
    frame.drop(at.c, at.d);
    if (at.a >= 0) frame.registers[at.a] = std::move(answer);
    return &at + 1;
}

/// Ends a handler; its caller goes on after the call.
Next Operations::leave(Interpreter& interpreter, Frame& frame, Value answer) {
    if (frame.outermost) {
        frame.answer = std::move(answer);
        return nullptr;
    }
    interpreter.pop();
    Frame& caller = *interpreter.frame_;
    const Instruction& call = *caller.at;
    caller.drop(call.c, call.d);
    if (call.a >= 0) caller.registers[call.a] = Value(answer);
    interpreter.result = std::move(answer);
    return &call + 1;
}

Next Operations::answer(Interpreter& interpreter, Frame& frame, const Instruction& at) {
    return leave(interpreter, frame, frame.take(at.a));
}

Next Operations::end(Interpreter& interpreter, Frame& frame, const Instruction&) {
    return leave(interpreter, frame, Value());
}

Next Operations::step(Interpreter& interpreter, Frame&, const Instruction& at) {
    interpreter.countSteps(at.a);
    return &at + 1;
}

Next Operations::put(Interpreter& interpreter, Frame& frame, const Instruction& at) {
    std::string line = "--";
    for (int32_t i = 0; i < at.b; ++i) line += ' ' + frame.registers[at.a + i].as<StringObject>()->text;
    frame.drop(at.a, at.b);
    writeLines(interpreter.output, line + '\n');
    return &at + 1;
}

Next Operations::jump(Interpreter&, Frame&, const Instruction& at) { return &at + at.d; }

Next Operations::jumpUnless(Interpreter&, Frame& frame, const Instruction& at) {
    const bool holds = truthOf(frame.operand(at.a));
    frame.drop(at.a);
    return &at + (holds ? 1 : at.d);
}

Next Operations::jumpIfEqual(Interpreter& interpreter, Frame& frame, const Instruction& at) {
    const bool same = equal(interpreter.symbols, frame.operand(at.a), frame.operand(at.b));
    frame.drop(at.b);
    return &at + (same ? at.d : 1);
}

/// The number in an operand of a loop that counts.
inline int32_t Operations::whole(Interpreter& interpreter, Frame& frame, int32_t operand) {
    const Value& value = frame.operand(operand);
    return value.isInteger() ? value.integer() : converted(interpreter, frame, operand);
}

int32_t Operations::converted(Interpreter& interpreter, Frame& frame, int32_t operand) {
    const Value& value = frame.operand(operand);
    Value number;
    if (!numberIn(value, number, interpreter.heap))
        throw HostError("expected a number to count with, not " + kindName(value.kind()));
    frame.drop(operand);
    return number.isInteger() ? number.integer() : rounded(number.number());
}

Next Operations::count(Interpreter& interpreter, Frame& frame, const Instruction& at) {
    frame.registers[at.a] = Value::integer(whole(interpreter, frame, at.b));
    return &at + 1;
}

Next Operations::countTurn(Interpreter& interpreter, Frame& frame, const Instruction& at) {
    const int32_t number = frame.registers[at.a].integer(), end = whole(interpreter, frame, at.b);
    if (at.c < 0 ? number < end : number > end) return &at + at.d;
    interpreter.countSteps(std::abs(at.c));
    return &at + 1;
}

/// The loop ends at the last number that there is.
Next Operations::countOn(Interpreter& interpreter, Frame& frame, const Instruction& at) {
    const int32_t number = whole(interpreter, frame, at.b);
    if (number == (at.c < 0 ? INT32_MIN : INT32_MAX)) return &at + 1;
    frame.registers[at.a].setInteger(at.c < 0 ? number - 1 : number + 1);
    return &at + at.d;
}

Next Operations::countAgain(Interpreter& interpreter, Frame& frame, const Instruction& at) {
    const int32_t reached = whole(interpreter, frame, at.a);
    if (reached == (at.c < 0 ? INT32_MIN : INT32_MAX)) return &at + 1;
    const int32_t number = at.c < 0 ? reached - 1 : reached + 1;
    frame.registers[at.a].setInteger(number);
    const int32_t end = whole(interpreter, frame, at.b);
    if (at.c < 0 ? number < end : number > end) return &at + 1;
    interpreter.countSteps(std::abs(at.c));
    return &at + at.d;
}

Next Operations::each(Interpreter&, Frame& frame, const Instruction& at) {
    const Value& list = frame.registers[at.a];
    if (!list.is(Kind::List) && !list.is(Kind::PropertyList))
        throw HostError("expected a list to repeat over, not " + kindName(list.kind()));
    frame.registers[at.a + 1] = Value::integer(0);
    return &at + 1;
}

// The body may change the list, so its length is read for every turn.
Next Operations::eachTurn(Interpreter& interpreter, Frame& frame, const Instruction& at) {
    const Value& list = frame.registers[at.b];
    const int32_t place = frame.registers[at.b + 1].integer();
    const auto i = static_cast<size_t>(place);
    const auto* linear = list.as<ListObject>();
    const auto* properties = list.as<PropertyListObject>();
    if (i >= (linear ? linear->items.size() : properties->entries.size())) return &at + at.d;
    frame.registers[at.a] = Value(linear ? linear->items[i] : properties->entries[i].value);
    frame.registers[at.b + 1] = Value::integer(place + 1);
    interpreter.countSteps(at.c);
    return &at + 1;
}

}  // namespace krl::player
