#include "blur/TentWindow.h"

#include "core/Clones.h"

namespace krl::tent {

namespace {

template <class Arithmetic>
[[gnu::always_inline]] inline void walk(const Arithmetic arithmetic, typename Arithmetic::Sum* sums,
                                        typename Arithmetic::Sum* slopes, uint8_t* means,
                                        const Line<uint8_t>& line, int32_t halfWidth, int32_t first,
                                        int32_t end) {
    for (int32_t place = first; place < end; ++place, means += kStripLanes)
        stepLanes(arithmetic, sums, slopes, means, line.stepFrom(place, halfWidth), kStripLanes);
}

}  // namespace

KRL_WIDE_CLONES
void stepManyLanes(const ShortBytes& arithmetic, uint16_t* sums, uint16_t* slopes, uint8_t* means,
                   Step<uint8_t> step, int lanes) {
    stepLanes(ShortBytes(arithmetic), sums, slopes, means, step, lanes);
}

KRL_WIDE_CLONES
void stepManyLanes(const MiddleBytes& arithmetic, uint32_t* sums, uint32_t* slopes, uint8_t* means,
                   Step<uint8_t> step, int lanes) {
    stepLanes(MiddleBytes(arithmetic), sums, slopes, means, step, lanes);
}

KRL_WIDE_CLONES
void stepManyLanes(const NarrowBytes& arithmetic, uint32_t* sums, uint32_t* slopes, uint8_t* means,
                   Step<uint8_t> step, int lanes) {
    stepLanes(NarrowBytes(arithmetic), sums, slopes, means, step, lanes);
}

KRL_WIDE_CLONES
void walkStrip(const ShortBytes& arithmetic, uint16_t* sums, uint16_t* slopes, uint8_t* means,
               const Line<uint8_t>& line, int32_t halfWidth, int32_t first, int32_t end) {
    walk(arithmetic, sums, slopes, means, line, halfWidth, first, end);
}

KRL_WIDE_CLONES
void walkStrip(const MiddleBytes& arithmetic, uint32_t* sums, uint32_t* slopes, uint8_t* means,
               const Line<uint8_t>& line, int32_t halfWidth, int32_t first, int32_t end) {
    walk(arithmetic, sums, slopes, means, line, halfWidth, first, end);
}

KRL_WIDE_CLONES
void walkStrip(const NarrowBytes& arithmetic, uint32_t* sums, uint32_t* slopes, uint8_t* means,
               const Line<uint8_t>& line, int32_t halfWidth, int32_t first, int32_t end) {
    walk(arithmetic, sums, slopes, means, line, halfWidth, first, end);
}

}  // namespace krl::tent
