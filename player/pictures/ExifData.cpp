#include "player/pictures/ExifData.h"

#include <algorithm>
#include <cstddef>

namespace krl::player {

namespace {

constexpr size_t kEntryBytes = 12;
constexpr uint32_t kOrientation = 0x0112, kThumbnailOffset = 0x0201, kThumbnailBytes = 0x0202;
constexpr uint32_t kXResolution = 0x011A, kYResolution = 0x011B, kResolutionUnit = 0x0128;
constexpr uint32_t kCameraDirectory = 0x8769, kPixelsAcross = 0xA002, kPixelsDown = 0xA003;
constexpr uint32_t kLong = 4;  // the type of numbers of 32 bits
constexpr double kMillimetresPerInch = 25.4, kMillimetresPerCentimetre = 10;

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

    void setNumber(size_t place, size_t count, uint32_t value) {
        for (size_t i = 0; i < count; ++i, value >>= 8) {
            const size_t at = place + (isLittle_ ? i : count - 1 - i);
            if (at < size()) bytes_[start_ + at] = static_cast<uint8_t>(value);
        }
    }

    size_t firstDirectory() const { return number(4, 4); }

    /// The place of an entry in a directory; 0 for none.
    size_t entryIn(size_t directory, uint32_t tag) const {
        const size_t count = number(directory, 2);
        for (size_t i = 0; i < count && directory + 2 + i * kEntryBytes < size(); ++i)
            if (const size_t entry = directory + 2 + i * kEntryBytes; number(entry, 2) == tag) return entry;
        return 0;
    }

    /// The quotient that an entry of the first directory points to; 0 for none.
    double quotient(uint32_t tag) const {
        const size_t entry = entryIn(firstDirectory(), tag);
        const size_t place = entry == 0 ? size() : number(entry + 8, 4);
        const uint32_t divisor = number(place + 4, 4);
        return divisor == 0 ? 0 : static_cast<double>(number(place, 4)) / divisor;
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
    const size_t start = exifStart(exif);
    return exif.size() < start + 8 ? std::nullopt : std::optional<ExifBody>(std::in_place, exif, start);
}

}  // namespace

size_t exifStart(const std::vector<uint8_t>& exif) {
    const bool isMarked =
        exif.size() >= kExifMark.size() && std::equal(kExifMark.begin(), kExifMark.end(), exif.begin());
    return isMarked ? kExifMark.size() : 0;
}

std::vector<uint8_t> withMark(std::vector<uint8_t> exif) {
    const size_t start = exifStart(exif);
    const bool isExif = exif.size() >= start + 2 && exif[start] == exif[start + 1] &&
                        (exif[start] == 'I' || exif[start] == 'M');
    if (!isExif) return {};
    if (start == 0) exif.insert(exif.begin(), kExifMark.begin(), kExifMark.end());
    return exif;
}

std::vector<uint8_t> withoutThumbnail(std::vector<uint8_t> exif) {
    std::optional<ExifBody> found = bodyOf(exif);
    if (!found) return exif;
    ExifBody& body = *found;
    const size_t first = body.firstDirectory();
    const size_t link = first + 2 + body.number(first, 2) * kEntryBytes;  // to the thumbnail's directory
    const size_t second = body.number(link, 4);
    if (second == 0) return exif;
    const size_t place = body.entryIn(second, kThumbnailOffset),
                 bytes = body.entryIn(second, kThumbnailBytes);
    if (place > 0 && bytes > 0) body.clear(body.number(place + 8, 4), body.number(bytes + 8, 4));
    body.clear(second, 2 + body.number(second, 2) * kEntryBytes + 4);
    body.clear(link, 4);
    return exif;
}

int takeOrientation(std::vector<uint8_t>& exif) {
    std::optional<ExifBody> body = bodyOf(exif);
    const size_t entry = body ? body->entryIn(body->firstDirectory(), kOrientation) : 0;
    if (entry == 0) return 1;
    const uint32_t orientation = body->number(entry + 8, 2);
    body->setNumber(entry + 8, 2, 1);
    return orientation >= 1 && orientation <= 8 ? static_cast<int>(orientation) : 1;
}

std::optional<ExifResolution> resolutionOf(std::vector<uint8_t> exif) {
    const std::optional<ExifBody> body = bodyOf(exif);
    if (!body) return std::nullopt;
    const ExifResolution found{body->quotient(kXResolution), body->quotient(kYResolution)};
    const size_t entry = body->entryIn(body->firstDirectory(), kResolutionUnit);
    const uint32_t unit = entry == 0 ? 2 : body->number(entry + 8, 2);
    if (found.x == 0 || found.y == 0 || (unit != 2 && unit != 3)) return std::nullopt;
    const double millimetres = unit == 2 ? kMillimetresPerInch : kMillimetresPerCentimetre;
    return ExifResolution{found.x / millimetres, found.y / millimetres};
}

std::vector<uint8_t> withSize(std::vector<uint8_t> exif, int32_t width, int32_t height) {
    std::optional<ExifBody> body = bodyOf(exif);
    const size_t camera = body ? body->entryIn(body->firstDirectory(), kCameraDirectory) : 0;
    if (camera == 0) return exif;
    const auto set = [&](uint32_t tag, int32_t pixels) {
        const size_t entry = body->entryIn(body->number(camera + 8, 4), tag);
        if (entry == 0) return;
        body->setNumber(entry + 2, 2, kLong);
        body->setNumber(entry + 8, 4, static_cast<uint32_t>(pixels));
    };
    set(kPixelsAcross, width);
    set(kPixelsDown, height);
    return exif;
}

}  // namespace krl::player
