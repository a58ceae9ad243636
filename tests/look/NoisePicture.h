#pragma once

#include <string>

#include "catalogue/Value.h"
#include "core/Random.h"

namespace krl::test {

/// A picture of random bytes.
inline Picture noise(int32_t width, int32_t height, int32_t seed = 3) {
    Picture picture = Picture::blank(width, height);
    Random random(seed);
    for (int32_t i = 0; i < picture.info.rowBytes * height; ++i)
        picture.pixels[i] = static_cast<uint8_t>(random.next() >> 5);
    return picture;
}

inline std::string bytesOf(const Picture& picture) {
    return {reinterpret_cast<const char*>(picture.pixels),
            static_cast<size_t>(picture.info.rowBytes) * static_cast<size_t>(picture.info.height)};
}

}  // namespace krl::test
