#pragma once

#include <functional>

#include "player/lingo/Syntax.h"

namespace krl::player {

/// Shows every call in a script to `visit`, in the order in which they are written.
void visitCalls(const Script& script, const std::function<void(const CallExpression&)>& visit);

}  // namespace krl::player
