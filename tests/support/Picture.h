#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <ostream>
#include <vector>

#include "krlimage/engine.h"

namespace krl {

/// For failure messages: `(b g r a)`.
void PrintTo(const Pixel& pixel, std::ostream* out);

namespace test {

/// An engine without a picture, for kernels that only need its bands.
class EngineOf : public ImageEngine {
public:
    explicit EngineOf(int32_t bands) { setThreadCount(bands); }
};

/// A small picture with an engine that holds it: what effects are tested on.
class Picture {
public:
    /// Every pixel the same.
    Picture(int32_t width, int32_t height, Pixel fill = {0, 0, 0, 255});
    /// From pixels in row order.
    Picture(int32_t width, std::initializer_list<Pixel> pixels);
    /// Opaque greys from rows of levels.
    static Picture grey(std::initializer_list<std::initializer_list<int>> rows);
    /// Every byte drawn from a generator, alpha included.
    static Picture random(int32_t width, int32_t height, int32_t seed = 1);
    /// All levels of colour side by side: 256 columns, pixel x holding {x, x, x, 255} in every row.
    static Picture ramp(int32_t height = 1);

    Picture(const Picture& other);
    Picture& operator=(const Picture& other);

    int32_t width() const { return width_; }
    int32_t height() const { return height_; }
    Pixel& at(int32_t x, int32_t y) { return pixels_[size_t(y) * size_t(width_) + size_t(x)]; }
    const Pixel& at(int32_t x, int32_t y) const { return pixels_[size_t(y) * size_t(width_) + size_t(x)]; }
    std::vector<Pixel>& pixels() { return pixels_; }
    const std::vector<Pixel>& pixels() const { return pixels_; }
    ImageInfo info() const { return {width_, height_, width_ * 4, 0, 0, 0}; }
    /// As the second image of a composite.
    SecondImage asSecondImage() const;

    /// The effect run on this picture with `bands` bands; the status must be ok.
    Picture after(const std::function<Status(ImageEngine&)>& effect, int32_t bands = 1) const;
    /// The same, giving the status and leaving the outcome in this picture.
    Status apply(const std::function<Status(ImageEngine&)>& effect, int32_t bands = 1);

    bool operator==(const Picture& other) const;

private:
    int32_t width_ = 0, height_ = 0;
    std::vector<Pixel> pixels_;
};

void PrintTo(const Picture& picture, std::ostream* out);

/// The one table block of a test program.
const LookupTables& sharedTables();

/// Runs the effect on random pictures of many shapes (1x1, 1xN, Nx1, odd, wide) with 1, 2, 3, 4, 7
/// and 8 bands and expects the same bytes and statuses.
void expectSameForAnyBands(const std::function<Status(ImageEngine&)>& effect);
/// Expects the statuses of an engine with no image and of one with null pixels.
void expectStateTests(const std::function<Status(ImageEngine&)>& effect);

/// Bytes 0 to 2, or byte 3, of two pictures equal everywhere.
bool sameColour(const Picture& a, const Picture& b);
bool sameAlpha(const Picture& a, const Picture& b);

}  // namespace test
}  // namespace krl
