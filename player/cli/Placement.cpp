#include "player/cli/Placement.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "catalogue/Letters.h"
#include "catalogue/Notation.h"
#include "player/cli/Commands.h"
#include "player/pictures/Geometry.h"

namespace krl::player {

namespace {

struct FitName {
    const char* name;
    Placement::Fit fit;
};
constexpr FitName kFits[] = {{"none", Placement::Fit::None},
                             {"contain", Placement::Fit::Contain},
                             {"cover", Placement::Fit::Cover},
                             {"stretch", Placement::Fit::Stretch}};

/// More would only take memory: what is outside of the picture is cut off.
constexpr double kLargestScale = 100;

[[noreturn]] void fail(const Method& method, const std::string& expected, const Value& got) {
    throw CommandError(method.shortName() + ": " + expected + ", got " + writeNotation(got));
}

/// The size that the second picture gets.
std::pair<double, double> sizeOf(const krl::Picture& second, const Placement& placement, int32_t width,
                                 int32_t height) {
    double across = double(width) / second.info.width, down = double(height) / second.info.height;
    if (placement.fit == Placement::Fit::None) across = down = 1;
    if (placement.fit == Placement::Fit::Contain) across = down = std::min(across, down);
    if (placement.fit == Placement::Fit::Cover) across = down = std::max(across, down);
    return {second.info.width * across * placement.scale, second.info.height * down * placement.scale};
}

Bitmap bitmapOf(const krl::Picture& picture) {
    Bitmap copy{picture.info.width, picture.info.height, {}, nullptr};
    copy.pixels.resize(size_t(copy.width) * size_t(copy.height));
    for (int32_t y = 0; y < copy.height; ++y)
        std::memcpy(copy.row(y), picture.pixels + size_t(y) * size_t(picture.info.rowBytes),
                    size_t(copy.width) * sizeof(Pixel));
    return copy;
}

}  // namespace

bool isOfPlacement(const Method& method, std::string_view argument) {
    const std::vector<Argument>& declared = method.arguments();
    const bool isKnown = std::any_of(declared.begin(), declared.end(),
                                     [&](const Argument& one) { return sameLetters(one.name, argument); });
    const bool takesPicture = std::any_of(declared.begin(), declared.end(), [](const Argument& one) {
        return one.kind == ArgumentKind::SecondImage;
    });
    const auto named = [&](const char* name) { return sameLetters(name, argument); };
    return takesPicture && !isKnown && (named("place") || named("scale") || named("fit"));
}

void setPlacement(Placement& placement, const Method& method, std::string_view argument, const Value& value) {
    if (sameLetters("place", argument)) {
        if (!value.as<Point>()) fail(method, "place: expected a point", value);
        placement.place = *value.as<Point>();
        return;
    }
    if (sameLetters("scale", argument)) {
        const int32_t* whole = value.as<int32_t>();
        const double* real = value.as<double>();
        placement.scale = whole ? *whole : real ? *real : 0;
        if (!(placement.scale > 0 && placement.scale <= kLargestScale))
            fail(method, "scale: expected a number above 0, up to 100", value);
        return;
    }
    const auto* symbol = value.as<Symbol>();
    for (const FitName& known : kFits)
        if (symbol && sameLetters(known.name, symbol->name)) {
            placement.fit = known.fit;
            return;
        }
    fail(method, "fit: expected #none, #contain, #cover or #stretch", value);
}

krl::Picture placed(const krl::Picture& second, const Placement& placement, int32_t width, int32_t height) {
    const auto [across, down] = sizeOf(second, placement, width, height);
    const auto pixels = [](double length) {
        return std::max(1, static_cast<int32_t>(std::lround(std::min(length, 1e9))));
    };
    const Bitmap sized = resized(bitmapOf(second), pixels(across), pixels(down));
    const int64_t left = placement.place ? int64_t{placement.place->x} : (int64_t{width} - sized.width) / 2;
    const int64_t top = placement.place ? int64_t{placement.place->y} : (int64_t{height} - sized.height) / 2;
    krl::Picture ground = krl::Picture::blank(width, height);
    const int64_t first = std::max<int64_t>(left, 0), end = std::min<int64_t>(left + sized.width, width);
    for (int64_t y = std::max<int64_t>(top, 0); y < std::min<int64_t>(top + sized.height, height); ++y)
        if (first < end)
            std::memcpy(ground.pixels + y * ground.info.rowBytes + first * int64_t{sizeof(Pixel)},
                        sized.row(static_cast<int32_t>(y - top)) + (first - left),
                        static_cast<size_t>(end - first) * sizeof(Pixel));
    return ground;
}

}  // namespace krl::player
