#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace krl {

/// What two bytes become together.
class PairTable {
public:
    /// The table of `entry(a, b)`, of which the low byte is kept.
    template <class Entry>
    explicit PairTable(const Entry& entry) : entries_(256 * 256) {
        for (int32_t a = 0; a < 256; ++a)
            for (int32_t b = 0; b < 256; ++b)
                entries_[size_t(a) << 8 | size_t(b)] = static_cast<uint8_t>(entry(a, b));
    }

    uint8_t operator()(size_t a, size_t b) const { return entries_[a << 8 | b]; }
    /// The entries in rows of `a`.
    const uint8_t* data() const { return entries_.data(); }

private:
    std::vector<uint8_t> entries_;
};

}  // namespace krl
