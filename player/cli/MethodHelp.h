#pragma once

#include <string>

#include "catalogue/Method.h"

/// Method documentation as text for a terminal, as JSON and as a reference page.
namespace krl::player {

/// The help of a method.
std::string helpText(const Method& method);

/// The help of a method as a JSON object.
std::string helpJson(const Method& method);

/// The methods whose name, heading or summary contains `word`, ignoring case; all if it is empty.
std::string listText(const std::string& word);
std::string listJson(const std::string& word);

/// The method reference in Markdown.
std::string referencePage();

}  // namespace krl::player
