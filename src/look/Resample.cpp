#include "look/Resample.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "krlimage/pixel.h"

namespace krl {

namespace {

/// The pixels of a line that one pixel of another line is made of: the first, how many, and where the share
/// of the first is.
struct Blend {
    int32_t first = 0, count = 0;
    size_t shares = 0;
};

/// A line in another length, as far as it is drawn.
class BlendedLine {
public:
    /// `begin` and `end` are on a line of `to` pixels, which is made of `from`.
    BlendedLine(int32_t from, int64_t to, int64_t begin, int64_t end) {
        for (int64_t i = begin; i < end; ++i)
            if (to > from)
                addBetween(i, from, to);
            else
                addMean(i, from, to);
    }

    size_t size() const { return blends_.size(); }
    const Blend& operator[](size_t i) const { return blends_[i]; }
    const uint32_t* sharesOf(const Blend& blend) const { return shares_.data() + blend.shares; }

private:
    /// In units of which a pixel of the result has `from` and one of the picture has `to`.
    void addMean(int64_t i, int64_t from, int64_t to) {
        const int64_t begin = i * from, end = begin + from;
        Blend blend{static_cast<int32_t>(begin / to), 0, shares_.size()};
        for (int64_t at = blend.first; at * to < end; ++at, ++blend.count)
            shares_.push_back(static_cast<uint32_t>(std::min(end, (at + 1) * to) - std::max(begin, at * to)));
        blends_.push_back(blend);
    }

    /// By the distance of the middles, in parts of 65,536.
    void addBetween(int64_t i, int64_t from, int64_t to) {
        constexpr int64_t kWhole = 65536;
        const int64_t middle = std::clamp<int64_t>((2 * i + 1) * from - to, 0, 2 * to * (from - 1));
        const int64_t first = middle / (2 * to), part = (middle - first * 2 * to) * kWhole / (2 * to);
        blends_.push_back({static_cast<int32_t>(first), part > 0 ? 2 : 1, shares_.size()});
        shares_.push_back(static_cast<uint32_t>(kWhole - part));
        if (part > 0) shares_.push_back(static_cast<uint32_t>(part));
    }

    std::vector<Blend> blends_;
    std::vector<uint32_t> shares_;
};

/// What a pixel is made of. The shares of all of a pixel's parts are below 2^46, so that nothing overflows.
struct Sum {
    uint64_t colours[3] = {}, alpha = 0, shares = 0;

    void add(const Pixel& pixel, uint64_t share) {
        const uint64_t opaque = share * pixel.alpha;
        for (size_t i = 0; i < 3; ++i) colours[i] += opaque * pixel[i];
        alpha += opaque;
        shares += share;
    }

    Pixel pixel() const {
        if (alpha == 0) return {0, 0, 0, 0};
        const auto rounded = [](uint64_t sum, uint64_t parts) {
            return static_cast<uint8_t>((sum + parts / 2) / parts);
        };
        return {rounded(colours[0], alpha), rounded(colours[1], alpha), rounded(colours[2], alpha),
                rounded(alpha, shares)};
    }
};

Pixel* rowOf(const Picture& picture, int64_t y) {
    return reinterpret_cast<Pixel*>(picture.pixels + y * picture.info.rowBytes);
}

}  // namespace

void drawResampled(const Picture& ground, const Picture& picture, const PlacedSize& size) {
    const int64_t left = std::max<int64_t>(size.left, 0), top = std::max<int64_t>(size.top, 0);
    const int64_t right = std::min<int64_t>(size.left + size.width, ground.info.width);
    const int64_t bottom = std::min<int64_t>(size.top + size.height, ground.info.height);
    if (left >= right || top >= bottom) return;
    if (size.width == picture.info.width && size.height == picture.info.height) {
        for (int64_t y = top; y < bottom; ++y)
            std::copy_n(rowOf(picture, y - size.top) + (left - size.left), right - left,
                        rowOf(ground, y) + left);
        return;
    }
    const BlendedLine columns(picture.info.width, size.width, left - size.left, right - size.left);
    const BlendedLine rows(picture.info.height, size.height, top - size.top, bottom - size.top);
    std::vector<Sum> sums(columns.size());
    for (size_t y = 0; y < rows.size(); ++y) {
        std::fill(sums.begin(), sums.end(), Sum());
        for (int32_t j = 0; j < rows[y].count; ++j) {
            const Pixel* from = rowOf(picture, rows[y].first + j);
            const uint64_t down = rows.sharesOf(rows[y])[j];
            for (size_t x = 0; x < sums.size(); ++x)
                for (int32_t i = 0; i < columns[x].count; ++i)
                    sums[x].add(from[columns[x].first + i], down * columns.sharesOf(columns[x])[i]);
        }
        Pixel* to = rowOf(ground, top + static_cast<int64_t>(y)) + left;
        std::transform(sums.begin(), sums.end(), to, [](const Sum& sum) { return sum.pixel(); });
    }
}

}  // namespace krl
