#include "effects/film/SmoothNoise.h"

#include <utility>

#include "core/Numbers.h"
#include "core/VectorLevels.h"

namespace krl {

namespace {

KRL_VECTOR_LEVELS
void mixDown(const float* upper, const float* lower, double upperWeight, double lowerWeight, uint8_t* levels,
             int32_t count) {
    for (int32_t x = 0; x < count; ++x) {
        const auto noise = static_cast<float>(upperWeight * upper[x] + lowerWeight * lower[x]);
        levels[x] = truncatedByte((noise * 0.5 + 0.5) * 255.0);
    }
}

/// Lattice values of `count` columns from `firstX` on.
KRL_VECTOR_LEVELS
void hashRow(int32_t firstX, int32_t y, float* values, int32_t count) {
    for (int32_t i = 0; i < count; ++i) values[i] = latticeNoise(wrapAdd(firstX, i), y);
}

KRL_VECTOR_LEVELS
void mixAlongRow(const float* lattice, const int32_t* points, const double* leftWeights,
                 const double* rightWeights, float* out, int32_t count) {
    for (int32_t x = 0; x < count; ++x) {
        const double left = lattice[points[x]], right = lattice[points[x] + 1];
        out[x] = static_cast<float>(leftWeights[x] * left + rightWeights[x] * right);
    }
}

}  // namespace

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
    hashRow(noise_.firstPoint_, latticeRow, lattice_.data(), noise_.pointCount_);
    mixAlongRow(lattice_.data(), noise_.points_.data(), noise_.leftWeights_.data(),
                noise_.rightWeights_.data(), out, noise_.width_);
}

}  // namespace krl
