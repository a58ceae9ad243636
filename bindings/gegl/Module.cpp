#include "gegl/Operation.h"

/// What GEGL looks for in a module: it registers an operation for every method that has a role.
extern "C" {

G_MODULE_EXPORT const GeglModuleInfo* gegl_module_query(GTypeModule*) {
    static const GeglModuleInfo info = {GEGL_MODULE_ABI_VERSION};
    return &info;
}

G_MODULE_EXPORT gboolean gegl_module_register(GTypeModule* module) {
    krl::bindings::forEachWithRole([&](const krl_method_info& method, krl::bindings::Role role) {
        krl::gegl::registerOperation(module, method, role);
    });
    return TRUE;
}
}
