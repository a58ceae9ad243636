#include "player/cli/MovingChain.h"

#include <algorithm>
#include <cctype>

#include "catalogue/Arguments.h"
#include "catalogue/Catalogue.h"
#include "catalogue/Letters.h"
#include "catalogue/Notation.h"
#include "look/Extent.h"
#include "player/cli/Commands.h"

namespace krl::player {

namespace {

constexpr const char* kMovingNames[] = {"frame", "frames", "t", "seconds", "width", "height", "ease", "key"};

bool isWordLetter(char letter) { return std::isalnum(static_cast<unsigned char>(letter)) || letter == '_'; }

/// Calls `visit` with each word of an expression and the index behind it, texts, symbols and properties of
/// objects aside.
template <class Visit>
void forEachWord(const std::string& expression, Visit&& visit) {
    char before = ' ';
    for (size_t i = 0; i < expression.size();) {
        const size_t start = i;
        if (expression[i] == '"') {
            i = std::min(expression.find('"', i + 1), expression.size() - 1) + 1;
        } else if (isWordLetter(expression[i])) {
            while (i < expression.size() && isWordLetter(expression[i])) ++i;
            if (before != '#' && before != '.') visit(expression.substr(start, i - start), i);
        } else {
            ++i;
        }
        if (expression[i - 1] != ' ') before = expression[i - 1];
    }
}

/// The names of `kMovingNames` in an expression.
std::set<std::string> movingNamesIn(const std::string& expression) {
    std::set<std::string> found;
    forEachWord(expression, [&](const std::string& word, size_t) {
        for (const char* name : kMovingNames)
            if (sameLetters(word, name)) found.insert(name);
    });
    return found;
}

std::string trimmed(const std::string& text) {
    const size_t first = text.find_first_not_of(" \t\n"), last = text.find_last_not_of(" \t\n");
    return first == std::string::npos ? "" : text.substr(first, last - first + 1);
}

/// The arguments of a call whose bracket ends with the text or before it, divided at commas outside of
/// brackets and texts.
std::vector<std::string> argumentsIn(std::string_view text) {
    std::vector<std::string> found;
    std::string argument;
    int depth = 0;
    bool isQuoted = false;
    for (const char letter : text) {
        if (letter == '"') isQuoted = !isQuoted;
        if (!isQuoted) depth += (letter == '(' || letter == '[') - (letter == ')' || letter == ']');
        if (depth < 0) break;
        if (letter == ',' && depth == 0 && !isQuoted)
            found.push_back(std::exchange(argument, {}));
        else
            argument += letter;
    }
    if (!trimmed(argument).empty() || !found.empty()) found.push_back(argument);
    return found;
}

/// A function for expressions, and how many values it takes.
struct MovingFunction {
    const char* name;
    size_t least, most;
    const char* form;
};

constexpr MovingFunction kMovingFunctions[] = {
    {"ease", 3, 3, "ease(from, to, share)"},
    {"key", 1, 2, "key([frame: value, ...]) or key([frame: value, ...], #smooth)"},
    {"digits", 2, 2, "digits(number, least)"},
};

/// Throws `UsageError` where a function of `kMovingFunctions` has too few values or too many; the language
/// itself takes missing ones as VOID.
void requireForms(const std::string& expression) {
    forEachWord(expression, [&](const std::string& word, size_t end) {
        const size_t bracket = expression.find_first_not_of(' ', end);
        if (bracket == std::string::npos || expression[bracket] != '(') return;
        for (const MovingFunction& function : kMovingFunctions) {
            if (!sameLetters(word, function.name)) continue;
            const size_t count = argumentsIn(std::string_view(expression).substr(bracket + 1)).size();
            if (count < function.least || count > function.most)
                throw UsageError(expression + ": expected " + function.form);
        }
    });
}

/// The name before an argument's colon, or nothing.
std::string nameBefore(std::string& argument) {
    size_t end = argument[0] == '#' ? 1 : 0;
    while (end < argument.size() && isWordLetter(argument[end])) ++end;
    const size_t colon = argument.find_first_not_of(' ', end);
    if (end == 0 || colon == std::string::npos || argument[colon] != ':') return "";
    const std::string name = argument.substr(argument[0] == '#', end - (argument[0] == '#'));
    argument = trimmed(argument.substr(colon + 1));
    return name;
}

/// The one argument of `image(...)` as all of an expression, or nothing.
std::string fileIn(const std::string& expression) {
    const size_t bracket = expression.find('(');
    if (bracket == std::string::npos || expression.back() != ')') return "";
    if (!sameLetters(trimmed(expression.substr(0, bracket)), "image")) return "";
    const std::vector<std::string> inner =
        argumentsIn(expression.substr(bracket + 1, expression.size() - bracket - 2));
    return inner.size() == 1 ? trimmed(inner.front()) : "";
}

}  // namespace

MovingCall::MovingCall(const std::string& text) : text_(trimmed(text)) {
    const size_t bracket = text_.find('(');
    if (bracket == std::string::npos || text_.back() != ')') return;
    method_ = trimmed(text_.substr(0, bracket));
    for (const std::string& argument : argumentsIn(text_.substr(bracket + 1, text_.size() - bracket - 2))) {
        Part part;
        part.expression = trimmed(argument);
        if (!part.expression.empty()) part.name = nameBefore(part.expression);
        requireForms(part.expression);
        const std::set<std::string> names = movingNamesIn(part.expression);
        part.moves = !names.empty();
        part.file = fileIn(part.expression);
        names_.insert(names.begin(), names.end());
        parts_.push_back(part);
    }
}

std::optional<size_t> MovingCall::placeOf(const Part& part) const {
    const Method* method = catalogue().find(method_);
    if (!method) return std::nullopt;
    const std::vector<Argument>& declared = method->arguments();
    size_t place = 0;
    if (part.name.empty())
        place = static_cast<size_t>(&part - parts_.data());
    else
        while (place < declared.size() && !sameLetters(declared[place].name, part.name)) ++place;
    return place < declared.size() ? std::optional(place) : std::nullopt;
}

std::string MovingCall::converted(const Part& part) const {
    if (!part.file.empty()) return part.file;
    if (sameLetters(part.name, "region")) return "krlSides(" + part.expression + ')';
    const std::optional<size_t> place = placeOf(part);
    const ArgumentKind kind = place ? catalogue().find(method_)->arguments()[*place].kind
                              : percentOfExtent(part.name) == PercentKind::Whole ? ArgumentKind::Integer
                                                                                 : ArgumentKind::Value;
    if (kind == ArgumentKind::Integer) return "integer(" + part.expression + ')';
    return kind == ArgumentKind::Point ? "krlPlace(" + part.expression + ')' : part.expression;
}

std::string MovingCall::handlers(const std::string& prefix) const {
    std::string script;
    for (size_t i = 0; i < parts_.size(); ++i)
        if (parts_[i].moves)
            script +=
                "\non " + prefix + std::to_string(i + 1) + "\n  return " + converted(parts_[i]) + "\nend\n";
    return script;
}

std::string MovingCall::at(Session& session, const std::string& prefix) const {
    if (!moves()) return text_;
    std::string call = method_ + '(';
    for (size_t i = 0; i < parts_.size(); ++i) {
        const Part& part = parts_[i];
        call += (i > 0 ? ", " : "") + (part.name.empty() ? "" : part.name + ": ");
        if (!part.moves) {
            call += part.expression;
            continue;
        }
        try {
            const krl::Value value = session.evaluate(prefix + std::to_string(i + 1) + "()");
            if (value.as<krl::Picture>()) throw ScriptError("expected a value, or image() of a file's name");
            const std::string written = writeNotation(value);
            call += part.file.empty() ? written : "image(" + written + ')';
        } catch (const ScriptError& error) {
            throw ScriptError(method_ + ": " + part.expression + ": " + error.message());
        }
    }
    return call + ')';
}

std::string MovingCall::lingo(const ChainCall& still, int32_t width, int32_t height) const {
    std::vector<std::string> arguments = still.lingoArguments(width, height);
    for (const Part& part : parts_)
        if (const std::optional<size_t> place = placeOf(part); place && part.moves)
            arguments[*place] = part.file.empty() ? converted(part) : part.expression;
    std::string text = still.method().name();
    for (size_t i = 0; i < arguments.size(); ++i) text += (i > 0 ? ", " : "(") + arguments[i];
    return text + (arguments.empty() ? "()" : ")");
}

MovingChain::MovingChain(const std::vector<MovingCall>& calls, const SessionOptions& options)
    : calls_(calls), session_(options) {
    std::string script = frameHandlers();
    for (size_t i = 0; i < calls.size(); ++i)
        script += calls[i].handlers("krlCall" + std::to_string(i + 1) + "Argument");
    session_.define("the calls", script);
}

ChainCall MovingChain::callAt(size_t index) {
    ChainCall call(calls_[index].at(session_, "krlCall" + std::to_string(index + 1) + "Argument"));
    call.evaluate(session_, index < chain_.size() ? &chain_[index] : nullptr);
    return call;
}

const std::vector<ChainCall>& MovingChain::at(const FrameFacts& facts) {
    const std::string frame = "frame " + std::to_string(facts.frame) + ": ";
    try {
        session_.evaluate("krlAtFrame(" + std::to_string(facts.frame) + ", " + std::to_string(facts.frames) +
                          ", " + realNotation(facts.fps) + ", " + std::to_string(facts.width) + ", " +
                          std::to_string(facts.height) + ")");
        for (size_t i = 0; i < calls_.size(); ++i) {
            if (i < chain_.size() && !calls_[i].moves()) continue;
            ChainCall call = callAt(i);
            if (i < chain_.size())
                chain_[i] = std::move(call);
            else
                chain_.push_back(std::move(call));
        }
    } catch (const ScriptError& error) {
        throw ScriptError(frame + error.message());
    } catch (const CommandError& error) {
        throw ScriptError(frame + error.what());
    }
    return chain_;
}

bool moves(const std::vector<MovingCall>& calls) {
    return std::any_of(calls.begin(), calls.end(), [](const MovingCall& call) { return call.moves(); });
}

void requireFacts(const std::vector<MovingCall>& calls, const FrameFacts& known) {
    for (const MovingCall& call : calls) {
        if (call.names().contains("seconds") && known.fps == 0)
            throw UsageError(call.text() + ": seconds needs --fps");
        if ((call.names().contains("frames") || call.names().contains("t")) && known.frames == 0)
            throw UsageError(call.text() + ": frames and t need --frames in a pipe");
    }
}

std::vector<ChainCall> firstChain(const std::vector<MovingCall>& calls, const FrameFacts& known,
                                  const SessionOptions& options) {
    requireFacts(calls, known);
    if (moves(calls)) return MovingChain(calls, options).at(known);
    std::vector<ChainCall> chain;
    for (const MovingCall& call : calls) chain.emplace_back(call.text());
    return chain;
}

const char* frameHandlers() {
    return R"(global frame, frames, t, seconds, width, height

on krlAtFrame number, count, perSecond, pictureWidth, pictureHeight
  frame = number
  frames = count
  t = 0.0
  if count > 1 then t = number / float(count - 1)
  seconds = 0.0
  if perSecond > 0 then seconds = number / float(perSecond)
  width = pictureWidth
  height = pictureHeight
end

on krlPlace place
  return point(integer(place.locH), integer(place.locV))
end

on krlSides part
  return [integer(part.left), integer(part.top), integer(part.right), integer(part.bottom)]
end

-- From one value to another while share goes from 0 to 1, slow at both ends.
on ease start, finish, share
  if share <= 0 then return start
  if share >= 1 then return finish
  return start + (finish - start) * (share * share * (3.0 - 2.0 * share))
end

-- The value at this frame by those at key frames: between two of them straight, or with #smooth eased.
on key stops, way
  stops.sort()
  if frame <= stops.getPropAt(1) then return stops.getAt(1)
  repeat with i = 2 to stops.count
    later = stops.getPropAt(i)
    if frame < later then
      earlier = stops.getPropAt(i - 1)
      share = (frame - earlier) / float(later - earlier)
      if way = #smooth then return ease(stops.getAt(i - 1), stops.getAt(i), share)
      return stops.getAt(i - 1) + (stops.getAt(i) - stops.getAt(i - 1)) * share
    end if
  end repeat
  return stops.getAt(stops.count)
end

-- A number as text with so many digits or more.
on digits number, least
  text = string(number)
  repeat while text.length < least
    text = "0" & text
  end repeat
  return text
end
)";
}

}  // namespace krl::player
