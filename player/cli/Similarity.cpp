#include "player/cli/Similarity.h"

#include <algorithm>

namespace krl::player {

namespace {

constexpr int32_t kWindow = 8, kStep = 4;
/// Of the usual constants 0.01 and 0.03 for levels up to 255.
constexpr double kBrightnessFloor = 2.55 * 2.55, kContrastFloor = 7.65 * 7.65;

int brightnessOf(const Pixel& p) { return (299 * p.red + 587 * p.green + 114 * p.blue + 500) / 1000; }
int alphaOf(const Pixel& p) { return p.alpha; }

using Level = int (*)(const Pixel&);

/// The sums over the window at `left` and `top`, and what they say.
double similarityAt(const Bitmap& a, const Bitmap& b, Level level, int32_t left, int32_t top) {
    const int32_t right = std::min(left + kWindow, a.width), bottom = std::min(top + kWindow, a.height);
    int64_t sumA = 0, sumB = 0, squareA = 0, squareB = 0, product = 0;
    for (int32_t y = top; y < bottom; ++y)
        for (int32_t x = left; x < right; ++x) {
            const int one = level(a.row(y)[x]), other = level(b.row(y)[x]);
            sumA += one, sumB += other;
            squareA += one * one, squareB += other * other, product += one * other;
        }
    const double count = double(right - left) * (bottom - top);
    const double meanA = double(sumA) / count, meanB = double(sumB) / count;
    const double varianceA = double(squareA) / count - meanA * meanA;
    const double varianceB = double(squareB) / count - meanB * meanB;
    const double covariance = double(product) / count - meanA * meanB;
    return (2 * meanA * meanB + kBrightnessFloor) * (2 * covariance + kContrastFloor) /
           ((meanA * meanA + meanB * meanB + kBrightnessFloor) * (varianceA + varianceB + kContrastFloor));
}

/// Where windows begin: every few pixels, and at last at the border.
int32_t nextStart(int32_t start, int32_t length) {
    const int32_t last = std::max(0, length - kWindow);
    return start < last ? std::min(start + kStep, last) : length;
}

double similarity(const Bitmap& a, const Bitmap& b, Level level) {
    double sum = 0;
    int64_t windows = 0;
    for (int32_t y = 0; y < a.height; y = nextStart(y, a.height))
        for (int32_t x = 0; x < a.width; x = nextStart(x, a.width), ++windows)
            sum += similarityAt(a, b, level, x, y);
    return sum / double(windows);
}

}  // namespace

double structuralSimilarity(const Bitmap& a, const Bitmap& b) {
    return std::min(similarity(a, b, brightnessOf), similarity(a, b, alphaOf));
}

}  // namespace krl::player
