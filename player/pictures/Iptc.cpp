#include "player/pictures/Iptc.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>

namespace krl::player {

namespace {

constexpr std::string_view kWrapper{"Photoshop 3.0\0", 14};
constexpr std::string_view kResource = "8BIM";
constexpr uint32_t kIptcResource = 0x0404;
constexpr uint8_t kRecordMark = 0x1C;

uint32_t numberAt(std::string_view bytes, size_t place, size_t count) {
    uint32_t number = 0;
    for (size_t i = 0; i < count; ++i)
        number = number << 8 | (place + i < bytes.size() ? static_cast<uint8_t>(bytes[place + i]) : 0u);
    return number;
}

/// Resources follow one another: a mark, a number, a name and the data, the last two of even length.
std::string_view iptcResourceIn(std::string_view bytes) {
    while (bytes.starts_with(kResource)) {
        const size_t nameBytes = (1 + numberAt(bytes, 6, 1) + 1) / 2 * 2;
        const size_t start = 6 + nameBytes + 4, size = numberAt(bytes, start - 4, 4);
        if (start > bytes.size() || size > bytes.size() - start) break;
        if (numberAt(bytes, 4, 2) == kIptcResource) return bytes.substr(start, size);
        bytes.remove_prefix(std::min(bytes.size(), start + (size + 1) / 2 * 2));
    }
    return {};
}

}  // namespace

std::vector<uint8_t> bareIptc(const std::vector<uint8_t>& data) {
    if (data.empty() || data.front() == kRecordMark) return data;
    std::string_view bytes(reinterpret_cast<const char*>(data.data()), data.size());
    if (bytes.starts_with(kWrapper)) bytes.remove_prefix(kWrapper.size());
    const std::string_view found = iptcResourceIn(bytes);
    return {found.begin(), found.end()};
}

std::vector<uint8_t> iptcForJpeg(const std::vector<uint8_t>& records) {
    if (records.empty()) return {};
    std::string wrapped = std::string(kWrapper) + std::string(kResource) + '\4' + '\4' + '\0' + '\0';
    const auto size = static_cast<uint32_t>(records.size());
    for (const int shift : {24, 16, 8, 0}) wrapped += static_cast<char>(size >> shift);
    wrapped.append(records.begin(), records.end());
    if (records.size() % 2 != 0) wrapped += '\0';
    return {wrapped.begin(), wrapped.end()};
}

}  // namespace krl::player
