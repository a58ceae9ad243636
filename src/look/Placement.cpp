#include "look/Placement.h"

#include <algorithm>
#include <cmath>

#include "catalogue/Letters.h"
#include "catalogue/Notation.h"
#include "look/Resample.h"

namespace krl {

namespace {

struct FitName {
    const char* name;
    Placement::Fit fit;
};
constexpr FitName kFits[] = {{"none", Placement::Fit::None},
                             {"contain", Placement::Fit::Contain},
                             {"cover", Placement::Fit::Cover},
                             {"stretch", Placement::Fit::Stretch}};

/// More shows nothing but a single pixel.
constexpr double kLargestScale = 100;

[[noreturn]] void fail(const Method& method, const std::string& expected, const Value& got) {
    throw ArgumentError(ArgumentFault::WrongKind,
                        method.shortName() + ": " + expected + ", got " + writeNotation(got));
}

bool isPlaced(const Method& method, const Argument& argument) {
    return argument.kind == ArgumentKind::SecondImage && &argument != method.changedPicture();
}

double scaleOf(const Method& method, const Value& value) {
    const int32_t* whole = value.as<int32_t>();
    const double* real = value.as<double>();
    const double scale = whole ? *whole : real ? *real : 0;
    if (!(scale > 0 && scale <= kLargestScale))
        fail(method, "scale: expected a number above 0, up to 100", value);
    return scale;
}

Placement::Fit fitOf(const Method& method, const Value& value) {
    const auto* symbol = value.as<Symbol>();
    for (const FitName& known : kFits)
        if (symbol && sameLetters(known.name, symbol->name)) return known.fit;
    fail(method, "fit: expected #none, #contain, #cover or #stretch", value);
}

void take(Placement& placement, const Method& method, const GivenArgument& given) {
    if (sameLetters("scale", given.name)) {
        placement.scale = scaleOf(method, *given.value);
    } else if (sameLetters("fit", given.name)) {
        placement.fit = fitOf(method, *given.value);
    } else {
        const Point* place = given.value->as<Point>();
        if (!place) fail(method, "place: expected a point", *given.value);
        placement.place = *place;
    }
}

PlacedSize sizeOf(const Picture& second, const Placement& placement, int32_t width, int32_t height) {
    double across = double(width) / second.info.width, down = double(height) / second.info.height;
    if (placement.fit == Placement::Fit::None) across = down = 1;
    if (placement.fit == Placement::Fit::Contain) across = down = std::min(across, down);
    if (placement.fit == Placement::Fit::Cover) across = down = std::max(across, down);
    const auto length = [&](int32_t own, double factor) {
        const double exact = own * factor * placement.scale;
        return std::max<int64_t>(1, std::llround(std::min(exact, 1e9)));
    };
    PlacedSize size{length(second.info.width, across), length(second.info.height, down)};
    size.left = placement.place ? placement.place->x : (width - size.width) / 2;
    size.top = placement.place ? placement.place->y : (height - size.height) / 2;
    return size;
}

}  // namespace

bool isOfPlacement(const Method& method, std::string_view argument) {
    const std::vector<Argument>& declared = method.arguments();
    const auto named = [&](const char* name) { return sameLetters(name, argument); };
    const bool isOne = named("place") || named("scale") || named("fit");
    return isOne && method.rewritesPicture() &&
           std::any_of(declared.begin(), declared.end(),
                       [&](const Argument& one) { return isPlaced(method, one); }) &&
           std::none_of(declared.begin(), declared.end(),
                        [&](const Argument& one) { return sameLetters(one.name, argument); });
}

std::optional<Placement> takePlacement(const Method& method, std::vector<GivenArgument>& given) {
    std::optional<Placement> placement;
    std::erase_if(given, [&](const GivenArgument& argument) {
        if (!argument.value || !isOfPlacement(method, argument.name)) return false;
        if (!placement) placement.emplace();
        take(*placement, method, argument);
        return true;
    });
    return placement;
}

Picture placed(const Picture& second, const Placement& placement, int32_t width, int32_t height) {
    Picture ground = Picture::blank(width, height);
    ground.order = second.order;
    drawResampled(ground, second, sizeOf(second, placement, width, height));
    return ground;
}

void placePictures(const Method& method, const Placement& placement, int32_t width, int32_t height,
                   std::vector<Value>& arguments) {
    for (size_t i = 0; i < arguments.size() && i < method.arguments().size(); ++i)
        if (const Picture* second = arguments[i].as<Picture>();
            second && isPlaced(method, method.arguments()[i]))
            arguments[i] = placed(*second, placement, width, height);
}

}  // namespace krl
