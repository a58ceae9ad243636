#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "catalogue/Catalogue.h"

namespace krl::host {

/// Every method, in the order of the message table: element 0 is selector 1.
const std::vector<const Method*>& methods();

/// The method of that name, with or without its `krlImage` prefix, ignoring case; null if
/// there is none.
const Method* findMethod(std::string_view name);

/// Selector of a method, from 1.
int32_t selectorOf(const Method& method);

/// Its line of the message table without the trailing comment and with single blanks:
/// `krlImageQuit object me`.
std::string signatureOf(const Method& method);

}  // namespace krl::host
