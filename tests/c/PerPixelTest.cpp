#include <algorithm>

#include "c/CallingTest.h"

/// Which methods work on any part of a picture alone.
namespace krl::test {
namespace {

constexpr int32_t kWidth = 520, kHeight = 330;

/// Part of a picture.
struct Tile {
    int32_t x, y, width, height;
};
constexpr Tile kWhole = {0, 0, kWidth, kHeight};

std::vector<uint8_t> cut(const std::vector<uint8_t>& whole, const Tile& tile) {
    std::vector<uint8_t> part;
    for (int32_t y = tile.y; y < tile.y + tile.height; ++y) {
        const auto from = whole.begin() + (ptrdiff_t{y} * kWidth + tile.x) * 4;
        part.insert(part.end(), from, from + ptrdiff_t{tile.width} * 4);
    }
    return part;
}

krl_value* pictureOver(std::vector<uint8_t>& pixels, const Tile& tile) {
    const krl_picture picture = {sizeof picture, pixels.data(),  tile.width,
                                 tile.height,    tile.width * 4, KRL_BGRA};
    return krl_picture_value(&picture);
}

/// What the method makes of a tile of the picture, with the same tile of the second one.
std::vector<uint8_t> outcome(const krl_method_info& method, const Tile& tile, int variant) {
    static const Canvas first(kWidth, kHeight), other(kWidth, kHeight, KRL_BGRA, 0, 2);
    std::vector<uint8_t> pixels = cut(first.bytes(), tile), beside = cut(other.bytes(), tile);
    const krl_picture picture = {sizeof picture, pixels.data(),  tile.width,
                                 tile.height,    tile.width * 4, KRL_BGRA};
    std::vector<ValuePointer> values;
    std::vector<krl_argument> arguments;
    for (size_t i = 0; i < method.argument_count; ++i) {
        const bool isPicture = method.arguments[i]->kind == KRL_KIND_PICTURE;
        values.emplace_back(isPicture ? pictureOver(beside, tile)
                                      : variantOf(method, i, variant, kWidth, kHeight));
        arguments.push_back({nullptr, values.back().get()});
    }
    const EnginePointer engine(krl_engine_new(1));
    EXPECT_EQ(krl_call(engine.get(), &picture, method.name, arguments.data(), arguments.size(), nullptr),
              KRL_OK)
        << method.name;
    return pixels;
}

constexpr Tile kTiles[] = {{0, 0, kWidth, 100}, {201, 101, 319, 150}, {3, 7, 1, 1}, {0, 250, 77, 80}};

bool isSameOnEveryTile(const krl_method_info& method, int variant) {
    const std::vector<uint8_t> whole = outcome(method, kWhole, variant);
    return std::all_of(std::begin(kTiles), std::end(kTiles),
                       [&](const Tile& tile) { return outcome(method, tile, variant) == cut(whole, tile); });
}

TEST(PerPixel, MethodsGiveTheSameOnEveryPartOfAPicture) {
    int found = 0;
    for (const krl_method_info* method : callableMethods()) {
        if (!(method->flags & KRL_WORKS_PER_PIXEL)) continue;
        ++found;
        EXPECT_TRUE(method->flags & KRL_REWRITES_PICTURE) << method->name;
        for (int variant = 0; variant < 5; ++variant)
            EXPECT_TRUE(isSameOnEveryTile(*method, variant)) << method->name << ", variant " << variant;
    }
    EXPECT_GT(found, 30);
}

TEST(PerPixel, OtherMethodsDiffer) {
    for (const krl_method_info* method : callableMethods()) {
        if (method->flags & KRL_WORKS_PER_PIXEL || !(method->flags & KRL_REWRITES_PICTURE)) continue;
        EXPECT_FALSE(isSameOnEveryTile(*method, 0)) << method->name;
    }
}

}  // namespace
}  // namespace krl::test
