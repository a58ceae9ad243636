#pragma once

#include "krlimage.h"

/// What a method is to a program that edits films or pictures. Everything follows from the catalogue.
namespace krl::bindings {

enum class Role {
    None,    ///< not for such programs: it manages an engine, does nothing, measures, or changes the size
    Filter,  ///< rewrites a picture
    Mixer,   ///< rewrites a picture by another one
    Source   ///< makes a picture of any size
};

Role roleOf(const krl_method_info& method);

/// Whether the argument says how wide or high the picture of a source is.
bool isSize(const krl_argument_info& argument);

/// Whether the argument takes `true` or `false`.
bool isSwitch(const krl_argument_info& argument);

/// Calls `use(method, role)` for every method that has a role, family by family.
template <class Use>
void forEachWithRole(Use&& use) {
    const krl_catalogue_info* all = krl_catalogue();
    for (size_t f = 0; all && f < all->family_count; ++f)
        for (size_t m = 0; m < all->families[f]->method_count; ++m) {
            const krl_method_info& method = *all->families[f]->methods[m];
            const Role role = roleOf(method);
            if (role != Role::None) use(method, role);
        }
}

}  // namespace krl::bindings
