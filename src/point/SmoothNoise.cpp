#include "point/SmoothNoise.h"

#include <utility>

#include "core/Clones.h"
#include "core/Numbers.h"

namespace krl {

namespace {

KRL_WIDE_CLONES
void mixDown(const float* upper, const float* lower, double upperWeight, double lowerWeight, uint8_t* levels,
             int32_t count) {
    for (int32_t x = 0; x < count; ++x) {
        const auto noise = static_cast<float>(upperWeight * upper[x] + lowerWeight * lower[x]);
        levels[x] = truncatedByte((noise * 0.5 + 0.5) * 255.0);
    }
}

}  // namespace

float latticeNoise(int32_t x, int32_t y) {
    uint32_t n = static_cast<uint32_t>(x) + static_cast<uint32_t>(y) * 57u;
    n ^= n << 13;
    const uint32_t m = (n * (n * n * 15731u + 789221u) + 1376312589u) & 0x7FFFFFFFu;
    return static_cast<float>(1.0 - m * 9.313225746154785e-10);
}

SmoothNoise::SmoothNoise(int32_t width, int32_t offset, float scale)
    : width_(width),
      offset_(offset),
      scale_(scale),
      points_(size_t(width)),
      leftWeights_(size_t(width)),
      rightWeights_(size_t(width)) {
    firstPoint_ = truncate(place(0));
    for (int32_t x = 0; x < width; ++x) {
        const float at = place(x);
        const int32_t point = truncate(at);
        const double fraction = double{at} - point;
        points_[size_t(x)] = wrapSubtract(point, firstPoint_);
        leftWeights_[size_t(x)] = weight(1.0 - fraction);
        rightWeights_[size_t(x)] = weight(fraction);
    }
    pointCount_ = points_[size_t(width - 1)] + 2;
}

float SmoothNoise::place(int32_t along) const {
    return static_cast<float>((double(offset_) + along) * scale_);
}

SmoothNoise::Walk::Walk(const SmoothNoise& noise)
    : noise_(noise),
      upper_(size_t(noise.width_)),
      lower_(size_t(noise.width_)),
      lattice_(size_t(noise.pointCount_)),
      levels_(size_t(noise.width_)) {}

const uint8_t* SmoothNoise::Walk::levelsOf(int32_t y) {
    const float at = noise_.place(y);
    const int32_t row = truncate(at);
    if (!hasRows_ || row != latticeRow_) {
        const bool next = hasRows_ && row == wrapAdd(latticeRow_, 1);
        if (next) {
            std::swap(upper_, lower_);
        } else {
            mixAlong(row, upper_.data());
        }
        mixAlong(wrapAdd(row, 1), lower_.data());
        latticeRow_ = row;
        hasRows_ = true;
    }
    const double fraction = double{at} - row;
    mixDown(upper_.data(), lower_.data(), weight(1.0 - fraction), weight(fraction), levels_.data(),
            noise_.width_);
    return levels_.data();
}

void SmoothNoise::Walk::mixAlong(int32_t latticeRow, float* out) {
    for (int32_t i = 0; i < noise_.pointCount_; ++i)
        lattice_[size_t(i)] = latticeNoise(wrapAdd(noise_.firstPoint_, i), latticeRow);
    for (int32_t x = 0; x < noise_.width_; ++x) {
        const auto column = static_cast<size_t>(x);
        const auto point = static_cast<size_t>(noise_.points_[column]);
        out[x] = static_cast<float>(noise_.leftWeights_[column] * lattice_[point] +
                                    noise_.rightWeights_[column] * lattice_[point + 1]);
    }
}

}  // namespace krl
