#pragma once

#include <vector>

#include "catalogue/Method.h"
#include "catalogue/Value.h"

namespace krl::fuzz {

/// Whether `method`, called on `before` with `arguments`, has a plain reference that gives another picture
/// than `after`. False for a method without one, and for arguments that would keep its reference busy too
/// long.
bool differsFromReference(const Method& method, const Picture& before, const std::vector<Value>& arguments,
                          const Picture& after);

}  // namespace krl::fuzz
