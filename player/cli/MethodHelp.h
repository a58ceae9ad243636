#pragma once

#include <string>

#include "catalogue/Method.h"

/// The methods as text for a terminal, as data and as a reference page.
namespace krl::player {

/// All about one method.
std::string helpText(const Method& method);

/// All about one method as a JSON object.
std::string helpJson(const Method& method);

/// The methods with `word` in name, heading or summary, letter case aside; all when it is empty.
std::string listText(const std::string& word);
std::string listJson(const std::string& word);

/// The reference of all methods, in Markdown.
std::string referencePage();

}  // namespace krl::player
