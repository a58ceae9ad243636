#pragma once

#include <array>
#include <type_traits>
#include <utility>
#include <vector>

#include "catalogue/Argument.h"

/// How the parameters of an effect take the arguments of a call: one argument each, or one for each field of
/// a struct.
namespace krl {

/// The kind of argument that a parameter of this type takes.
template <class Parameter>
constexpr ArgumentKind argumentKindOf() {
    if constexpr (std::is_enum_v<Parameter> || std::is_same_v<Parameter, bool>)
        return ArgumentKind::Symbol;
    else if constexpr (std::is_integral_v<Parameter>)
        return ArgumentKind::Integer;
    else if constexpr (std::is_floating_point_v<Parameter>)
        return ArgumentKind::Real;
    else if constexpr (std::is_same_v<Parameter, Colour>)
        return ArgumentKind::Colour;
    else if constexpr (std::is_same_v<Parameter, Point>)
        return ArgumentKind::Point;
    else if constexpr (std::is_same_v<Parameter, SecondImage>)
        return ArgumentKind::SecondImage;
    else
        return ArgumentKind::ColourList;
}

/// Whether a parameter is a struct of named fields, each of which takes an argument of its own.
template <class Parameter>
inline constexpr bool kTakesFields = std::is_aggregate_v<Parameter> && !std::is_same_v<Parameter, Point> &&
                                     !std::is_same_v<Parameter, SecondImage>;

/// Becomes whatever a field is: its declared argument, or nothing while kinds are collected.
struct FieldArgument {
    const ArgumentValue* value = nullptr;
    ArgumentKind* kind = nullptr;

    template <class Field>
    operator Field() const {
        if (kind) *kind = argumentKindOf<Field>();
        return value ? value->as<Field>() : Field();
    }
};

template <class Parameter, size_t... Index>
constexpr bool hasFields(std::index_sequence<Index...>) {
    return requires { Parameter{(static_cast<void>(Index), FieldArgument())...}; };
}

/// Arguments that a parameter takes: one, or as many as its struct has fields.
template <class Parameter, size_t most = 24>
constexpr size_t argumentCountOf() {
    if constexpr (!kTakesFields<Parameter>)
        return 1;
    else if constexpr (hasFields<Parameter>(std::make_index_sequence<most>()))
        return most;
    else
        return argumentCountOf<Parameter, most - 1>();
}

/// The parameter made of its fields' arguments.
template <class Parameter, class Field>
Parameter parameterOf(Field&& field) {
    if constexpr (!kTakesFields<Parameter>)
        return field(0);
    else
        return [&]<size_t... Index>(std::index_sequence<Index...>) { return Parameter{field(Index)...}; }
    (std::make_index_sequence<argumentCountOf<Parameter>()>());
}

/// Where in a list of arguments each parameter's begin.
template <class... Parameters>
constexpr auto firstArguments() {
    std::array<size_t, sizeof...(Parameters) + 1> first{};
    size_t place = 0;
    ((first[place + 1] = first[place] + argumentCountOf<Parameters>(), ++place), ...);
    return first;
}

/// The kinds of argument that a list of parameters takes.
template <class... Parameters>
std::vector<ArgumentKind> argumentKindsOf() {
    std::vector<ArgumentKind> kinds(firstArguments<Parameters...>().back());
    [[maybe_unused]] ArgumentKind* next = kinds.data();
    [[maybe_unused]] const auto collect = [&]<class Parameter>(std::type_identity<Parameter>) {
        static_cast<void>(parameterOf<Parameter>([&](size_t i) { return FieldArgument{nullptr, next + i}; }));
        next += argumentCountOf<Parameter>();
    };
    (collect(std::type_identity<Parameters>()), ...);
    return kinds;
}

}  // namespace krl
