#include "player/host/HostError.h"
#include "player/lingo/InterpreterScopes.h"

/// Texts that are evaluated: lone expressions, `value` and `do`.
namespace krl::player {

Value Interpreter::evaluateText(std::string name, std::string_view text) {
    auto source = std::make_shared<Source>(Source{std::move(name), std::string(text)});
    const LoadedScript script = makeScript("", parseExpression(std::move(source), symbols));
    return callHandler({&script, script.codes.front().get(), Value()}, {});
}

Value Interpreter::valueOf(const std::string& expression) {
    try {
        auto source = std::make_shared<Source>(Source{"", expression});
        return runInFrame(parseLeadingExpression(std::move(source), symbols, surroundings()));
    } catch (const ScriptError&) {
        return Value();
    }
}

/// An error in the text is one of the statement that runs it.
void Interpreter::runText(const std::string& statements) {
    static constexpr const char* kText = "do";
    auto source = std::make_shared<Source>(Source{kText, statements});
    try {
        runInFrame(parseStatements(std::move(source), symbols, surroundings()));
    } catch (const ScriptError& error) {
        if (error.file() != kText) throw;
        throw HostError("line " + std::to_string(error.place().line) + ", column " +
                        std::to_string(error.place().column) + " of the text: " + error.message());
    }
}

/// What a text that is evaluated in the running handler can name.
Surroundings Interpreter::surroundings() const {
    if (!frame_) return {};
    Surroundings found;
    const std::vector<SymbolId>& names = frame_->code->handler->locals;
    for (size_t i = 0; i < names.size(); ++i)
        if (!frame_->registers[i].isUnassigned()) found.locals.push_back(names[i]);
    found.properties = frame_->script->syntax->properties;
    return found;
}

/// Runs a text with the variables of the running handler, which get the values that it has set.
Value Interpreter::runInFrame(std::unique_ptr<Script> syntax) {
    const LoadedScript script = makeScript("", std::move(syntax));
    Frame* const outer = frame_;
    const Execution execution(*this);
    Frame& made = push(script, *script.codes.front(), outer ? outer->owner : Value(), {});
    made.outermost = true;
    const Handler& handler = *made.code->handler;
    const auto eachShared = [&](auto&& visit) {
        if (!outer) return;
        const std::vector<SymbolId>& names = outer->code->handler->locals;
        for (size_t i = 0; i < names.size(); ++i)
            for (size_t j = 0; j < handler.parameters; ++j)
                if (handler.locals[j] == names[i]) visit(outer->registers[i], made.registers[j]);
    };
    eachShared([](const Value& theirs, Value& own) { own = theirs; });
    execute();
    eachShared([](Value& theirs, const Value& own) { theirs = own; });
    return std::move(made.answer);
}

}  // namespace krl::player
