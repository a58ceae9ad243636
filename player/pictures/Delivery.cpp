#include "player/pictures/Delivery.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "player/pictures/Geometry.h"

namespace krl::player {

namespace {

/// Reads texts from left to right.
class Scanner {
public:
    explicit Scanner(const std::string& text) : rest_(text) {}

    bool isAtEnd() const { return rest_.empty(); }

    bool take(char letter) {
        if (!rest_.starts_with(letter)) return false;
        rest_.erase(0, 1);
        return true;
    }

    std::optional<DeliveryLength> length() {
        const size_t digits = std::min(rest_.find_first_not_of("0123456789."), rest_.size());
        if (digits == 0 || digits > 12 || rest_[0] == '.' ||
            std::count(rest_.begin(), rest_.begin() + long(digits), '.') > 1)
            return std::nullopt;
        DeliveryLength found{std::stod(rest_.substr(0, digits)), false};
        rest_.erase(0, digits);
        found.isPercent = take('%');
        return found;
    }

private:
    std::string rest_;
};

std::string sizeText(int32_t width, int32_t height) {
    return std::to_string(width) + " by " + std::to_string(height) + " pixels";
}

void crop(Bitmap& picture, const DeliveryCrop& crop) {
    const int32_t width = crop.width.pixels(picture.width), height = crop.height.pixels(picture.height);
    const int32_t left = crop.left ? crop.left->pixels(picture.width) : (picture.width - width) / 2;
    const int32_t top = crop.top ? crop.top->pixels(picture.height) : (picture.height - height) / 2;
    const bool isInside = width > 0 && height > 0 && left >= 0 && top >= 0 && left <= picture.width - width &&
                          top <= picture.height - height;
    if (!isInside)
        throw PictureError("cannot crop " + sizeText(width, height) + " at " + std::to_string(left) + ", " +
                           std::to_string(top) + ": the picture is " +
                           sizeText(picture.width, picture.height));
    picture = partOf(picture, left, top, width, height);
}

/// The size that keeps the proportions and touches both lengths from inside, or from outside.
std::pair<int32_t, int32_t> proportional(const Bitmap& picture, double width, double height, bool isInside) {
    const double across = width / picture.width, down = height / picture.height;
    const double scale = isInside ? std::min(across, down) : std::max(across, down);
    const auto length = [&](int32_t whole) { return static_cast<int32_t>(std::lround(whole * scale)); };
    return {std::max(1, length(picture.width)), std::max(1, length(picture.height))};
}

void resize(Bitmap& picture, const DeliverySize& size, Sizing sizing) {
    const double unknown = sizing == Sizing::Fill ? 0 : INFINITY;
    const bool isWhole = size.width && size.height;
    const double width = size.width ? size.width->pixels(picture.width) : unknown;
    const double height = size.height ? size.height->pixels(picture.height) : unknown;
    if (sizing == Sizing::Exact && isWhole) {
        picture = resized(picture, static_cast<int32_t>(width), static_cast<int32_t>(height));
        return;
    }
    const auto [across, down] = proportional(picture, width, height, sizing != Sizing::Fill);
    picture = resized(picture, across, down);
    if (sizing == Sizing::Fill && isWhole)
        crop(picture, {{width, false}, {height, false}, std::nullopt, std::nullopt});
}

}  // namespace

int32_t DeliveryLength::pixels(int32_t whole) const {
    const double exact = isPercent ? whole * number / 100 : number;
    return static_cast<int32_t>(std::lround(std::min(exact, 1e9)));
}

std::optional<DeliverySize> DeliverySize::read(const std::string& text) {
    Scanner scanner(text);
    DeliverySize size;
    size.width = scanner.length();
    if (scanner.take('x')) {
        size.height = scanner.length();
        if (!size.height && !size.width) return std::nullopt;
    } else if (size.width && size.width->isPercent) {
        size.height = size.width;
    }
    const auto isEmpty = [](const std::optional<DeliveryLength>& length) {
        return length && !(length->number > 0);
    };
    const bool isRead = scanner.isAtEnd() && (size.width || size.height);
    return isRead && !isEmpty(size.width) && !isEmpty(size.height) ? std::optional(size) : std::nullopt;
}

std::optional<DeliveryCrop> DeliveryCrop::read(const std::string& text) {
    Scanner scanner(text);
    const std::optional<DeliveryLength> width = scanner.length();
    const std::optional<DeliveryLength> height = scanner.take('x') ? scanner.length() : std::nullopt;
    if (!width || !height) return std::nullopt;
    DeliveryCrop crop{*width, *height, std::nullopt, std::nullopt};
    if (scanner.isAtEnd()) return crop;
    if (scanner.take('+')) crop.left = scanner.length();
    if (scanner.take('+')) crop.top = scanner.length();
    return crop.left && crop.top && scanner.isAtEnd() ? std::optional(crop) : std::nullopt;
}

void deliver(Bitmap& picture, const Delivery& delivery) {
    const double degrees = std::remainder(delivery.degrees, 360);
    if (degrees != 0) picture = turned(picture, degrees);
    if (delivery.crop) crop(picture, *delivery.crop);
    if (delivery.size) resize(picture, *delivery.size, delivery.sizing);
}

}  // namespace krl::player
