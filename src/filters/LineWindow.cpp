#include "filters/LineWindow.h"

namespace krl {

namespace {

/// A half-length that is of use on a line of `count` samples.
int32_t usefulHalf(int32_t half, int32_t count) { return clampTo(half, 0, count + 1); }

}  // namespace

LineWindow LineWindow::centred(int32_t half, int32_t count) {
    const int32_t reach = usefulHalf(half, count);
    return {2 * reach + 1, reach, kNone};
}

LineWindow LineWindow::seededLate(int32_t half, int32_t count) {
    const int32_t reach = usefulHalf(half, count);
    return {2 * reach + 1, reach + 1, reach - 1};
}

LineWindow LineWindow::before(int32_t half, int32_t count) {
    const int32_t reach = usefulHalf(half, count);
    return {2 * reach + 1, 2 * reach, kNone};
}

LineWindow LineWindow::afterFirst(int32_t half, int32_t count) {
    return {2 * usefulHalf(half, count) + 1, 1, 0};
}

void LineBundle::gather(Lanes* lanes) const {
    if (acrossBytes == sizeof(Pixel)) {
        const size_t bytes = static_cast<size_t>(lines) * sizeof(Pixel);
        for (int32_t place = 0; place < length; ++place)
            std::memcpy(lanes[place].byte, first + place * alongBytes, bytes);
        return;
    }
    for (int32_t place = 0; place < length; ++place)
        for (int32_t line = 0; line < lines; ++line) lanes[place].setPixel(line, at(line, place));
}

}  // namespace krl
