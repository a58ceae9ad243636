#pragma once

#include <cstdint>
#include <vector>

namespace krl::player {

/// The EXIF data without its small picture, which would show what the large one looked like before.
std::vector<uint8_t> withoutThumbnail(std::vector<uint8_t> exif);

}  // namespace krl::player
