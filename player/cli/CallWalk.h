#pragma once

#include <functional>

#include "player/lingo/Syntax.h"

namespace krl::player {

/// Calls `visit` for every call in a script, in source order.
void visitCalls(const Script& script, const std::function<void(const CallExpression&)>& visit);

}  // namespace krl::player
