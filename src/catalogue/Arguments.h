#pragma once

#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "catalogue/ExampleCall.h"
#include "catalogue/Method.h"
#include "catalogue/Value.h"

/// From what somebody wrote for a call to the values that `callMethod` takes, with everything wrong reported
/// before a picture is touched.
namespace krl {

/// A value for one argument: the next one in order, or the one of that name, letter case aside.
struct GivenArgument {
    std::string_view name;         ///< empty for the next in order
    const Value* value = nullptr;  ///< null leaves the argument out
};

enum class ArgumentFault { NoSuchArgument, TooMany, GivenTwice, Missing, WrongKind, NoSuchChoice };

/// Says in words for people why values are no arguments of a method.
class ArgumentError : public std::runtime_error {
public:
    ArgumentError(ArgumentFault fault, const std::string& message)
        : std::runtime_error(message), fault_(fault) {}
    ArgumentFault fault() const { return fault_; }

private:
    ArgumentFault fault_;
};

/// For each argument of `method`, in its order, which of the given ones it takes; none for what is left out.
/// `names` has the names under which arguments are given, empty for the next in order. Throws `ArgumentError`
/// for a name that no argument has, an argument that is given twice, and too many of them.
std::vector<std::optional<size_t>> placeArguments(const Method& method,
                                                  std::span<const std::string_view> names);

/// What an argument that is left out takes: the example's value. Pictures, and examples that hold pictures,
/// have no such value: throws `ArgumentError`.
Value standInFor(const Method& method, const Argument& argument, const ExampleSetting& setting = {});

/// One value for each argument of `method`, in its order, with stand-ins for what is left out. Throws
/// `ArgumentError`.
std::vector<Value> arrangeArguments(const Method& method, std::span<const GivenArgument> given,
                                    const ExampleSetting& setting = {});

/// Throws `ArgumentError` unless every value is of its argument's kind and every symbol one that the method
/// takes. What a method tests beyond that, such as a value's range, it reports itself.
void checkArguments(const Method& method, const std::vector<Value>& arguments);

/// What is wrong with `value` for `argument`, in one line: `blur: expected an integer, got "x"`. Empty if
/// nothing is; pictures may still be references.
std::string complaintAbout(const Argument& argument, const Value& value);

/// The same where only the kind of a value is known, and how to show it; for a symbol, that is `#name`.
std::string complaintAbout(const Argument& argument, ValueKind kind, const std::string& shown);

/// The complaint that `shown`, of whatever kind, is no value for `argument`.
std::string wrongKindText(const Argument& argument, const std::string& shown);

/// `brightness(brightnessInt, colourOrAlpha)`.
std::string outlineOf(const Method& method);

/// `brightness(brightnessInt, colourOrAlpha) takes 2 arguments, 3 were given`; empty if the count is right.
std::string countComplaint(const Method& method, size_t given);

/// The symbols that an argument takes: `#RGB`, `#Alpha`.
std::vector<std::string> symbolsOf(const Argument& argument);

/// The same as text: `#RGB or #Alpha`.
std::string choicesText(const Argument& argument);

}  // namespace krl
