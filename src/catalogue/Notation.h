#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include "catalogue/Value.h"

/// Values as scripts write them: `40`, `1.5`, `#RGB`, `"text"`, `rgb(255, 128, 0)`, `point(480, 320)`,
/// `[1, 2]`, `[#count: 6, #angle: 15.0]`, `[:]`, `image("name")`, `image(480, 320, 32)`, `VOID`. Literals
/// alone: there are no variables and no arithmetic beyond a sign.
namespace krl {

/// Says what was expected, and at which character (from 1).
class NotationError : public std::runtime_error {
public:
    NotationError(const std::string& message, size_t place) : std::runtime_error(message), place_(place) {}
    size_t place() const { return place_; }

private:
    size_t place_;
};

/// Reads one value that takes up all of `text`. Throws `NotationError`.
Value readNotation(std::string_view text);

/// Writes `value` so that `readNotation` gives it back, pictures in memory aside.
std::string writeNotation(const Value& value);

/// A real in the shortest form that reads back, with a decimal point.
std::string realNotation(double value);

}  // namespace krl
