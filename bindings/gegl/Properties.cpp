#include "gegl/Properties.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "common/Roles.h"
#include "common/Titles.h"

namespace krl::gegl {

namespace {

constexpr auto kFlags = static_cast<GParamFlags>(G_PARAM_READWRITE | G_PARAM_CONSTRUCT);
/// Places are shares of the picture; their examples are asked for on one of this size.
constexpr int32_t kGrid = 1000;

/// What GEGL keeps pointing at stays for as long as the program runs.
const char* kept(const std::string& text) { return g_intern_string(text.c_str()); }

int choiceOf(const krl_argument_info& argument, const char* name) {
    for (size_t i = 0; i < argument.choice_count; ++i)
        if (g_ascii_strcasecmp(argument.choices[i], name) == 0) return static_cast<int>(i);
    return 0;
}

/// The name of the type of an argument's choices.
std::string choiceTypeName(const krl_method_info& method, const krl_argument_info& argument) {
    return std::string("Krl-") + method.name + "-" + argument.name;
}

double limitOr(double limit, double otherwise) { return std::isfinite(limit) ? limit : otherwise; }

GParamSpec* integerSpec(const krl_argument_info& argument, const char* title, const krl_value& example) {
    constexpr double kLeast = std::numeric_limits<int32_t>::min(),
                     kMost = std::numeric_limits<int32_t>::max();
    int32_t number = 0;
    krl_get_integer(&example, &number);
    return gegl_param_spec_int(argument.name, title, argument.meaning,
                               static_cast<gint>(limitOr(argument.least, kLeast)),
                               static_cast<gint>(limitOr(argument.most, kMost)), number,
                               static_cast<gint>(argument.from), static_cast<gint>(argument.to), 1, kFlags);
}

GParamSpec* realSpec(const krl_argument_info& argument, const char* title, const krl_value& example) {
    constexpr double kMost = std::numeric_limits<float>::max();
    double number = 0;
    krl_get_real(&example, &number);
    return gegl_param_spec_double(argument.name, title, argument.meaning, limitOr(argument.least, -kMost),
                                  limitOr(argument.most, kMost), number, argument.from, argument.to, 1,
                                  kFlags);
}

GParamSpec* colourSpec(const krl_argument_info& argument, const char* title, const krl_value& example) {
    uint8_t rgb[3] = {};
    krl_get_colour(&example, &rgb[0], &rgb[1], &rgb[2]);
    char text[8];
    g_snprintf(text, sizeof text, "#%02x%02x%02x", rgb[0], rgb[1], rgb[2]);
    GeglColor* colour = gegl_color_new(text);
    GParamSpec* spec = gegl_param_spec_color(argument.name, title, argument.meaning, colour, kFlags);
    g_object_unref(colour);
    return spec;
}

GParamSpec* placeSpec(const krl_argument_info& argument, const std::string& title, const char* axis,
                      int32_t example) {
    GParamSpec* spec =
        gegl_param_spec_double(kept(argument.name + (std::string("-") + axis)), kept(title + " " + axis),
                               argument.meaning, -10, 10, double(example) / kGrid, 0, 1, 1, kFlags);
    gegl_param_spec_set_property_key(spec, "unit", "relative-coordinate");
    gegl_param_spec_set_property_key(spec, "axis", axis);
    return spec;
}

GParamSpec* symbolSpec(const krl_method_info& method, const krl_argument_info& argument, const char* title,
                       const krl_value& example) {
    const char* const chosen = krl_get_text(&example);
    if (bindings::isSwitch(argument))
        return g_param_spec_boolean(argument.name, title, argument.meaning,
                                    g_ascii_strcasecmp(chosen, "true") == 0, kFlags);
    return gegl_param_spec_enum(argument.name, title, argument.meaning,
                                g_type_from_name(choiceTypeName(method, argument).c_str()),
                                choiceOf(argument, chosen), kFlags);
}

/// The unit of a number as dialogs know it, or null. What texts may give in percent is a length.
const char* unitOf(const krl_method_info& method, const krl_argument_info& argument) {
    const bool isNumber = argument.kind == KRL_KIND_INTEGER || argument.kind == KRL_KIND_REAL;
    const bool isLength = bindings::Value(krl_parse_argument(method.name, argument.name, "10%", kGrid, kGrid,
                                                             nullptr, 0)) != nullptr;
    return isNumber && isLength ? "pixel-distance" : nullptr;
}

std::vector<Property> propertiesOf(const krl_method_info& method, size_t index) {
    const krl_argument_info& argument = *method.arguments[index];
    const bindings::Value example(krl_example(method.name, index, kGrid, kGrid));
    const char* const title = kept(bindings::titleOf(argument.name));
    switch (argument.kind) {
        case KRL_KIND_PICTURE:
            return {};
        case KRL_KIND_INTEGER:
            return {{index, PropertyKind::Integer, integerSpec(argument, title, *example)}};
        case KRL_KIND_REAL:
            return {{index, PropertyKind::Real, realSpec(argument, title, *example)}};
        case KRL_KIND_SYMBOL:
            return {{index, bindings::isSwitch(argument) ? PropertyKind::Switch : PropertyKind::Choice,
                     symbolSpec(method, argument, title, *example)}};
        case KRL_KIND_COLOUR:
            return {{index, PropertyKind::Colour, colourSpec(argument, title, *example)}};
        case KRL_KIND_POINT: {
            int32_t x = 0, y = 0;
            krl_get_point(example.get(), &x, &y);
            return {{index, PropertyKind::PlaceX, placeSpec(argument, title, "x", x)},
                    {index, PropertyKind::PlaceY, placeSpec(argument, title, "y", y)}};
        }
        default:
            return {{index, PropertyKind::Notation,
                     gegl_param_spec_string(argument.name, title, argument.meaning, FALSE, TRUE,
                                            argument.example, kFlags)}};
    }
}

bindings::Value colourValue(const GValue& held) {
    guint8 rgb[3] = {};
    if (GeglColor* colour = GEGL_COLOR(g_value_get_object(&held)))
        gegl_color_get_pixel(colour, babl_format("R'G'B' u8"), rgb);
    return bindings::Value(krl_colour(rgb[0], rgb[1], rgb[2]));
}

bindings::Value notationValue(const GValue& held, std::string& problem) {
    char why[256] = "";
    const char* const text = g_value_get_string(&held);
    bindings::Value value(krl_parse(text ? text : "", why, sizeof why));
    if (!value) problem = why;
    return value;
}

int32_t pixelOf(const GValue& share, int32_t size) {
    return static_cast<int32_t>(std::lround(g_value_get_double(&share) * size));
}

}  // namespace

void registerChoices(GTypeModule* module, const krl_method_info& method) {
    for (size_t a = 0; a < method.argument_count; ++a) {
        const krl_argument_info& argument = *method.arguments[a];
        if (argument.kind != KRL_KIND_SYMBOL || bindings::isSwitch(argument)) continue;
        auto* values = g_new0(GEnumValue, argument.choice_count + 1);
        for (size_t i = 0; i < argument.choice_count; ++i)
            values[i] = {static_cast<gint>(i), argument.choices[i], argument.choices[i]};
        g_type_module_register_enum(module, choiceTypeName(method, argument).c_str(), values);
    }
}

std::vector<Property> propertiesOf(const krl_method_info& method) {
    std::vector<Property> all;
    for (size_t i = 0; i < method.argument_count; ++i)
        for (const Property& property : propertiesOf(method, i)) {
            if (const char* unit = unitOf(method, *method.arguments[i]))
                gegl_param_spec_set_property_key(property.spec, "unit", unit);
            all.push_back(property);
        }
    return all;
}

bindings::Value valueOf(const krl_argument_info& argument, PropertyKind kind, const GValue& first,
                        const GValue* second, const GeglRectangle& picture, std::string& problem) {
    switch (kind) {
        case PropertyKind::Integer:
            return bindings::Value(krl_integer(g_value_get_int(&first)));
        case PropertyKind::Real:
            return bindings::Value(krl_real(g_value_get_double(&first)));
        case PropertyKind::Choice:
            return bindings::Value(krl_symbol(argument.choices[g_value_get_enum(&first)]));
        case PropertyKind::Switch:
            return bindings::Value(krl_symbol(g_value_get_boolean(&first) ? "true" : "false"));
        case PropertyKind::Colour:
            return colourValue(first);
        case PropertyKind::Notation:
            return notationValue(first, problem);
        case PropertyKind::PlaceX:
        case PropertyKind::PlaceY:
            return bindings::Value(
                krl_point(pixelOf(first, picture.width), pixelOf(*second, picture.height)));
    }
    return nullptr;
}

}  // namespace krl::gegl
