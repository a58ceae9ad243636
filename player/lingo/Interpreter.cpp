#include "player/lingo/Interpreter.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <iostream>
#include <sstream>

#include "catalogue/NearestName.h"
#include "player/host/Compare.h"
#include "player/lingo/InterpreterScopes.h"
#include "player/lingo/Parser.h"

/// Scripts, handlers and calls.
namespace krl::player {

namespace {

/// The values of a call's arguments; a few fit without an allocation.
class ArgumentValues {
public:
    explicit ArgumentValues(size_t count) : count_(count) {
        if (count > few_.size()) many_.resize(count);
    }
    Value& operator[](size_t index) { return data()[index]; }
    std::span<const Value> all() { return {data(), count_}; }

private:
    Value* data() { return many_.empty() ? few_.data() : many_.data(); }

    size_t count_;
    std::array<Value, 5> few_;
    std::vector<Value> many_;
};

std::shared_ptr<const Source> readSource(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    std::ostringstream text;
    if (!(in && text << in.rdbuf()) && !in.eof()) throw HostError("cannot read the script " + file.string());
    return std::make_shared<Source>(Source{file.string(), text.str()});
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
      tablesName_(symbols.identifier("krlImageCreateLookupTables")) {
    for (const auto& family :
         {mathBuiltins(), textBuiltins(), listBuiltins(), shapeBuiltins(), imageBuiltins(), drawBuiltins(),
          systemBuiltins()})
        for (const Builtin& entry : family) {
            const auto id = static_cast<size_t>(symbols.identifier(entry.name));
            if (builtins_.size() <= id) builtins_.resize(id + 1);
            builtins_[id] = &entry;
        }
    for (const auto& family : {objectProperties(), systemProperties()})
        for (const PropertyEntry& entry : family)
            properties_[uint64_t(entry.kind) << 32 | static_cast<uint32_t>(symbols.identifier(entry.name))] =
                &entry;
    host.onMessage = [this](std::string_view text) { writeLines(output, text); };
}

LoadedScript Interpreter::makeScript(const std::string& name, std::unique_ptr<Script> syntax) {
    LoadedScript made;
    made.name = name;
    made.syntax = std::move(syntax);
    for (const LiteralExpression* literal : made.syntax->literals)
        made.literals.push_back(literal->kind == ExpressionKind::Float ? heap.number(literal->real)
                                                                       : text(literal->text));
    for (const auto& handler : made.syntax->handlers) made.handlers.emplace(handler->name, handler.get());
    return made;
}

const LoadedScript& Interpreter::load(std::shared_ptr<const Source> source, const std::string& name) {
    return scripts_.emplace_back(makeScript(name, parseScript(std::move(source), symbols)));
}

Value Interpreter::run(const LoadedScript& script, const Handler& handler, std::span<const Value> arguments) {
    return callHandler(script, handler, arguments, Value());
}

Value Interpreter::evaluateText(std::string name, std::string_view text) {
    auto source = std::make_shared<Source>(Source{std::move(name), std::string(text)});
    const LoadedScript script = makeScript("", parseExpression(std::move(source), symbols));
    return callHandler(script, *script.syntax->handlers.front(), {}, Value());
}

Value Interpreter::callOn(const Value& instance, std::string name, std::string_view text) {
    auto source = std::make_shared<Source>(Source{std::move(name), std::string(text)});
    std::unique_ptr<Script> syntax = parseExpression(source, symbols);
    auto& answer = static_cast<ExpressionStatement&>(*syntax->handlers.front()->body.front());
    const Expression& written = *answer.expression;
    auto call = std::make_unique<CallExpression>(ExpressionKind::MethodCall, written.place);
    if (written.kind == ExpressionKind::Call) {
        call->name = static_cast<const CallExpression&>(written).name;
        call->arguments = std::move(static_cast<CallExpression&>(*answer.expression).arguments);
    } else if (written.kind == ExpressionKind::Variable) {
        call->name = static_cast<const VariableExpression&>(written).name;
    } else {
        throw source->error(written.place, "expected a call such as brightness(40, #RGB)");
    }
    const std::string prefix = "krlImage";
    const std::string& spelled = symbols.spelling(call->name);
    const bool known = xtra.selector(call->name) > 0 || folded(spelled).rfind(folded(prefix), 0) == 0;
    if (!known) call->name = symbols.identifier(prefix + spelled);
    // Holds the instance during the call, under a name that no script can write.
    auto receiver = std::make_unique<VariableExpression>(ExpressionKind::Variable, written.place);
    receiver->name = symbols.identifier("the instance");
    receiver->scope = VariableScope::Global;
    globals_[receiver->name] = instance;
    call->object = std::move(receiver);
    answer.expression = std::move(call);
    const LoadedScript script = makeScript("", std::move(syntax));
    return callHandler(script, *script.syntax->handlers.front(), {}, Value());
}

void Interpreter::close() {
    globals_.clear();
    members_.clear();
    scriptValues_.clear();
    heap.freeCycles();
    for (LoadedScript& script : scripts_) script.literals.clear();
}

Value Interpreter::callHandler(const LoadedScript& script, const Handler& handler,
                               std::span<const Value> arguments, Value owner) {
    if (handlers_ >= options_.recursionLimit)
        throw HostError("handlers call each other more than " + std::to_string(options_.recursionLimit) +
                        " deep; \"" + symbols.spelling(handler.name) + "\" may never end");
    Frame made{script, handler, arguments, std::move(owner), {}, {}};
    made.locals.resize(handler.locals.size(), Value::unassigned());
    for (size_t i = 0; i < handler.parameters; ++i)
        made.locals[i] = i < arguments.size() ? arguments[i] : Value();
    const FrameScope scope(*this, made);
    try {
        execute(handler.body);
    } catch (const ScriptError& error) {
        if (error.place().line > 0) throw;
        throw placed(error.message());
    } catch (const std::bad_alloc&) {
        throw placed("out of memory");
    } catch (const std::exception& error) {
        throw placed(error.what());
    }
    return std::move(made.answer);
}

ScriptError Interpreter::placed(const std::string& message) const {
    return frame_->script.syntax->source->error(place_, message);
}

Value Interpreter::evaluateCall(const CallExpression& expression) {
    const bool asMethod = expression.object != nullptr;
    ArgumentValues arguments(expression.arguments.size() + asMethod);
    if (asMethod) arguments[0] = evaluate(*expression.object);
    for (size_t i = 0; i < expression.arguments.size(); ++i)
        arguments[i + asMethod] = evaluate(*expression.arguments[i]);
    place_ = expression.place;
    return callByName(expression.name, arguments.all(), asMethod);
}

/// Looks up an object's own method first; then, unless it is a method call, the handlers of this script and
/// of the movie; then the built-in functions.
Value Interpreter::callByName(SymbolId name, std::span<const Value> arguments, bool asMethod) {
    Value answer;
    if (!arguments.empty() && callOnObject(name, arguments, answer)) return answer;
    // A parent script's own `new` handler does not create instances of other scripts.
    const bool making = name == newName_ && !arguments.empty() &&
                        (arguments.front().is(Kind::Script) || arguments.front().is(Kind::Xtra));
    if (!asMethod && !making)
        for (const LoadedScript* script : {frame_ ? &frame_->script : nullptr, movie_})
            if (const Handler* handler = script ? script->handler(name) : nullptr) {
                const bool own = frame_ && script == &frame_->script;
                return callHandler(*script, *handler, arguments, own ? frame_->owner : Value());
            }
    if (const Builtin* known = builtin(name)) return callBuiltin(*known, arguments);
    unknownCall(name, arguments, asMethod);
}

bool Interpreter::callOnObject(SymbolId name, std::span<const Value> arguments, Value& answer) {
    const Value& object = arguments.front();
    if (const auto* instance = object.as<XtraInstanceObject>()) {
        const int32_t selector = instance->xtra.selector(name);
        if (selector < 1) return false;
        answer = callXtra(selector, arguments);
        return true;
    }
    if (object.is(Kind::Script) && name == newName_) return false;
    return alongAncestors(object, [&](PropertyHolder& holder, const Value& owner) {
        const Handler* handler = holder.script.handler(name);
        if (handler) answer = callHandler(holder.script, *handler, arguments, owner);
        return handler != nullptr;
    });
}

bool Interpreter::alongAncestors(const Value& object,
                                 const std::function<bool(PropertyHolder&, const Value&)>& visit) {
    Value at = object;
    for (int links = 0; links < kDeepestNesting; ++links) {
        PropertyHolder* holder = at.as<InstanceObject>();
        if (!holder) holder = at.as<ScriptObject>();
        if (!holder) return false;
        if (visit(*holder, at)) return true;
        const Value* ancestor = holder->property(ancestorName_);
        if (!ancestor) return false;
        at = Value(*ancestor);
    }
    return false;
}

Value Interpreter::callXtra(int32_t selector, std::span<const Value> arguments) {
    Xtra& plugIn = arguments.front().as<XtraInstanceObject>()->xtra;
    const bool chosen =
        options_.threads != ThreadChoice::AsScripted && selector == plugIn.selector(tablesName_);
    if (!chosen) return plugIn.call(arguments.front(), selector, arguments.subspan(1));
    const Value mode = symbol(options_.threads == ThreadChoice::Many ? "mt" : "st");
    return plugIn.call(arguments.front(), selector, {&mode, 1});
}

const Builtin* Interpreter::builtin(SymbolId name) const {
    const auto id = static_cast<size_t>(name);
    return id < builtins_.size() ? builtins_[id] : nullptr;
}

Value Interpreter::callBuiltin(const Builtin& entry, std::span<const Value> arguments) {
    if (arguments.size() < entry.least || arguments.size() > entry.most) {
        const bool few = arguments.size() < entry.least;
        const size_t wanted = few ? entry.least : entry.most;
        throw HostError(std::string(entry.name) + " takes " + (few ? "at least " : "at most ") +
                        std::to_string(wanted) + (wanted == 1 ? " argument, not " : " arguments, not ") +
                        std::to_string(arguments.size()));
    }
    return entry.run(*this, Arguments(entry.name, arguments));
}

void Interpreter::unknownCall(SymbolId name, std::span<const Value> arguments, bool asMethod) {
    const std::string& wanted = symbols.spelling(name);
    std::vector<std::string> known = functionNames();
    const bool onXtra = !arguments.empty() && arguments.front().is(Kind::XtraInstance);
    if (onXtra) {
        known.clear();
        for (const MethodSignature& method : arguments.front().as<XtraInstanceObject>()->xtra.methods())
            known.push_back(method.name);
    }
    if (!arguments.empty())
        if (const auto* instance = arguments.front().as<InstanceObject>())
            for (const auto& handler : instance->script.syntax->handlers)
                known.push_back(symbols.spelling(handler->name));
    const std::string what = onXtra || asMethod ? kindName(arguments.front().kind()) + " has no method \""
                                                : "there is no handler or function \"";
    throw HostError(what + wanted + '"' + didYouMean(wanted, known));
}

std::vector<std::string> Interpreter::functionNames() const {
    std::vector<std::string> names;
    for (const LoadedScript* script : {frame_ ? &frame_->script : nullptr, movie_})
        if (script)
            for (const auto& handler : script->syntax->handlers)
                names.push_back(symbols.spelling(handler->name));
    for (const Builtin* entry : builtins_)
        if (entry) names.emplace_back(entry->name);
    return names;
}

Value Interpreter::send(SymbolId name, std::span<const Value> arguments) {
    return callByName(name, arguments, false);
}

Value Interpreter::valueOf(const std::string& expression) {
    try {
        return evaluateText("", expression);
    } catch (const ScriptError&) {
        return Value();
    }
}

Value Interpreter::scriptNamed(const std::string& name) {
    const auto known = scriptValues_.find(folded(name));
    if (known != scriptValues_.end()) return known->second;
    const std::filesystem::path file = sandbox.member(name, {".ls"});
    if (file.empty())
        throw HostError("there is no script \"" + name + '"' +
                        didYouMean(name, sandbox.memberNames({".ls"})));
    const LoadedScript& script = load(scriptSource(file), file.stem().string());
    Value made = heap.make<ScriptObject>(script);
    scriptValues_.emplace(folded(name), made);
    return made;
}

Value Interpreter::memberNamed(const std::string& name) {
    auto [known, added] = members_.try_emplace(folded(name));
    if (added) known->second = heap.make<MemberObject>(name);
    return known->second;
}

Value Interpreter::newInstance(const Value& script, std::span<const Value> arguments) {
    const LoadedScript& loaded = script.as<ScriptObject>()->script;
    Value made = heap.make<InstanceObject>(loaded);
    const Handler* handler = loaded.handler(newName_);
    if (!handler) return made;
    std::vector<Value> all = {made};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return callHandler(loaded, *handler, all, made);
}

std::span<const Value> Interpreter::handlerArguments() const {
    return frame_ ? frame_->arguments : std::span<const Value>();
}

}  // namespace krl::player
