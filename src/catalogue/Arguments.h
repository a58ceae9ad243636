#pragma once

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

/// One value for each argument of `method`, in its order. What is left out takes the example's value;
/// pictures, and examples that hold pictures, have no such value. Throws `ArgumentError`.
std::vector<Value> arrangeArguments(const Method& method, std::span<const GivenArgument> given,
                                    const ExampleSetting& setting = {});

/// Throws `ArgumentError` unless every value is of its argument's kind and every symbol one that the method
/// takes. What a method tests beyond that, such as a value's range, it reports itself.
void checkArguments(const Method& method, const std::vector<Value>& arguments);

}  // namespace krl
