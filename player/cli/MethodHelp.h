#pragma once

#include <string>

#include "catalogue/Catalogue.h"

/// Method documentation as text for a terminal, as JSON and as a reference page.
namespace krl::player {

/// The help of a method.
std::string helpText(const Method& method);

/// The methods of a family.
std::string helpText(const Family& family);

/// The help of a method as a JSON object.
std::string helpJson(const Method& method);

/// The methods that are found by `word`, in their families; all if it is empty.
std::string listText(const std::string& word);
std::string listJson(const std::string& word);

/// The method reference in Markdown.
std::string referencePage();

}  // namespace krl::player
