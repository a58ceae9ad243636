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

/// Numbers of resources: what the file's other metadata has too, and a small picture of what was there
/// before.
bool isElsewhere(uint32_t resource) {
    static constexpr uint32_t numbers[] = {1005, 1033, 1036, 1039, 1058, 1059, 1060, 1061};
    return std::find(std::begin(numbers), std::end(numbers), resource) != std::end(numbers);
}

/// Calls `visit` with the number and the data of each resource until it returns true. Resources follow one
/// another: a mark, a number, a name and the data, the last two of even length.
template <class Visit>
bool findResource(const std::vector<uint8_t>& data, const Visit& visit) {
    std::string_view bytes(reinterpret_cast<const char*>(data.data()), data.size());
    if (bytes.starts_with(kWrapper)) bytes.remove_prefix(kWrapper.size());
    while (bytes.starts_with(kResource)) {
        const size_t nameBytes = (1 + numberAt(bytes, 6, 1) + 1) / 2 * 2;
        const size_t start = 6 + nameBytes + 4, size = numberAt(bytes, start - 4, 4);
        if (start > bytes.size() || size > bytes.size() - start) break;
        if (visit(numberAt(bytes, 4, 2), bytes.substr(start, size))) return true;
        bytes.remove_prefix(std::min(bytes.size(), start + (size + 1) / 2 * 2));
    }
    return false;
}

}  // namespace

std::vector<uint8_t> bareIptc(const std::vector<uint8_t>& data) {
    if (data.empty() || data.front() == kRecordMark) return data;
    std::vector<uint8_t> records;
    findResource(data, [&](uint32_t resource, std::string_view found) {
        if (resource != kIptcResource) return false;
        records.assign(found.begin(), found.end());
        return true;
    });
    return records;
}

bool hasMoreThanIptc(const std::vector<uint8_t>& data) {
    return findResource(data, [](uint32_t resource, std::string_view) {
        return resource != kIptcResource && !isElsewhere(resource);
    });
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
