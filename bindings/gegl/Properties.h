#pragma once

#include <gegl-plugin.h>

#include <string>
#include <vector>

#include "common/Handles.h"

/// The properties by which GEGL and its dialogs see a method's arguments.
namespace krl::gegl {

enum class PropertyKind { Integer, Real, Choice, Switch, Colour, PlaceX, PlaceY, Notation };

struct Property {
    size_t argument;  ///< index of the method's argument
    PropertyKind kind;
    GParamSpec* spec;  ///< floating until somebody takes it
};

/// Registers the types of the method's choices with the module that is being loaded.
void registerChoices(GTypeModule* module, const krl_method_info& method);
/// The properties of a method whose choices are registered, made anew.
std::vector<Property> propertiesOf(const krl_method_info& method);

/// The value of an argument for a picture of this size, from what its property holds; a place takes two. Null
/// if it is no value, and then `problem` says why.
bindings::Value valueOf(const krl_argument_info& argument, PropertyKind kind, const GValue& first,
                        const GValue* second, const GeglRectangle& picture, std::string& problem);

}  // namespace krl::gegl
