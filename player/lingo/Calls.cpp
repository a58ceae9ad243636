#include "catalogue/NearestName.h"
#include "player/host/Compare.h"
#include "player/lingo/InterpreterScopes.h"
#include "player/lingo/StageNames.h"

/// Calls of handlers, methods and functions.
namespace krl::player {

/// Looks up an object's own method first; then, unless it is a method call, the handlers of this script and
/// of the movie; then the built-in functions.
Value Interpreter::callByName(SymbolId name, std::span<const Value> arguments, bool asMethod) {
    // `_movie.go(5)` is `go(5)`.
    if (asMethod && (arguments.front().is(Kind::Environment) || arguments.front().is(Kind::CastLib)))
        return callByName(name, arguments.subspan(1), false);
    if (skipsStage() && asMethod && arguments.front().isVoid()) return Value();
    Callee callee;
    if (findCallee(name, arguments, asMethod, callee)) return callHandler(callee, arguments);
    if (const int32_t selector = selectorOf(name, arguments); selector > 0)
        return callXtra(selector, arguments);
    if (const Builtin* known = builtin(name)) return callBuiltin(*known, arguments, asMethod);
    if (const char* need = neededBy(symbols.spelling(name))) return missing(need, name, &arguments);
    unknownCall(name, arguments, asMethod);
}

bool Interpreter::skipsStage() const { return options_.stageless == Stageless::Ignore; }

/// Refuses what needs a stage, or counts it and answers VOID.
Value Interpreter::missing(const char* need, SymbolId name, const std::span<const Value>* arguments) {
    if (name == goName_ && arguments && goesToFrame(*arguments)) return Value();
    const std::string& spelled = symbols.spelling(name);
    if (skipsStage()) {
        ++skipped_[spelled];
        return Value();
    }
    std::string what = arguments ? spelled + '(' : "the " + spelled;
    for (size_t i = 0; arguments && i < arguments->size(); ++i)
        what += (i > 0 ? ", " : "") + shownText(style(), (*arguments)[i]);
    throw HostError(refusalOf(need, arguments ? what + ')' : what));
}

bool Interpreter::goesToFrame(std::span<const Value> arguments) {
    if (!inFrames || arguments.size() != 1) return false;
    const Value& to = arguments.front();
    const std::string where = to.is(Kind::String) ? folded(plain(to)) : "";
    if (to.isInteger())
        nextFrame = std::max(to.integer(), 1);
    else if (where == "next")
        nextFrame = frameNumber + 1;
    else if (where == "loop" || where == "previous")
        nextFrame = 1;  // without markers
    else
        return false;
    return true;
}

int32_t Interpreter::selectorOf(SymbolId name, std::span<const Value> arguments) {
    if (arguments.empty()) return 0;
    const auto* instance = arguments.front().as<XtraInstanceObject>();
    return instance ? instance->xtra.selector(name) : 0;
}

bool Interpreter::findCallee(SymbolId name, std::span<const Value> arguments, bool asMethod,
                             Callee& found) const {
    const Kind kind = arguments.empty() ? Kind::Void : arguments.front().kind();
    if (kind == Kind::XtraInstance && selectorOf(name, arguments) > 0) return false;
    // A parent script's own `new` handler does not create instances of other scripts.
    const bool making = name == newName_ && (kind == Kind::Script || kind == Kind::Xtra);
    if ((kind == Kind::Script || kind == Kind::ScriptInstance) && !making)
        if (const PropertyHolder* holder = handlerAlong(arguments.front(), name, found.owner)) {
            found.script = &holder->script;
            found.code = holder->script.handler(name);
            return true;
        }
    if (asMethod || making) return false;
    for (const LoadedScript* script : {frame_ ? frame_->script : nullptr, movie_})
        if (const HandlerCode* handler = script ? script->handler(name) : nullptr) {
            found = {script, handler, frame_ && script == frame_->script ? frame_->owner : movieOwner_};
            return true;
        }
    return false;
}

PropertyHolder* Interpreter::handlerAlong(const Value& object, SymbolId name, Value& owner) const {
    PropertyHolder* holder = holderOf(object);
    if (holder) owner = object;
    for (int links = 0; holder && links < kDeepestNesting; ++links) {
        if (holder->script.handler(name)) return holder;
        owner = Value(ancestorOf(*holder));
        holder = holderOf(owner);
    }
    return nullptr;
}

PropertyHolder* Interpreter::holderOf(const Value& object) {
    if (PropertyHolder* instance = object.as<InstanceObject>()) return instance;
    return object.as<ScriptObject>();
}

Value& Interpreter::ancestorOf(PropertyHolder& holder) const {
    Value* declared = holder.property(ancestorName_);
    return declared ? *declared : holder.ancestor;
}

bool Interpreter::responds(const Value& object, SymbolId name) const {
    if (const auto* instance = object.as<XtraInstanceObject>()) return instance->xtra.selector(name) > 0;
    Value owner;
    return handlerAlong(object, name, owner) != nullptr;
}

Value Interpreter::sendToAncestor(SymbolId name, std::span<const Value> arguments) {
    PropertyHolder* holder = holderOf(arguments.front());
    Value owner;
    if (holder) holder = handlerAlong(ancestorOf(*holder), name, owner);
    if (!holder) throw HostError("no ancestor has the handler \"" + symbols.spelling(name) + '"');
    return callHandler({&holder->script, holder->script.handler(name), std::move(owner)}, arguments);
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
    const Meaning* meaning = meaningOf(name);
    return meaning ? meaning->function : nullptr;
}

Value Interpreter::callBuiltin(const Builtin& entry, std::span<const Value> arguments, bool asMethod) {
    if (arguments.size() < entry.least || arguments.size() > entry.most) {
        const bool few = arguments.size() < entry.least;
        const size_t limit = few ? entry.least : entry.most;
        const size_t object = asMethod && limit > 0 ? 1 : 0, wanted = limit - object;
        throw HostError(std::string(entry.name) + " takes " + (few ? "at least " : "at most ") +
                        std::to_string(wanted) + (wanted == 1 ? " argument, not " : " arguments, not ") +
                        std::to_string(arguments.size() - object));
    }
    return entry.run(*this, Arguments(entry.name, arguments, asMethod));
}

void Interpreter::unknownCall(SymbolId name, std::span<const Value> arguments, bool asMethod) {
    const std::string& wanted = symbols.spelling(name);
    std::vector<std::string> known = functionNames();
    const bool onXtra = !arguments.empty() && arguments.front().is(Kind::XtraInstance);
    if (onXtra) {
        known.clear();
        for (const MethodSignature& method : arguments.front().as<XtraInstanceObject>()->xtra.methods())
            known.emplace_back(method.name);
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
    for (const LoadedScript* script : {frame_ ? frame_->script : nullptr, movie_})
        if (script)
            for (const auto& handler : script->syntax->handlers)
                names.push_back(symbols.spelling(handler->name));
    for (const auto& family : builtinFamilies())
        for (const Builtin& entry : family) names.emplace_back(entry.name);
    return names;
}

}  // namespace krl::player
