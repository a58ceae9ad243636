#pragma once

#include "player/lingo/Runtime.h"

namespace krl::player {

inline constexpr Matrix kIdentity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

/// What `b` does after `a`.
Matrix product(const Matrix& a, const Matrix& b);
std::array<double, 3> transformed(const Matrix& matrix, const std::array<double, 3>& parts);

}  // namespace krl::player
