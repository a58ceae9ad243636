#include "player/lingo/Interpreter.h"

#include <algorithm>
#include <fstream>
#include <iostream>
#include <memory>
#include <sstream>

#include "catalogue/NearestName.h"
#include "player/host/Compare.h"
#include "player/lingo/InterpreterScopes.h"
#include "player/lingo/Parser.h"
#include "player/lingo/StatementCompiler.h"
#include "player/pictures/FileAccess.h"

/// Scripts, handlers, and texts as values.
namespace krl::player {

namespace {

std::shared_ptr<const Source> readSource(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    std::ostringstream text;
    const bool isEmpty = in.peek() == std::ifstream::traits_type::eof() && in.is_open() && !in.bad();
    if (!isEmpty && !(text << in.rdbuf())) throw HostError("cannot read the script " + file.string());
    return std::make_shared<Source>(Source{file.string(), text.str()});
}

/// The element of a table by symbols, which grows to hold it.
template <class Element>
Element& under(std::vector<Element>& table, SymbolId name) {
    const auto place = static_cast<size_t>(name);
    if (table.size() <= place) table.resize(place + 1);
    return table[place];
}

}  // namespace

std::shared_ptr<const Source> scriptSource(const std::filesystem::path& file) {
    std::error_code failed;
    if (!std::filesystem::is_regular_file(file, failed))
        throw HostError("there is no script " + file.string());
    return readSource(file);
}

void writeLines(std::ostream& out, std::string_view text) {
    std::string lines;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') continue;
        lines += text[i] == '\r' ? '\n' : text[i];
    }
    out << lines;  // in one write, since a terminal flushes after each
}

Interpreter::Interpreter(EmbeddedHost& embedded, Xtra& plugIn, const SessionOptions& options)
    : Runtime(embedded, plugIn, Sandbox(options.castFolder, options.outputFolder, options.allowedFolders),
              options.output ? *options.output : std::cout, options.alerts ? *options.alerts : std::cerr),
      options_(options),
      newName_(symbols.identifier("new")),
      ancestorName_(symbols.identifier("ancestor")),
      tablesName_(symbols.identifier("krlImageCreateLookupTables")),
      goName_(symbols.identifier("go")),
      countName_(symbols.identifier("count")) {
    host.onMessage = [this](std::string_view text) { writeLines(output, text); };
}

const Meaning* Interpreter::meaningOf(SymbolId name) const {
    if (!symbols.contains(name)) return nullptr;
    for (auto next = static_cast<SymbolId>(meanings_.size()); next <= name; ++next)
        meanings_.push_back(player::meaningOf(symbols.spelling(next)));
    return meanings_[static_cast<size_t>(name)];
}

LoadedScript Interpreter::makeScript(const std::string& name, std::unique_ptr<Script> syntax) {
    LoadedScript made;
    made.name = name;
    made.syntax = std::move(syntax);
    for (const auto& handler : made.syntax->handlers) {
        StatementCompiler compiler(*handler, *made.syntax, heap, symbols, globals_);
        made.codes.push_back(std::make_unique<HandlerCode>(compiler.compile()));
        if (handler->name < 0) continue;  // of a text, which nothing calls
        const HandlerCode*& first = under(made.handlers, handler->name);
        if (!first) first = made.codes.back().get();
    }
    return made;
}

const LoadedScript& Interpreter::load(std::shared_ptr<const Source> source, const std::string& name) {
    return scripts_.emplace_back(makeScript(name, parseScript(std::move(source), symbols)));
}

Value Interpreter::run(const LoadedScript& script, const HandlerCode& handler,
                       std::span<const Value> arguments) {
    return callHandler({&script, &handler, &script == movie_ ? movieOwner_ : Value()}, arguments);
}

void Interpreter::setMovieScript(const LoadedScript& script) {
    movie_ = &script;
    const Value& known = scriptValues_[folded(script.name)] = heap.make<ScriptObject>(script);
    movieOwner_ = script.syntax->properties.empty() ? Value() : known;
}

/// The method of the plug-in that a name means, with or without the prefix.
SymbolId Interpreter::methodWritten(SymbolId name) {
    const std::string prefix = "krlImage";
    const std::string& spelled = symbols.spelling(name);
    const bool known = xtra.selector(name) > 0 || folded(spelled).rfind(folded(prefix), 0) == 0;
    return known ? name : symbols.identifier(prefix + spelled);
}

/// Makes the call of a function, or a lone name, the call of a method of the variable `receiver`.
ExpressionPointer Interpreter::sentTo(SymbolId receiver, Expression& written, const Source& source) {
    auto call = std::make_unique<CallExpression>(ExpressionKind::MethodCall, written.place);
    if (written.kind == ExpressionKind::Call) {
        auto& function = static_cast<CallExpression&>(written);
        call->name = methodWritten(function.name);
        call->arguments = std::move(function.arguments);
    } else if (written.kind == ExpressionKind::Variable) {
        call->name = methodWritten(static_cast<const VariableExpression&>(written).name);
    } else {
        throw source.error(written.place, "expected a call such as brightness(40, #RGB)");
    }
    auto object = std::make_unique<VariableExpression>(ExpressionKind::Variable, written.place);
    object->name = receiver;
    object->scope = VariableScope::Global;
    call->object = std::move(object);
    return call;
}

Value Interpreter::callOn(const Value& instance, std::string name, std::string_view text) {
    auto source = std::make_shared<Source>(Source{std::move(name), std::string(text)});
    std::unique_ptr<Script> syntax = parseExpression(source, symbols);
    auto& answer = static_cast<ExpressionStatement&>(*syntax->handlers.front()->body.front());
    // Holds the instance during the call, under a name that no script can write.
    const SymbolId receiver = symbols.identifier("the instance");
    answer.expression = sentTo(receiver, *answer.expression, *source);
    globals_.named(receiver) = instance;
    const LoadedScript script = makeScript("", std::move(syntax));
    return callHandler({&script, script.codes.front().get(), Value()}, {});
}

void Interpreter::close() {
    globals_.clear();
    members.clear();
    scriptValues_.clear();
    result = actorList = movieOwner_ = Value();
    for (Value& letter : letters_) letter = Value();
    heap.freeCycles();
    for (LoadedScript& script : scripts_)
        for (const auto& code : script.codes) code->constants.clear();
}

Value Interpreter::callHandler(const Callee& callee, std::span<const Value> arguments) {
    const Execution execution(*this);
    Frame& made = begin(*callee.script, *callee.code, callee.owner, arguments);
    made.outermost = true;
    execute();
    result = std::move(made.answer);
    return result;
}

Frame& Interpreter::frameOfNextLevel() {
    const auto level = static_cast<size_t>(running_);
    if (level == frames_.size()) frames_.push_back(std::make_unique<Frame>());
    Frame& next = *frames_[level];
    if (frame_) frame_->callee = &next;
    return next;
}

Frame& Interpreter::push(const LoadedScript& script, const HandlerCode& code, const Value& owner,
                         std::span<const Value> arguments) {
    if (running_ >= kDeepestEvaluation) Execution::refuse();
    Frame& made = frame_ && frame_->callee ? *frame_->callee : frameOfNextLevel();
    made.registers = stack_.take(static_cast<size_t>(code.registers));
    made.script = &script;
    made.code = &code;
    made.arguments = arguments;
    made.properties = nullptr;
    if (owner.hasObject()) {
        made.owner = owner;
        made.properties = holderOf(owner);
    }
    made.constants = code.constants.data();
    made.locals = code.locals;
    made.outermost = false;
    made.at = code.instructions.data();
    made.caller = frame_;
    const auto parameters = static_cast<size_t>(code.parameters);
    const size_t given = std::min(parameters, arguments.size());
    // Registers that were taken have no object to release.
    for (size_t i = 0; i < given; ++i) std::construct_at(&made.registers[i], arguments[i]);
    for (size_t i = given; i < parameters; ++i) std::construct_at(&made.registers[i]);
    for (size_t i = parameters; i < static_cast<size_t>(code.locals); ++i)
        std::construct_at(&made.registers[i], Value::unassigned());
    frame_ = &made;
    ++running_;
    return made;
}

void Interpreter::pop() noexcept {
    Frame& done = *frame_;
    stack_.giveBack(done.registers, static_cast<size_t>(done.code->registers));
    if (done.owner.hasObject()) done.owner = Value();
    if (done.answer.hasObject()) done.answer = Value();
    frame_ = done.caller;
    --running_;
}

void Interpreter::refuseDepth(const HandlerCode& code) const {
    throw HostError("handlers call each other more than " + std::to_string(options_.recursionLimit) +
                    " deep; \"" + symbols.spelling(code.handler->name) + "\" may never end");
}

/// Runs the handler that was pushed last, and those that it calls, to its end; errors get their place.
void Interpreter::execute() {
    try {
        const Instruction* at = frame_->at;
        do {
            Frame& frame = *frame_;
            frame.at = at;
            at = at->run(*this, frame, *at);
        } while (at);
    } catch (const ScriptError& error) {
        if (error.place().line > 0) throw;
        throw placed(error.message());
    } catch (const std::bad_alloc&) {
        throw placed("out of memory");
    } catch (const std::exception& error) {
        throw placed(error.what());
    }
}

void Interpreter::refuseSteps() const {
    throw HostError("the script takes more than " + std::to_string(options_.stepLimit) + " steps");
}

ScriptError Interpreter::placed(const std::string& message) const {
    return frame_->script->syntax->source->error(frame_->place(), message);
}

Value Interpreter::send(SymbolId name, std::span<const Value> arguments) {
    return callByName(name, arguments, false);
}

/// The value itself if it is a string, so that its index of characters is used again.
Value Interpreter::asText(const Value& value) { return value.is(Kind::String) ? value : text(plain(value)); }

/// What the chunks of a value are chunks of: for a member, its text.
Value Interpreter::textOf(const Value& value) {
    return value.is(Kind::Member) ? memberText(*this, value) : asText(value);
}

/// A part of a text. Single letters are values that are made once.
Value Interpreter::piece(std::string_view part) {
    const bool plainLetter = part.size() == 1 && static_cast<unsigned char>(part.front()) < letters_.size();
    return plainLetter ? letter(part.front()) : text(std::string(part));
}

const Value& Interpreter::letter(char character) {
    Value& known = letters_[static_cast<unsigned char>(character)];
    if (known.isVoid()) known = text(std::string(1, character));
    return known;
}

const Value* Interpreter::letterOf(const StringObject& text, int32_t number) {
    if (number < 1 || static_cast<size_t>(number) > text.text.size() || !text.isPlain()) return nullptr;
    const char found = text.text[static_cast<size_t>(number - 1)];
    return static_cast<unsigned char>(found) < letters_.size() ? &letter(found) : nullptr;
}

namespace {

/// Calls `use` with a value as plain text.
template <class Use>
void withPlainText(const Runtime& runtime, const Value& value, Use&& use) {
    if (const auto* string = value.as<StringObject>())
        use(string->text);
    else
        use(runtime.plain(value));
}

}  // namespace

std::string Interpreter::joined(const Value* first, std::span<const Value> others) {
    std::string whole;
    size_t left = 0;  // in the strings that follow
    const auto eachOne = [&](auto&& visit) {
        if (first) visit(*first);
        for (const Value& one : others) visit(one);
    };
    eachOne([&](const Value& value) {
        if (const auto* string = value.as<StringObject>()) left += string->text.size();
    });
    const auto makeRoom = [&] {
        if (whole.size() + left <= whole.capacity()) return;
        heap.mustHold(whole.capacity() + whole.size() + left);
        heap.mustFit("string", whole.size() + left);
        whole.reserve(whole.size() + left);
    };
    makeRoom();
    eachOne([&](const Value& value) {
        if (const auto* string = value.as<StringObject>()) {
            left -= string->text.size();
            whole += string->text;
            return;
        }
        const std::string more = plain(value);
        left += more.size();
        makeRoom();
        left -= more.size();
        whole += more;
    });
    return whole;
}

void Interpreter::grow(StringObject& text, const Value& value) {
    withPlainText(*this, value, [&](const std::string& more) {
        const size_t whole = text.text.size() + more.size(), room = text.text.capacity();
        if (whole > room) text.text.reserve(static_cast<size_t>(heap.grown("string", room, whole)));
        text.append(more);
        heap.recount(text);
    });
}

Value Interpreter::scriptNamed(const std::string& name) {
    const auto known = scriptValues_.find(folded(name));
    if (known != scriptValues_.end()) return known->second;
    const std::filesystem::path file = sandbox.member(name, {".ls"});
    if (file.empty())
        throw HostError("there is no script \"" + name + '"' +
                        didYouMean(name, sandbox.memberNames({".ls"})));
    Source source{file.string(), readCheckedBytes(sandbox.placeOf(file))};
    const LoadedScript& script = load(std::make_shared<Source>(std::move(source)), file.stem().string());
    Value made = heap.make<ScriptObject>(script);
    scriptValues_.emplace(folded(name), made);
    return made;
}

Value Interpreter::newInstance(const Value& script, std::span<const Value> arguments) {
    const LoadedScript& loaded = script.as<ScriptObject>()->script;
    Value made = heap.make<InstanceObject>(loaded);
    const HandlerCode* handler = loaded.handler(newName_);
    if (!handler) return made;
    std::vector<Value> all = {made};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return callHandler({&loaded, handler, made}, all);
}

std::span<const Value> Interpreter::handlerArguments() const {
    return frame_ ? frame_->arguments : std::span<const Value>();
}

}  // namespace krl::player
