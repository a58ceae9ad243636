#include "player/pictures/ExifData.h"

#include <algorithm>
#include <cstddef>
#include <optional>

namespace krl::player {

namespace {

constexpr size_t kEntryBytes = 12;
constexpr uint32_t kOrientation = 0x0112, kThumbnailOffset = 0x0201, kThumbnailBytes = 0x0202;

/// Numbers in the body of EXIF data, whose offsets count from its byte order mark. Beyond the end they are 0.
class ExifBody {
public:
    ExifBody(std::vector<uint8_t>& bytes, size_t start)
        : bytes_(bytes), start_(start), isLittle_(at(0) == 'I') {}

    size_t size() const { return bytes_.size() - start_; }

    uint32_t number(size_t place, size_t count) const {
        uint32_t value = 0;
        for (size_t i = 0; i < count; ++i) value = value << 8 | at(place + (isLittle_ ? count - 1 - i : i));
        return value;
    }

    /// One byte, at the end that counts, of a number.
    void setLowest(size_t place, size_t count, uint8_t value) {
        clear(place, count);
        const size_t lowest = place + (isLittle_ ? 0 : count - 1);
        if (lowest < size()) bytes_[start_ + lowest] = value;
    }

    void clear(size_t place, size_t count) {
        if (place >= size()) return;
        std::fill_n(bytes_.begin() + static_cast<ptrdiff_t>(start_ + place), std::min(count, size() - place),
                    uint8_t{0});
    }

private:
    uint8_t at(size_t place) const { return place < size() ? bytes_[start_ + place] : uint8_t{0}; }

    std::vector<uint8_t>& bytes_;
    size_t start_;
    bool isLittle_;
};

/// Nothing for data that is too short.
std::optional<ExifBody> bodyOf(std::vector<uint8_t>& exif) {
    const bool isMarked =
        exif.size() >= kExifMark.size() && std::equal(kExifMark.begin(), kExifMark.end(), exif.begin());
    const size_t start = isMarked ? kExifMark.size() : 0;
    return exif.size() < start + 8 ? std::nullopt : std::optional<ExifBody>(std::in_place, exif, start);
}

}  // namespace

std::vector<uint8_t> withoutThumbnail(std::vector<uint8_t> exif) {
    std::optional<ExifBody> found = bodyOf(exif);
    if (!found) return exif;
    ExifBody& body = *found;
    const size_t first = body.number(4, 4);
    const size_t link = first + 2 + body.number(first, 2) * kEntryBytes;  // to the thumbnail's directory
    const size_t second = body.number(link, 4);
    if (second == 0) return exif;
    const size_t count = body.number(second, 2);
    uint32_t place = 0, bytes = 0;
    for (size_t i = 0; i < count && second + 2 + i * kEntryBytes < body.size(); ++i) {
        const size_t entry = second + 2 + i * kEntryBytes;
        if (body.number(entry, 2) == kThumbnailOffset) place = body.number(entry + 8, 4);
        if (body.number(entry, 2) == kThumbnailBytes) bytes = body.number(entry + 8, 4);
    }
    if (place > 0) body.clear(place, bytes);
    body.clear(second, 2 + count * kEntryBytes + 4);
    body.clear(link, 4);
    return exif;
}

int takeOrientation(std::vector<uint8_t>& exif) {
    std::optional<ExifBody> body = bodyOf(exif);
    if (!body) return 1;
    const size_t first = body->number(4, 4), count = body->number(first, 2);
    for (size_t i = 0; i < count && first + 2 + i * kEntryBytes < body->size(); ++i) {
        const size_t entry = first + 2 + i * kEntryBytes;
        if (body->number(entry, 2) != kOrientation) continue;
        const uint32_t orientation = body->number(entry + 8, 2);
        body->setLowest(entry + 8, 2, 1);
        return orientation >= 1 && orientation <= 8 ? static_cast<int>(orientation) : 1;
    }
    return 1;
}

}  // namespace krl::player
