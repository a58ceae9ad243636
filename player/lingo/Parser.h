#pragma once

#include "player/lingo/Syntax.h"

namespace krl::player {

/// Levels of expressions and of statements that a script may nest.
inline constexpr int kDeepestExpression = 250;
inline constexpr int kDeepestStatement = 100;

/// Parses a script file; throws `ScriptError` at the first text that is no Lingo.
std::unique_ptr<Script> parseScript(std::shared_ptr<const Source> source, SymbolTable& symbols);

/// Parses one expression into the handler of a script of its own, as `value` and single calls need.
/// The expression is what the handler returns; its names are global variables.
std::unique_ptr<Script> parseExpression(std::shared_ptr<const Source> source, SymbolTable& symbols);

}  // namespace krl::player
