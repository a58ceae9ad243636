#include "support/Picture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

#include "core/LookupTables.h"
#include "core/Random.h"

namespace krl {

void PrintTo(const Pixel& p, std::ostream* out) {
    *out << '(' << int(p.blue) << ' ' << int(p.green) << ' ' << int(p.red) << ' ' << int(p.alpha) << ')';
}

namespace test {

namespace {

/// An engine with tables, made once: building them for each case would be most of a test's time.
ImageEngine& sharedEngine() {
    static const std::unique_ptr<ImageEngine> engine = [] {
        auto made = std::make_unique<ImageEngine>();
        made->allocateTables();
        made->buildTables();
        return made;
    }();
    return *engine;
}

}  // namespace

const LookupTables& sharedTables() { return sharedEngine().tables(); }

Picture::Picture(int32_t width, int32_t height, Pixel fill)
    : width_(width), height_(height), pixels_(size_t(width) * size_t(height), fill) {}

Picture::Picture(int32_t width, std::initializer_list<Pixel> pixels)
    : width_(width), height_(int32_t(pixels.size()) / width), pixels_(pixels) {}

Picture::Picture(const Picture& other) = default;
Picture& Picture::operator=(const Picture& other) = default;

Picture Picture::grey(std::initializer_list<std::initializer_list<int>> rows) {
    Picture picture(int32_t(rows.begin()->size()), int32_t(rows.size()));
    auto pixel = picture.pixels_.begin();
    for (const auto& row : rows)
        for (int level : row) *pixel++ = {uint8_t(level), uint8_t(level), uint8_t(level), 255};
    return picture;
}

Picture Picture::random(int32_t width, int32_t height, int32_t seed) {
    Picture picture(width, height);
    Random random(seed);
    const auto byte = [&] { return uint8_t(random.next() >> 5); };
    for (Pixel& p : picture.pixels_) p = {byte(), byte(), byte(), byte()};
    return picture;
}

Picture Picture::ramp(int32_t height) {
    Picture picture(256, height);
    for (int32_t y = 0; y < height; ++y)
        for (int32_t x = 0; x < 256; ++x) picture.at(x, y) = {uint8_t(x), uint8_t(x), uint8_t(x), 255};
    return picture;
}

SecondImage Picture::asSecondImage() const {
    return {reinterpret_cast<const uint8_t*>(pixels_.data()), info()};
}

Picture Picture::after(const std::function<Status(ImageEngine&)>& effect, int32_t bands) const {
    Picture result = *this;
    EXPECT_EQ(result.apply(effect, bands), kStatusOk);
    return result;
}

Status Picture::apply(const std::function<Status(ImageEngine&)>& effect, int32_t bands) {
    ImageEngine& engine = sharedEngine();
    engine.load(reinterpret_cast<uint8_t*>(pixels_.data()), info());
    engine.setThreadCount(bands);
    engine.requireThreads(true);
    const Status status = effect(engine);
    engine.unload();
    engine.setThreadCount(1);
    return status;
}

bool Picture::operator==(const Picture& other) const {
    return width_ == other.width_ && height_ == other.height_ && pixels_ == other.pixels_;
}

void PrintTo(const Picture& picture, std::ostream* out) {
    *out << picture.width() << 'x' << picture.height();
    if (picture.pixels().size() > 64) return;
    for (int32_t y = 0; y < picture.height(); ++y) {
        *out << "\n ";
        for (int32_t x = 0; x < picture.width(); ++x) {
            *out << ' ';
            krl::PrintTo(picture.at(x, y), out);
        }
    }
}

void expectSameForAnyBands(const std::function<Status(ImageEngine&)>& effect) {
    constexpr int32_t shapes[][2] = {{1, 1}, {1, 9}, {9, 1}, {2, 2}, {5, 1}, {7, 5}, {33, 17}, {64, 3}};
    for (const auto& [width, height] : shapes) {
        Picture expected = Picture::random(width, height, width * 31 + height);
        const Picture source = expected;
        const Status status = expected.apply(effect, 1);
        for (int32_t bands : {2, 3, 4, 7, 8}) {
            Picture result = source;
            EXPECT_EQ(result.apply(effect, bands), status);
            EXPECT_EQ(result, expected) << width << 'x' << height << " in " << bands << " bands";
        }
    }
}

void expectStateTests(const std::function<Status(ImageEngine&)>& effect) {
    ImageEngine& engine = sharedEngine();
    engine.unload();
    EXPECT_EQ(effect(engine), kStatusNoImage);
    engine.load(nullptr, {2, 2, 8, 0, 0, 0});
    EXPECT_EQ(effect(engine), kStatusNoPixels);
    engine.unload();
}

bool sameColour(const Picture& a, const Picture& b) {
    return std::equal(a.pixels().begin(), a.pixels().end(), b.pixels().begin(), b.pixels().end(),
                      [](const Pixel& p, const Pixel& q) {
                          return p.blue == q.blue && p.green == q.green && p.red == q.red;
                      });
}

bool sameAlpha(const Picture& a, const Picture& b) {
    return std::equal(a.pixels().begin(), a.pixels().end(), b.pixels().begin(), b.pixels().end(),
                      [](const Pixel& p, const Pixel& q) { return p.alpha == q.alpha; });
}

}  // namespace test
}  // namespace krl
