#pragma once

#include <functional>
#include <limits>
#include <type_traits>
#include <vector>

#include "catalogue/Caller.h"
#include "krlimage/options.h"

/// The declaration of one argument of a method, and the value that it has in a call.
namespace krl {

enum class ArgumentKind {
    Integer,
    Real,  ///< `float` in a signature
    Symbol,
    Colour,  ///< `color`
    Point,
    ColourList,   ///< a property list of colours under numbers
    SecondImage,  ///< `any`: an image that the method reads
    Value,        ///< `any` or `list`, copied for a hand-written body
};

/// A sensible range to try and a value that shows the effect. The effect itself may limit the argument: what
/// lies beyond `least` or `most` counts as that limit. At `neutral` the effect changes nothing, whatever its
/// other arguments. A number of `pixels` is a length, which looks and programs may give in percent of the
/// picture's shorter side.
struct NumberRange {
    double from = 0;
    double to = 0;
    double example = 0;
    double least = -std::numeric_limits<double>::infinity();
    double most = std::numeric_limits<double>::infinity();
    double neutral = std::numeric_limits<double>::quiet_NaN();
    bool pixels = false;
};

/// A symbol that an argument takes, and the number it stands for.
struct SymbolChoice {
    const char* name;
    int32_t number;

    template <class Number>
    constexpr SymbolChoice(const char* symbol, Number value)
        : name(symbol), number(static_cast<int32_t>(value)) {}
};

/// What becomes of a symbol that is none of the choices: a message, or a number that stands in.
struct UnknownSymbol {
    const char* message = nullptr;
    int32_t number = 0;
};
constexpr UnknownSymbol refused(const char* message) { return {message, 0}; }
template <class Number>
constexpr UnknownSymbol otherwise(Number number) {
    return {nullptr, static_cast<int32_t>(number)};
}

/// A place as a fraction of the picture's width and height.
struct PlaceExample {
    double x = 0.5;
    double y = 0.5;
};

/// One entry of an example colour list.
struct ColourStop {
    int32_t percent;
    Colour colour;
};

/// How a colour list becomes `CurveKey`s: the key is read as an integer or as a float, and the
/// position is its product with `scale`, stored in single precision.
struct ListKeys {
    bool real = false;
    double scale = 1.0;
};
/// Percent to the 0..255 scale of image levels, by the single-precision value nearest 2.55.
inline constexpr double kLevelsPerPercent = 2.549999952316284;

/// The texts of a second image's size tests, height first; null for a method that has none.
struct ImageTests {
    const char* heightFailure = nullptr;
    const char* widthFailure = nullptr;
};

/// One argument as converted.
struct ArgumentValue {
    int32_t integer = 0;  ///< an integer, or the number of the symbol that was given
    double real = 0;
    Colour colour;
    Point point;
    std::vector<CurveKey> keys;
    SecondImage image;
    SymbolId symbol = 0;
    ValueHandle value;  ///< as the caller passed it

    /// As an effect's parameter of type `Parameter`.
    template <class Parameter>
    Parameter as() const {
        if constexpr (std::is_same_v<Parameter, bool>)
            return integer != 0;
        else if constexpr (std::is_integral_v<Parameter> || std::is_enum_v<Parameter>)
            return static_cast<Parameter>(integer);
        else if constexpr (std::is_floating_point_v<Parameter>)
            return static_cast<Parameter>(real);
        else if constexpr (std::is_same_v<Parameter, Colour>)
            return colour;
        else if constexpr (std::is_same_v<Parameter, Point>)
            return point;
        else if constexpr (std::is_same_v<Parameter, SecondImage>)
            return image;
        else
            return Parameter(keys);
    }
};

/// One argument as declared.
struct Argument {
    ArgumentKind kind = ArgumentKind::Integer;
    const char* name = "";
    const char* meaning = "";
    NumberRange range;
    std::vector<SymbolChoice> choices;
    UnknownSymbol unknown;
    Colour colourExample;
    PlaceExample placeExample;
    std::vector<ColourStop> stops;
    ListKeys listKeys;
    ImageTests imageTests;
    const char* example = nullptr;       ///< a sample picture's name, or a Lingo text for a value
    const char* inputFailure = nullptr;  ///< this argument's own text where it differs
    std::function<bool(const ArgumentValue&)> check;
    const char* checkFailure = nullptr;
    bool thenCompare = false;  ///< symbols so far are compared before the next read

    bool accepts(ArgumentKind parameter) const;
};

}  // namespace krl
