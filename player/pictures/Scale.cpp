#include "player/pictures/Scale.h"

#include <algorithm>
#include <cmath>

namespace krl::player {

namespace {

/// The source pixels that one target pixel covers along a line: the first, and the weight of each.
struct Cover {
    int32_t first = 0;
    std::vector<float> shares;
};

std::vector<Cover> coversOf(int32_t from, int32_t to) {
    std::vector<Cover> covers(static_cast<size_t>(to));
    const double step = double(from) / to;
    for (int32_t i = 0; i < to; ++i) {
        const double begin = i * step, end = std::min((i + 1) * step, double(from));
        Cover& cover = covers[static_cast<size_t>(i)];
        cover.first = static_cast<int32_t>(begin);
        for (int32_t at = cover.first; at < end; ++at)
            cover.shares.push_back(static_cast<float>(std::min(end, at + 1.0) - std::max(begin, double(at))));
    }
    return covers;
}

struct Sum {
    float blue = 0, green = 0, red = 0, alpha = 0, weight = 0;

    void add(const Pixel& p, float share) {
        const float opaque = share * p.alpha;
        blue += opaque * p.blue;
        green += opaque * p.green;
        red += opaque * p.red;
        alpha += opaque;
        weight += share;
    }

    Pixel pixel() const {
        if (alpha <= 0) return {0, 0, 0, 0};
        const auto byte = [](float value) { return static_cast<uint8_t>(std::min(value + 0.5f, 255.0f)); };
        return {byte(blue / alpha), byte(green / alpha), byte(red / alpha), byte(alpha / weight)};
    }
};

}  // namespace

Bitmap scaled(const Bitmap& picture, int32_t width, int32_t height) {
    if (width == picture.width && height == picture.height) return picture;
    Bitmap result{width, height, std::vector<Pixel>(size_t(width) * size_t(height)), picture.metadata};
    const std::vector<Cover> columns = coversOf(picture.width, width),
                             rows = coversOf(picture.height, height);
    std::vector<Sum> sums(static_cast<size_t>(width));
    for (int32_t y = 0; y < height; ++y) {
        std::fill(sums.begin(), sums.end(), Sum());
        const Cover& row = rows[static_cast<size_t>(y)];
        for (size_t j = 0; j < row.shares.size(); ++j) {
            const Pixel* source = picture.row(row.first + static_cast<int32_t>(j));
            for (size_t x = 0; x < sums.size(); ++x)
                for (size_t i = 0; i < columns[x].shares.size(); ++i)
                    sums[x].add(source[size_t(columns[x].first) + i], row.shares[j] * columns[x].shares[i]);
        }
        std::transform(sums.begin(), sums.end(), result.row(y), [](const Sum& sum) { return sum.pixel(); });
    }
    return result;
}

Bitmap noWiderThan(const Bitmap& picture, int32_t width) {
    if (picture.width <= width) return picture;
    const double height = std::round(double(picture.height) * width / picture.width);
    return scaled(picture, width, std::max(1, static_cast<int32_t>(height)));
}

}  // namespace krl::player
