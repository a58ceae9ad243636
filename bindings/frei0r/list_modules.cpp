#include <cstdio>

#include "common/Roles.h"

/// Prints the name of every method that becomes a module, one a line.
int main() {
    krl::bindings::forEachWithRole(
        [](const krl_method_info& method, krl::bindings::Role) { std::puts(method.name); });
}
