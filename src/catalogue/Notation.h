#pragma once

#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "catalogue/Value.h"

/// Values as scripts write them: `40`, `1.5`, `#RGB`, `"text"`, `rgb(255, 128, 0)`, `point(480, 320)`,
/// `[1, 2]`, `[#count: 6, #angle: 15.0]`, `[:]`, `image("name")`, `image(480, 320, 32)`, `VOID`, and
/// `rect(0, 0, 480, 320)` for the list of its sides. Literals alone: there are no variables and no arithmetic
/// beyond a sign.
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

/// How a call takes a percentage as one of its arguments: not at all, or as a length in pixels, a whole
/// number or not.
enum class PercentKind { None, Whole, Real };

/// What the text of a call may hold beyond literals. Without any of it, such texts are refused.
struct NotationScope {
    /// The text that `$name` is short for; null where there is no such name.
    std::function<const std::string*(std::string_view name)> named;
    /// The size of the picture that `2%` is a part of: of its width or height in a point, else of its shorter
    /// side.
    int32_t width = 0, height = 0;
    /// How `method` takes a percentage as the argument of that name, or if it is empty at that place.
    std::function<PercentKind(std::string_view method, std::string_view argument, size_t place)> percent;
};

/// A call as it is written. An argument without a name is the next in order.
struct CallNotation {
    struct Argument {
        std::string name;
        Value value;
    };
    std::string name;
    std::vector<Argument> arguments;
};

/// Reads a call: `invert`, `brightness(40, #RGB)` or with names `brightness(colourOrAlpha: #Alpha)`, where a
/// name may have the `#` of a symbol. Throws `NotationError`.
CallNotation readCallNotation(std::string_view text, const NotationScope& scope = {});

/// Writes `value` so that `readNotation` gives it back, pictures in memory aside.
std::string writeNotation(const Value& value);

/// A real in the shortest form that reads back, with a decimal point.
std::string realNotation(double value);

}  // namespace krl
