#include "look/Extent.h"

#include <algorithm>
#include <cmath>

#include "catalogue/Letters.h"
#include "kernels/colour/Grey.h"
#include "look/PictureMemory.h"

namespace krl {

namespace {

enum class ExtentPart { Mix, Mask, Region, Feather };

struct ExtentName {
    const char* name;
    ExtentPart part;
};
constexpr ExtentName kNames[] = {{"mix", ExtentPart::Mix},
                                 {"mask", ExtentPart::Mask},
                                 {"region", ExtentPart::Region},
                                 {"feather", ExtentPart::Feather}};

std::optional<ExtentPart> partNamed(std::string_view name) {
    for (const ExtentName& known : kNames)
        if (sameLetters(known.name, name)) return known.part;
    return std::nullopt;
}

bool hasArgument(const Method& method, std::string_view name) {
    return std::any_of(method.arguments().begin(), method.arguments().end(),
                       [&](const Argument& argument) { return sameLetters(argument.name, name); });
}

[[noreturn]] void fail(const Method& method, const std::string& expected, const Value& got) {
    throw ArgumentError(ArgumentFault::WrongKind,
                        method.shortName() + ": " + expected + ", got " + writeNotation(got));
}

double mixOf(const Method& method, const Value& value) {
    const int32_t* whole = value.as<int32_t>();
    const double* real = value.as<double>();
    const double mix = whole ? *whole : real ? *real : -1;
    if (!(mix >= 0 && mix <= 1)) fail(method, "mix: expected a number from 0 to 1", value);
    return mix;
}

Region regionOf(const Method& method, const Value& value) {
    const auto* sides = value.as<ListValue>();
    const auto side = [&](size_t i) {
        const int32_t* pixels = sides && sides->size() == 4 ? (*sides)[i].as<int32_t>() : nullptr;
        if (!pixels) fail(method, "region: expected rect(left, top, right, bottom)", value);
        return *pixels;
    };
    const Region region{side(0), side(1), side(2), side(3)};
    if (region.left >= region.right || region.top >= region.bottom)
        fail(method, "region: expected left before right and top before bottom", value);
    return region;
}

void take(Extent& extent, ExtentPart part, const Method& method, const Value& value) {
    switch (part) {
        case ExtentPart::Mix:
            extent.mix = mixOf(method, value);
            return;
        case ExtentPart::Mask:
            if (!value.as<Picture>()) fail(method, "mask: expected a picture", value);
            extent.mask = *value.as<Picture>();
            return;
        case ExtentPart::Region:
            extent.region = regionOf(method, value);
            return;
        case ExtentPart::Feather: {
            const int32_t* pixels = value.as<int32_t>();
            if (!pixels || *pixels < 0) fail(method, "feather: expected pixels, 0 or more", value);
            extent.feather = *pixels;
            return;
        }
    }
}

/// `a * b / 255`, rounded.
constexpr int32_t shareOf(int32_t a, int32_t b) { return (a * b + 127) / 255; }

/// The share of one column or row: none outside, and growing to full over `feather` pixels inside.
int32_t rampAt(int32_t place, int32_t first, int32_t end, int32_t feather) {
    if (place < first || place >= end) return 0;
    const int64_t inside = std::min(int64_t{place} - first, int64_t{end} - 1 - place) + 1;
    return static_cast<int32_t>(std::min<int64_t>(255, (inside * 255) / (int64_t{feather} + 1)));
}

/// The shares of a picture, a row at a time.
class Shares {
public:
    Shares(const Extent& extent, const ImageInfo& size)
        : extent_(extent),
          mix_(static_cast<int32_t>(std::lround(extent.mix * 255))),
          columns_(static_cast<size_t>(size.width), 255),
          shares_(columns_.size()) {
        if (!extent.region) return;
        const Region& region = *extent.region;
        for (int32_t x = 0; x < size.width; ++x)
            columns_[static_cast<size_t>(x)] = rampAt(x, region.left, region.right, extent.feather);
    }

    const std::vector<int32_t>& row(int32_t y) {
        const int32_t down =
            extent_.region ? rampAt(y, extent_.region->top, extent_.region->bottom, extent_.feather) : 255;
        const int32_t all = shareOf(mix_, down);
        for (size_t x = 0; x < shares_.size(); ++x) shares_[x] = shareOf(columns_[x], all);
        if (extent_.mask) maskRow(y);
        return shares_;
    }

private:
    void maskRow(int32_t y) {
        const auto* mask =
            reinterpret_cast<const Pixel*>(extent_.mask->pixels) + static_cast<size_t>(y) * shares_.size();
        for (size_t x = 0; x < shares_.size(); ++x) shares_[x] = shareOf(shares_[x], meanColour(mask[x]));
    }

    const Extent& extent_;
    const int32_t mix_;
    std::vector<int32_t> columns_, shares_;
};

/// One byte of the result: the old one and its change by a share.
constexpr uint8_t mixed(int32_t before, int32_t after, int32_t share) {
    return static_cast<uint8_t>((before * (255 - share) + after * share + 127) / 255);
}

void keepWithin(const Extent& extent, const Picture& before, const Picture& after) {
    Shares shares(extent, after.info);
    const size_t rowBytes = static_cast<size_t>(after.info.width) * sizeof(Pixel);
    for (int32_t y = 0; y < after.info.height; ++y) {
        const std::vector<int32_t>& share = shares.row(y);
        const uint8_t* old = before.pixels + static_cast<size_t>(y) * rowBytes;
        uint8_t* bytes = after.pixels + static_cast<size_t>(y) * rowBytes;
        for (size_t i = 0; i < rowBytes; ++i) bytes[i] = mixed(old[i], bytes[i], share[i / sizeof(Pixel)]);
    }
}

std::string sizeText(const ImageInfo& size) {
    return std::to_string(size.width) + " by " + std::to_string(size.height);
}

}  // namespace

Extent takeExtent(const Method& method, std::vector<GivenArgument>& given) {
    Extent extent;
    bool isTaken = false;
    for (auto argument = given.begin(); argument != given.end();) {
        const std::optional<ExtentPart> part = partNamed(argument->name);
        if (!part || !argument->value || hasArgument(method, argument->name)) {
            ++argument;
            continue;
        }
        if (!method.rewritesPicture())
            throw ArgumentError(ArgumentFault::NoSuchArgument,
                                method.shortName() + ": " + std::string(argument->name) +
                                    " is for methods that rewrite the picture");
        take(extent, *part, method, *argument->value);
        isTaken = true;
        argument = given.erase(argument);
    }
    if (isTaken && extent.feather > 0 && !extent.region)
        throw ArgumentError(ArgumentFault::Missing, method.shortName() + ": feather needs a region");
    return extent;
}

std::optional<PercentKind> percentOfExtent(std::string_view argument) {
    const std::optional<ExtentPart> part = partNamed(argument);
    if (!part) return std::nullopt;
    return part == ExtentPart::Feather ? PercentKind::Whole : PercentKind::None;
}

CallResult callWithin(const Extent& extent, const Picture& picture, const std::function<CallResult()>& call) {
    if (extent.isWhole()) return call();
    if (extent.mask &&
        (extent.mask->info.width != picture.info.width || extent.mask->info.height != picture.info.height))
        throw ArgumentError(ArgumentFault::WrongKind, "mask: expected a picture of " +
                                                          sizeText(picture.info) + " pixels, got one of " +
                                                          sizeText(extent.mask->info));
    const Picture before = copyOf(picture);
    CallResult result = call();
    if (result.ok()) keepWithin(extent, before, picture);
    return result;
}

}  // namespace krl
