#include "player/cli/ContentHash.h"

#define XXH_INLINE_ALL
#include <xxhash.h>

#include <array>
#include <fstream>
#include <memory>

namespace krl::player {

namespace {

ContentHash from(XXH128_hash_t hash) { return {hash.high64, hash.low64}; }

}  // namespace

std::string ContentHash::text() const {
    static constexpr char digits[] = "0123456789abcdef";
    std::string shown;
    for (const uint64_t half : {high, low})
        for (int shift = 60; shift >= 0; shift -= 4) shown += digits[half >> shift & 15];
    return shown;
}

ContentHash hashOf(std::string_view text) { return from(XXH3_128bits(text.data(), text.size())); }

std::optional<ContentHash> hashOfFile(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    const std::unique_ptr<XXH3_state_t, decltype(&XXH3_freeState)> state(XXH3_createState(), XXH3_freeState);
    if (!in || !state) return std::nullopt;
    XXH3_128bits_reset(state.get());
    const auto piece = std::make_unique<std::array<char, 1 << 18>>();
    do {
        in.read(piece->data(), static_cast<std::streamsize>(piece->size()));
        XXH3_128bits_update(state.get(), piece->data(), static_cast<size_t>(in.gcount()));
    } while (in);
    if (!in.eof()) return std::nullopt;
    return from(XXH3_128bits_digest(state.get()));
}

}  // namespace krl::player
