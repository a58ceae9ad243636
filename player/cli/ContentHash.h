#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace krl::player {

/// XXH3, 128 bits: the same on every machine. Against accidents, not against malice.
struct ContentHash {
    uint64_t high = 0, low = 0;

    bool operator==(const ContentHash&) const = default;
    /// 32 hexadecimal digits, as the `xxh128sum` command prints them.
    std::string text() const;
};

ContentHash hashOf(std::string_view text);

/// Of a file's content, or nothing if it cannot be read.
std::optional<ContentHash> hashOfFile(const std::filesystem::path& file);

}  // namespace krl::player
