#include "kernels/blur/TentWindow.h"

#include "core/VectorLevels.h"

namespace krl::tent {

template <class Arithmetic>
KRL_VECTOR_LEVELS void stepManyLanes(const Arithmetic& arithmetic, typename Arithmetic::Sum* sums,
                                     typename Arithmetic::Sum* slopes, uint8_t* means, Step<uint8_t> step,
                                     int lanes) {
    stepLanes(Arithmetic(arithmetic), sums, slopes, means, step, lanes);
}

template <class Arithmetic>
KRL_VECTOR_LEVELS void walkTransposed(const Arithmetic& arithmetic, typename Arithmetic::Sum* sums,
                                      typename Arithmetic::Sum* slopes, uint8_t* means,
                                      const Line<uint8_t>& line, int32_t halfWidth, int32_t first,
                                      int32_t end) {
    const Arithmetic own = arithmetic;  // no sum can be part of it
    for (int32_t place = first; place < end; ++place, means += kTransposedLanes)
        stepLanes(own, sums, slopes, means, line.stepFrom(place, halfWidth), kTransposedLanes);
}

template void stepManyLanes(const ShortBytes&, uint16_t*, uint16_t*, uint8_t*, Step<uint8_t>, int);
template void stepManyLanes(const MiddleBytes&, uint32_t*, uint32_t*, uint8_t*, Step<uint8_t>, int);
template void stepManyLanes(const NarrowBytes&, uint32_t*, uint32_t*, uint8_t*, Step<uint8_t>, int);

template void walkTransposed(const ShortBytes&, uint16_t*, uint16_t*, uint8_t*, const Line<uint8_t>&, int32_t,
                             int32_t, int32_t);
template void walkTransposed(const MiddleBytes&, uint32_t*, uint32_t*, uint8_t*, const Line<uint8_t>&,
                             int32_t, int32_t, int32_t);
template void walkTransposed(const NarrowBytes&, uint32_t*, uint32_t*, uint8_t*, const Line<uint8_t>&,
                             int32_t, int32_t, int32_t);

}  // namespace krl::tent
