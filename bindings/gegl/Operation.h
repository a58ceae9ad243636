#pragma once

#include <gegl-plugin.h>

#include "common/Roles.h"

/// A GEGL operation for a method: registered, described and run by what the catalogue says.
namespace krl::gegl {

/// Registers the operation `krl:METHOD` with the module that is being loaded.
void registerOperation(GTypeModule* module, const krl_method_info& method, bindings::Role role);

}  // namespace krl::gegl
