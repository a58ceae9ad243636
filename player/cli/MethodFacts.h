#pragma once

#include <string>
#include <vector>

#include "catalogue/Catalogue.h"

/// What help, reference page, completions and messages say of methods, each fact worded once.
namespace krl::player {

/// Every method's name as the command line takes it, without `krlImage`.
std::vector<std::string> shortMethodNames();

/// `, did you mean brightness?` for a name that is near a method's, or nothing.
std::string methodMeantBy(std::string_view name);

/// The method of that name; throws `CommandError` that names the nearest one.
const Method& requireMethod(std::string_view name);

/// Whether `word` is found in the method's name, heading or summary, letter case aside.
bool isFound(const Method& method, const std::string& word);

/// What an argument takes: `integer, -255 to 255`, `#RGB or #Alpha`, `colour`.
std::string expectedText(const Argument& argument);

/// `brightness(brightnessInt, colourOrAlpha)`.
std::string outlineOf(const Method& method);

/// `brightness(brightnessInt, colourOrAlpha) takes 2 arguments, 3 were given`; empty when that many
/// are right.
std::string countComplaint(const Method& method, size_t given);

/// The call to show the method with: `brightness(40, #RGB)`.
std::string shortExample(const Method& method);

/// A message that a method gives, and when.
struct MethodFailure {
    std::string message;
    std::string when;
};
std::vector<MethodFailure> failuresOf(const Method& method);

}  // namespace krl::player
