#include "kernels/neighbour/LineWindow.h"

#include "core/VectorLevels.h"

/// Lets a loop become vectors whose result may lie where an operand does.
#if defined(__clang__)
#define KRL_PLACE_BY_PLACE _Pragma("clang loop vectorize(assume_safety)")
#else
#define KRL_PLACE_BY_PLACE _Pragma("GCC ivdep")
#endif

namespace krl {

namespace {

/// A half-length that is of use on a line of `count` samples.
int32_t usefulHalf(int32_t half, int32_t count) { return clampTo(half, 0, count + 1); }

}  // namespace

KRL_VECTOR_LEVELS
void Smallest::combine(const uint8_t* a, const uint8_t* b, int64_t bytes, uint8_t* result) {
    KRL_PLACE_BY_PLACE
    for (int64_t i = 0; i < bytes; ++i) result[i] = a[i] < b[i] ? a[i] : b[i];
}

KRL_VECTOR_LEVELS
void Largest::combine(const uint8_t* a, const uint8_t* b, int64_t bytes, uint8_t* result) {
    KRL_PLACE_BY_PLACE
    for (int64_t i = 0; i < bytes; ++i) result[i] = a[i] > b[i] ? a[i] : b[i];
}

LineWindow LineWindow::centred(int32_t half, int32_t count) {
    const int32_t reach = usefulHalf(half, count);
    return {2 * reach + 1, reach, kNone};
}

LineWindow LineWindow::seededLate(int32_t half, int32_t count) {
    const int32_t reach = usefulHalf(half, count);
    if (reach == 0) return {};
    return {2 * reach + 1, reach + 1, reach - 1};
}

LineWindow LineWindow::before(int32_t half, int32_t count) {
    const int32_t reach = usefulHalf(half, count);
    return {2 * reach + 1, 2 * reach, kNone};
}

LineWindow LineWindow::afterFirst(int32_t half, int32_t count) {
    return {2 * usefulHalf(half, count) + 1, 1, 0};
}

void RowWindows::layEntries(const Pixel* row, uint8_t outside) {
    const int32_t left = std::min(window_.skipped, count_), right = std::max(count_ - left - 1, 0);
    Pixel* samples = now_ + window_.lead;
    Pixel* end = now_ + window_.entries(count_);
    const auto fill = [=](Pixel* first, Pixel* last) {
        if (first < last) std::memset(first, outside, static_cast<size_t>(last - first) * sizeof(Pixel));
    };
    const auto copy = [](Pixel* target, const Pixel* source, int32_t pixels) {
        std::memcpy(target, source, static_cast<size_t>(pixels) * sizeof(Pixel));
    };
    fill(now_, samples);
    // A window that begins at its pixel has no room for what is past the last.
    copy(samples, row, left);
    copy(samples + left, row + std::min(left + 1, count_), right);
    fill(samples + left + right, end);
}

}  // namespace krl
