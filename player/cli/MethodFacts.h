#pragma once

#include <string>
#include <vector>

#include "catalogue/Catalogue.h"

/// Texts about methods, shared by help, reference page, completions and error messages.
namespace krl::player {

/// The names of all methods without the prefix `krlImage`, as used on the command line.
std::vector<std::string> shortMethodNames();

/// `, did you mean brightness?` for a name similar to a method's, otherwise empty.
std::string methodMeantBy(std::string_view name);

/// The method of that name; throws a `CommandError` that suggests the nearest one.
const Method& requireMethod(std::string_view name);

/// The family of that name or with that word in its heading, ignoring case; null if there is none.
const Family* familyCalled(const std::string& word);

/// Whether the method's name, heading, summary or search words contain `word`, ignoring case.
bool isFound(const Method& method, const std::string& word);

/// The sensible range of a number, `0 to 255`.
std::string rangeText(const Argument& argument);

/// What an argument takes: `integer, -255 to 255`, `#RGB or #Alpha`, `colour`.
std::string expectedText(const Argument& argument);

/// The example call of the method: `brightness(40, #RGB)`.
std::string shortExample(const Method& method);

/// What else is worth knowing of a method, a sentence each: arguments that it limits, values at which it
/// changes nothing, and whether its result depends on the number of bands.
std::vector<std::string> notesOf(const Method& method);

/// An error message of a method and its cause.
struct MethodFailure {
    std::string message;
    std::string when;
};
std::vector<MethodFailure> failuresOf(const Method& method);

}  // namespace krl::player
