#pragma once

#include <optional>
#include <string>

#include "player/pictures/Picture.h"

/// What becomes of a finished picture before it is written: turned, cropped, and given another size.
namespace krl::player {

/// A length in pixels, or in percent of the picture's.
struct DeliveryLength {
    double number = 0;
    bool isPercent = false;

    int32_t pixels(int32_t whole) const;
};

struct DeliverySize {
    /// Either may be missing, and follows from the proportions then.
    std::optional<DeliveryLength> width, height;

    /// Reads `800x600`, `800`, `x600`, `50%` or `50%x25%`; nothing for any other text.
    static std::optional<DeliverySize> read(const std::string& text);
};

struct DeliveryCrop {
    DeliveryLength width, height;
    std::optional<DeliveryLength> left, top;  ///< missing for the middle

    /// Reads `400x300+20+10` or `80%x80%`; nothing for any other text.
    static std::optional<DeliveryCrop> read(const std::string& text);
};

enum class Sizing {
    Exact,  ///< the size given
    Fit,    ///< within the size, with the proportions kept
    Fill,   ///< the size, with the proportions kept and what is too much cut off at both sides
};

struct Delivery {
    double degrees = 0;  ///< clockwise
    std::optional<DeliveryCrop> crop;
    std::optional<DeliverySize> size;
    Sizing sizing = Sizing::Exact;

    bool isNothing() const { return degrees == 0 && !crop && !size; }
};

/// Turns, then crops, then resizes. Throws `PictureError` with the reason alone.
void deliver(Bitmap& picture, const Delivery& delivery);

}  // namespace krl::player
