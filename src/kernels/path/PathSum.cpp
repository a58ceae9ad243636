#include "kernels/path/PathSum.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "core/ExactDivision.h"
#include "core/VectorLevels.h"
#include "kernels/blend/AlphaScale.h"

namespace krl {

namespace {

KRL_VECTOR_LEVELS
void divideSums(const uint32_t* sums, int32_t number, ByteMean mean, uint8_t* means) {
    for (int32_t i = 0; i < number; ++i) means[i] = mean(sums[i]);
}

}  // namespace

float addedRepeatedly(float sum, float term, int64_t times) {
    // Between two powers of 2 single precision is evenly spaced: two equal steps in a row there, which
    // is after any tie has been rounded to an even sum, are followed by equal ones up to the next power.
    float lastStep = 0.0f;
    int lastPower = 0;
    while (times > 0) {
        const float before = sum;
        sum += term;
        --times;
        if (sum == before) return sum;
        const float step = sum - before;
        const int power = std::ilogb(before);
        if (step == lastStep && power == lastPower && power == std::ilogb(sum)) {
            const double room = (std::ldexp(1.0, power + 1) - sum) / step;
            const int64_t jumps = std::min<int64_t>(times, truncate(room));
            sum = static_cast<float>(sum + double(step) * double(jumps));
            times -= jumps;
        }
        lastStep = step;
        lastPower = power;
    }
    return sum;
}

void meansOf(const uint32_t* sums, int32_t number, int32_t count, uint8_t* means) {
    if (count <= ByteMean::kMost)
        divideSums(sums, number, ByteMean(count), means);
    else
        for (int32_t i = 0; i < number; ++i) means[i] = clampByte(static_cast<int32_t>(sums[i]) / count);
}

PathSource::PathSource(const ImageEngine& engine, bool scaled)
    : width_(engine.buffer()->width),
      height_(engine.buffer()->height),
      pixels_(static_cast<uint64_t>(width_) * static_cast<uint64_t>(height_) + 1) {
    pixels_[pixels_.size() - 1] = {};
    status_ = forEachRow(engine, [&](const Pixel* row, int32_t y) {
        Pixel* packed = pixels_.data() + ptrdiff_t(y) * width_;
        if (scaled)
            scaleByAlpha(row, packed, width_);
        else
            std::memcpy(packed, row, static_cast<size_t>(width_) * sizeof(Pixel));
    });
}

}  // namespace krl
