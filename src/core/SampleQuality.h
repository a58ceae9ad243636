#pragma once

#include <cstdint>

namespace krl {

/// How samples between pixels are taken. Some effects take the word and have no use for it.
enum class SampleQuality : int32_t {
    Standard = 8,      ///< the nearest lower pixel
    Bilinear = 9,      ///< between four pixels
    Antialiased = 10,  ///< at twice the size in each direction
};

}  // namespace krl
