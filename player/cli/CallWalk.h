#pragma once

#include <functional>

#include "player/lingo/Syntax.h"

namespace krl::player {

/// Visits every expression of a script, outer ones first.
void visitExpressions(const Script& script, const std::function<void(const Expression&)>& visit);

/// Calls `visit` for every call in a script, in source order.
void visitCalls(const Script& script, const std::function<void(const CallExpression&)>& visit);

}  // namespace krl::player
