#pragma once

#include <cstdint>
#include <vector>

/// IPTC records, which every format wraps in its own way.
namespace krl::player {

/// The bare records of data that may be wrapped as in a JPEG file; empty if there are none.
std::vector<uint8_t> bareIptc(const std::vector<uint8_t>& data);

/// Whether such data has more than the records: paths, guides and the like, but for what a file has elsewhere
/// too.
bool hasMoreThanIptc(const std::vector<uint8_t>& data);

/// Bare records wrapped for a JPEG file.
std::vector<uint8_t> iptcForJpeg(const std::vector<uint8_t>& records);

}  // namespace krl::player
