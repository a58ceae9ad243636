#pragma once

#include <string>
#include <utility>
#include <vector>

#include "host/MethodRegistry.h"

/// What help, reference page, completions and messages say of methods, each fact worded once.
namespace krl::player {

/// The methods under one heading, in the order of the message table; headings in reading order.
struct MethodGroup {
    std::string heading;
    std::vector<const host::Method*> methods;
};
std::vector<MethodGroup> methodGroups();

/// Every method's name as the command line takes it, without `krlImage`.
std::vector<std::string> shortMethodNames();

/// `, did you mean brightness?` for a name that is near a method's, or nothing.
std::string methodMeantBy(std::string_view name);

/// The method of that name; throws `CommandError` that names the nearest one.
const host::Method& requireMethod(std::string_view name);

/// Whether `word` is found in the method's name, heading or summary, letter case aside.
bool isFound(const host::Method& method, const std::string& word);

/// What an argument takes: `integer, -255 to 255`, `#RGB or #Alpha`, `colour`.
std::string wantedText(const host::Argument& argument);

/// `brightness(brightnessInt, colourOrAlpha)`.
std::string outlineOf(const host::Method& method);

/// `brightness(brightnessInt, colourOrAlpha) takes 2 arguments, 3 were given`; empty when that many
/// are right.
std::string countComplaint(const host::Method& method, size_t given);

/// The call to show the method with: `brightness(40, #RGB)`.
std::string shortExample(const host::Method& method);

/// A message that a method gives, and when.
struct MethodFailure {
    std::string message;
    std::string when;
};
std::vector<MethodFailure> failuresOf(const host::Method& method);

/// Whether the method is about engine and loaded picture, which `apply` sees to itself.
bool managesEngine(const host::Method& method);

/// Whether the method makes a new picture, and under which key of its result; the key is empty for
/// a result that is a list of pictures.
std::pair<bool, std::string> newPictureOf(const host::Method& method);

}  // namespace krl::player
