#include "fuzz/PlainReferences.h"

#include <cstdlib>
#include <functional>
#include <map>
#include <optional>
#include <string>

#include "catalogue/Letters.h"
#include "reference/EdgesReference.h"
#include "reference/PathBlurReference.h"
#include "reference/StyliseReference.h"
#include "reference/TentBlurReference.h"

namespace krl::fuzz {

namespace {

using test::Picture;

/// The arguments of a call, as numbers.
class Given {
public:
    Given(const Method& method, const std::vector<Value>& values) : method_(method), values_(values) {}

    int32_t integer(size_t i) const { return *values_[i].as<int32_t>(); }
    double real(size_t i) const {
        const auto* whole = values_[i].as<int32_t>();
        return whole ? *whole : *values_[i].as<double>();
    }
    Point point(size_t i) const { return *values_[i].as<Point>(); }
    /// The number that a symbol stands for, or `otherwise` if it is none of the choices.
    template <class Option>
    Option option(size_t i, Option otherwise) const {
        for (const SymbolChoice& choice : method_.arguments()[i].choices)
            if (sameLetters(values_[i].as<Symbol>()->name, choice.name))
                return static_cast<Option>(choice.number);
        return otherwise;
    }

private:
    const Method& method_;
    const std::vector<Value>& values_;
};

/// The picture as it should be, or nothing where the reference would take too long.
using Reference = std::function<std::optional<Picture>(const Picture&, const Given&)>;

constexpr int32_t kLongest = 300;
constexpr int32_t kFarthest = 2000;

bool isFar(Point p) { return std::abs(int64_t{p.x}) > kFarthest || std::abs(int64_t{p.y}) > kFarthest; }

const std::map<std::string, Reference>& references() {
    static const std::map<std::string, Reference> all = {
        {"radialBlur",
         [](const Picture& picture, const Given& given) -> std::optional<Picture> {
             const auto target = given.option(2, static_cast<ChannelTarget>(0));
             if (given.integer(0) > kLongest || isFar(given.point(1)) || target == ChannelTarget(0))
                 return {};
             return test::referenceRadialBlur(picture, given.integer(0), given.point(1), target);
         }},
        {"zoomBlur",
         [](const Picture& picture, const Given& given) -> std::optional<Picture> {
             const auto target = given.option(3, static_cast<ChannelTarget>(0));
             if (std::abs(int64_t{given.integer(0)}) > kLongest || isFar(given.point(1)) ||
                 target == ChannelTarget(0))
                 return {};
             return test::referenceZoomBlur(picture, given.integer(0), given.point(1),
                                            given.option(2, ZoomDirection::In), target);
         }},
        {"motionBlur",
         [](const Picture& picture, const Given& given) -> std::optional<Picture> {
             const auto target = given.option(3, static_cast<ChannelTarget>(0));
             if (given.integer(0) > kLongest || std::abs(int64_t{given.integer(1)}) > 100000 ||
                 target == ChannelTarget(0))
                 return {};
             return test::referenceMotionBlur(picture, given.integer(0), given.integer(1),
                                              given.option(2, BlurCount::Double), target);
         }},
        {"fastGaussianBlur",
         [](const Picture& picture, const Given& given) -> std::optional<Picture> {
             const auto target = given.option(1, ChannelTarget::Single);
             if (given.integer(0) > kLongest) return {};
             const size_t first = target == ChannelTarget::Alpha ? 3 : 0;
             const size_t last = target == ChannelTarget::RGBA || target == ChannelTarget::Alpha ? 3
                                 : target == ChannelTarget::RGB                                  ? 2
                                                                                                 : 0;
             Picture blurred = picture;
             blurred.pixels() = reference::tentPixels(picture.pixels(), picture.height(), picture.width(),
                                                      std::max(given.integer(0), 0), first, last);
             return blurred;
         }},
        {"sobel",
         [](const Picture& picture, const Given& given) -> std::optional<Picture> {
             if (picture.width() < 2 || picture.height() < 2) return {};
             return test::referenceSobel(picture, given.option(0, ChannelTarget::Alpha));
         }},
        {"mosaic",
         [](const Picture& picture, const Given& given) -> std::optional<Picture> {
             if (given.integer(0) > 10000) return {};
             return test::referenceMosaic(picture, given.integer(0), given.option(1, ChannelTarget::Alpha));
         }},
        {"oilPaint",
         [](const Picture& picture, const Given& given) -> std::optional<Picture> {
             return test::referenceOilPaint(picture, given.integer(0), given.integer(1));
         }},
    };
    return all;
}

}  // namespace

bool differsFromReference(const Method& method, const krl::Picture& before,
                          const std::vector<Value>& arguments, const krl::Picture& after) {
    const auto found = references().find(method.shortName());
    if (found == references().end()) return false;
    const auto pictureOf = [](const krl::Picture& plain) {
        Picture picture(plain.info.width, plain.info.height);
        std::copy_n(reinterpret_cast<const Pixel*>(plain.pixels), picture.pixels().size(),
                    picture.pixels().begin());
        return picture;
    };
    const std::optional<Picture> expected = found->second(pictureOf(before), Given(method, arguments));
    return expected && !(*expected == pictureOf(after));
}

}  // namespace krl::fuzz
