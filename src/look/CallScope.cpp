#include "look/CallScope.h"

#include <algorithm>

#include "catalogue/Catalogue.h"
#include "catalogue/Letters.h"
#include "look/Extent.h"

namespace krl {

namespace {

/// Which argument of a method a written one is, or null.
const Argument* argumentOf(std::string_view method, std::string_view name, size_t place) {
    const Method* found = catalogue().find(method);
    if (!found) return nullptr;
    const std::vector<Argument>& declared = found->arguments();
    if (name.empty()) return place < declared.size() ? &declared[place] : nullptr;
    const auto named = [&](const Argument& argument) { return sameLetters(argument.name, name); };
    const auto argument = std::find_if(declared.begin(), declared.end(), named);
    return argument != declared.end() ? &*argument : nullptr;
}

PercentKind percentOf(const Argument* argument, std::string_view name) {
    if (!argument) return percentOfExtent(name).value_or(PercentKind::None);
    const bool isNumber = argument->kind == ArgumentKind::Integer || argument->kind == ArgumentKind::Real;
    if (!isNumber || !argument->range.pixels) return PercentKind::None;
    return argument->kind == ArgumentKind::Integer ? PercentKind::Whole : PercentKind::Real;
}

}  // namespace

NotationScope callScope(int32_t width, int32_t height, std::function<void(const Argument*)> enter) {
    NotationScope scope;
    scope.width = width;
    scope.height = height;
    scope.percent = [enter = std::move(enter)](std::string_view method, std::string_view name, size_t place) {
        const Argument* argument = argumentOf(method, name, place);
        if (enter) enter(argument);
        return percentOf(argument, name);
    };
    return scope;
}

}  // namespace krl
