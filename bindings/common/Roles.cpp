#include "common/Roles.h"

#include <algorithm>
#include <cstring>

namespace krl::bindings {

namespace {

bool isIntegerNamed(const krl_argument_info& argument, const char* name) {
    return argument.kind == KRL_KIND_INTEGER && std::strcmp(argument.name, name) == 0;
}

/// Whether the picture that the method makes has the size that two of its arguments say.
bool takesSize(const krl_method_info& method) {
    int sizes = 0;
    for (size_t i = 0; i < method.argument_count; ++i) sizes += isSize(*method.arguments[i]);
    return sizes == 2;
}

}  // namespace

bool isSize(const krl_argument_info& argument) {
    return isIntegerNamed(argument, "width") || isIntegerNamed(argument, "height");
}

bool isSwitch(const krl_argument_info& argument) {
    const auto has = [&](const char* name) {
        return std::any_of(argument.choices, argument.choices + argument.choice_count,
                           [&](const char* choice) { return std::strcmp(choice, name) == 0; });
    };
    return argument.choice_count == 2 && has("true") && has("false");
}

Role roleOf(const krl_method_info& method) {
    const auto has = [&](uint32_t flag) { return (method.flags & flag) != 0; };
    if (has(KRL_MANAGES_ENGINE) || has(KRL_INERT)) return Role::None;
    if (has(KRL_REWRITES_PICTURE) || has(KRL_CHANGES_SECOND_PICTURE))
        return has(KRL_NEEDS_SECOND_PICTURE) ? Role::Mixer : Role::Filter;
    if (has(KRL_MAKES_PICTURE) && !has(KRL_MAKES_PICTURE_LIST) && takesSize(method)) return Role::Source;
    return Role::None;
}

}  // namespace krl::bindings
