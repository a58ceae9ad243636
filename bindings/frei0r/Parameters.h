#pragma once

#include <string>
#include <vector>

#include "common/Handles.h"
#include "frei0r/Frei0r.h"
#include "krlimage.h"

/// The parameters by which hosts see a method's arguments.
namespace krl::frei0r {

enum class ParameterKind {
    Number,  ///< 0 to 1 over the range of the argument
    Choice,  ///< 0 to 1 in as many steps as there are choices
    Switch,  ///< the choices true and false
    Colour,
    Place,       ///< 0 to 1 over the width and the height of the picture
    Notation,    ///< a list in script notation
    ChoiceName,  ///< the name of a choice; empty leaves it to the number
};

struct Parameter {
    size_t argument;  ///< index of the method's argument
    ParameterKind kind;
    std::string name, explanation;

    /// The kind by frei0r's number.
    int type() const;
};

/// Those of a method: one for each argument that is not a picture or a size, in order, and after all of these
/// the names of choices.
std::vector<Parameter> parametersOf(const krl_method_info& method);

/// Enough digits for a number that a host sets.
constexpr int kExactDigits = 9;
/// A number with at most so many digits.
std::string numberText(double number, int digits);
/// A colour as six hexadecimal digits.
std::string colourText(const f0r_param_color_t& colour);

/// The value of a parameter in the forms that hosts set and ask for.
struct Setting {
    double number = 0;
    f0r_param_color_t colour = {};
    f0r_param_position_t place = {};
    std::string text;
};

/// For which argument and which size of picture a setting is.
struct Scale {
    const krl_argument_info* argument;
    int32_t width, height;
};

/// The setting that stands for a value of an argument.
Setting settingOf(ParameterKind kind, const Scale& scale, const krl_value& value);
/// The value that a setting stands for. Null if it is none, and then `problem` says what was expected.
bindings::Value valueOf(ParameterKind kind, const Scale& scale, const Setting& setting, std::string& problem);

}  // namespace krl::frei0r
