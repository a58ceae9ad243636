#pragma once

#include "player/lingo/Syntax.h"

namespace krl::player {

/// Limits of nesting for expressions and statements.
inline constexpr int kDeepestExpression = 250;
inline constexpr int kDeepestStatement = 100;

/// Parses a script file; throws `ScriptError` at the first syntax error.
std::unique_ptr<Script> parseScript(std::shared_ptr<const Source> source, SymbolTable& symbols);

/// Parses a script file and collects every syntax error in order. What is right of it is returned.
std::unique_ptr<Script> parseScript(std::shared_ptr<const Source> source, SymbolTable& symbols,
                                    std::vector<ScriptError>& mistakes);

/// Parses one expression into a script with one handler that returns it, for `value` and single calls. Its
/// names are global variables.
std::unique_ptr<Script> parseExpression(std::shared_ptr<const Source> source, SymbolTable& symbols);

/// The variables that a text can name where it is evaluated.
struct Surroundings {
    std::vector<SymbolId> locals, properties;
};

/// Parses the expression that a text begins with, and ignores what follows. Its handler takes the values of
/// the locals as parameters; other names are global.
std::unique_ptr<Script> parseLeadingExpression(std::shared_ptr<const Source> source, SymbolTable& symbols,
                                               const Surroundings& surroundings);

/// Parses statements into a script with one handler, like `parseLeadingExpression`.
std::unique_ptr<Script> parseStatements(std::shared_ptr<const Source> source, SymbolTable& symbols,
                                        const Surroundings& surroundings);

}  // namespace krl::player
