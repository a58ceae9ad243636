#include "blur/TentWindow.h"

#include "core/Clones.h"

namespace krl::tent {

KRL_WIDE_CLONES
void stepManyLanes(const NarrowBytes& arithmetic, uint32_t* sums, uint32_t* slopes, uint8_t* means,
                   const uint8_t* entering, const uint8_t* centre, const uint8_t* leaving, int lanes) {
    stepLanes(NarrowBytes(arithmetic), sums, slopes, means, entering, centre, leaving, lanes);
}

}  // namespace krl::tent
