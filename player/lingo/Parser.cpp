#include "player/lingo/Parser.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

#include "catalogue/NearestName.h"
#include "player/lingo/StatementParser.h"

/// Scripts: declarations, handlers and the scope of each variable.
namespace krl::player {

namespace {

class Parser : StatementParser {
public:
    Parser(std::shared_ptr<const Source> source, SymbolTable& symbols,
           std::vector<ScriptError>* mistakes = nullptr)
        : StatementParser(std::move(source), symbols) {
        mistakes_ = mistakes;
    }

    std::unique_ptr<Script> script() {
        while (here().kind == TokenKind::LineEnd) take();
        while (here().kind != TokenKind::End) {
            try {
                part();
                passLineEnds();
            } catch (const ScriptError& mistake) {
                record(mistake);
                skipToPart();
            }
        }
        resolveScopes();
        return std::move(script_);
    }

    std::unique_ptr<Script> loneExpression() {
        auto only = std::make_unique<Handler>();
        only->body.push_back(returnedExpression());
        while (here().kind == TokenKind::LineEnd) take();
        if (here().kind != TokenKind::End) fail("the end");
        return within(std::move(only), {});
    }

    std::unique_ptr<Script> leadingExpression(const Surroundings& surroundings) {
        auto only = std::make_unique<Handler>();
        only->body.push_back(returnedExpression());
        return within(std::move(only), surroundings);
    }

    std::unique_ptr<Script> loneStatements(const Surroundings& surroundings) {
        auto only = std::make_unique<Handler>();
        while (here().kind == TokenKind::LineEnd) take();
        only->body = block();
        if (here().kind != TokenKind::End) fail("a statement");
        return within(std::move(only), surroundings);
    }

private:
    StatementPointer returnedExpression() {
        while (here().kind == TokenKind::LineEnd) take();
        auto answer = std::make_unique<ExpressionStatement>(StatementKind::Return, here().place);
        answer->expression = expression();
        return answer;
    }

    /// The script of one handler whose parameters are the locals around it; unknown names are global.
    std::unique_ptr<Script> within(std::unique_ptr<Handler> only, const Surroundings& surroundings) {
        only->locals = surroundings.locals;
        only->parameters = only->locals.size();
        script_->properties = surroundings.properties;
        for (VariableExpression* name : variables_) handlerGlobals_.push_back(name->name);
        const auto known = [&](SymbolId name) {
            const auto& properties = surroundings.properties;
            return std::find(properties.begin(), properties.end(), name) != properties.end();
        };
        std::erase_if(handlerGlobals_, known);
        unresolved_.push_back({only.get(), std::move(variables_), std::move(handlerGlobals_)});
        resolveScopes();
        script_->handlers.push_back(std::move(only));
        return std::move(script_);
    }

    /// State of a handler until the whole script has been parsed.
    struct Unresolved {
        Handler* handler;
        std::vector<VariableExpression*> variables;
        std::vector<SymbolId> globals;
    };

    void part() {
        if (here().isWord("on"))
            handler();
        else if (here().isWord("global"))
            declare(script_->globals);
        else if (here().isWord("property"))
            declare(script_->properties);
        else
            fail("a handler, which begins with \"on\"", didYouMean(here().text, {"on"}));
    }

    /// Goes to the next line that begins a part of a script.
    void skipToPart() {
        do skipLine();
        while (here().kind != TokenKind::End && !here().isAnyWord({"on", "global", "property"}));
    }

    void handler() {
        take();
        const Token& name = expectName("the name of the handler after \"on\"");
        auto made = std::make_unique<Handler>();
        made->place = name.place;
        made->name = symbols_.identifier(name.text);
        if (handlerNames_.contains(made->name))
            failAt(name.place, "the handler \"" + name.text + "\" is already defined");
        parameters(*made);
        passLineEnds();
        variables_.clear();
        handlerGlobals_.clear();
        brokenBlocks_.clear();
        made->body = block();
        // Many scripts end without the last `end`.
        if (here().kind != TokenKind::End) {
            if (!here().isWord("end")) fail("\"end\" of the handler \"" + name.text + '"');
            take();
            if (!here().endsLine() && here().kind != TokenKind::Wrong) take();
        }
        unresolved_.push_back({made.get(), std::move(variables_), handlerGlobals_});
        variables_.clear();
        handlerNames_.insert(made->name);
        script_->handlers.push_back(std::move(made));
    }

    void parameters(Handler& made) {
        const bool bracketed = takeMark("(");
        if (!(bracketed && takeMark(")")) && !here().endsLine()) {
            do {
                const Token& name = expectName("the name of a parameter");
                made.locals.push_back(symbols_.identifier(name.text));
            } while (takeMark(","));
            if (bracketed) expectMark(")", "the parameters");
        }
        made.parameters = made.locals.size();
    }

    /// Resolves the scope of every variable, once all declarations of the script are known.
    void resolveScopes() {
        const auto declared = [](const std::vector<SymbolId>& names, SymbolId name) {
            return std::find(names.begin(), names.end(), name) != names.end();
        };
        for (Unresolved& entry : unresolved_)
            for (VariableExpression* name : entry.variables) {
                std::vector<SymbolId>& locals = entry.handler->locals;
                const auto parameters = locals.begin() + static_cast<ptrdiff_t>(entry.handler->parameters);
                const bool parameter = std::find(locals.begin(), parameters, name->name) != parameters;
                if (!parameter &&
                    (declared(entry.globals, name->name) || declared(script_->globals, name->name)))
                    name->scope = VariableScope::Global;
                else if (!parameter && declared(script_->properties, name->name))
                    name->scope = VariableScope::Property;
                else
                    name->slot = localSlot(locals, name->name);
            }
    }

    static int localSlot(std::vector<SymbolId>& locals, SymbolId name) {
        const auto found = std::find(locals.begin(), locals.end(), name);
        if (found != locals.end()) return static_cast<int>(found - locals.begin());
        locals.push_back(name);
        return static_cast<int>(locals.size() - 1);
    }

    std::unordered_set<SymbolId> handlerNames_;
    std::vector<Unresolved> unresolved_;
};

}  // namespace

const Handler* Script::handler(SymbolId name) const {
    for (const auto& entry : handlers)
        if (entry->name == name) return entry.get();
    return nullptr;
}

std::unique_ptr<Script> parseScript(std::shared_ptr<const Source> source, SymbolTable& symbols) {
    return Parser(std::move(source), symbols).script();
}

std::unique_ptr<Script> parseScript(std::shared_ptr<const Source> source, SymbolTable& symbols,
                                    std::vector<ScriptError>& mistakes) {
    return Parser(std::move(source), symbols, &mistakes).script();
}

std::unique_ptr<Script> parseExpression(std::shared_ptr<const Source> source, SymbolTable& symbols) {
    return Parser(std::move(source), symbols).loneExpression();
}

std::unique_ptr<Script> parseLeadingExpression(std::shared_ptr<const Source> source, SymbolTable& symbols,
                                               const Surroundings& surroundings) {
    return Parser(std::move(source), symbols).leadingExpression(surroundings);
}

std::unique_ptr<Script> parseStatements(std::shared_ptr<const Source> source, SymbolTable& symbols,
                                        const Surroundings& surroundings) {
    return Parser(std::move(source), symbols).loneStatements(surroundings);
}

}  // namespace krl::player
