#include "player/pictures/TiffDirectory.h"

#include <algorithm>

namespace krl::player {

namespace {

constexpr uint16_t kLongType = 4;
/// More entries than this are damage.
constexpr uint64_t kMostEntries = UINT16_MAX;

/// A type of values: its bytes, and the bytes of the numbers that it consists of.
struct ValueType {
    uint16_t type;
    uint8_t bytes, number;
};
constexpr ValueType kTypes[] = {{1, 1, 1},  {2, 1, 1},  {3, 2, 2},  {4, 4, 4},  {5, 8, 4},
                                {6, 1, 1},  {7, 1, 1},  {8, 2, 2},  {9, 4, 4},  {10, 8, 4},
                                {11, 4, 4}, {12, 8, 8}, {13, 4, 4}, {129, 1, 1}};

const ValueType* typeOf(uint16_t type) {
    const auto found = std::find_if(std::begin(kTypes), std::end(kTypes),
                                    [&](const ValueType& known) { return known.type == type; });
    return found == std::end(kTypes) ? nullptr : found;
}

uint64_t numberAt(const uint8_t* bytes, size_t count, bool isLittle) {
    uint64_t number = 0;
    for (size_t i = 0; i < count; ++i) number = number << 8 | bytes[isLittle ? count - 1 - i : i];
    return number;
}

/// Between a file's byte order and the one of `values`.
void reorder(std::vector<uint8_t>& values, size_t number, bool isLittle) {
    if (isLittle) return;
    for (size_t i = 0; i + number <= values.size(); i += number)
        std::reverse(values.begin() + static_cast<ptrdiff_t>(i),
                     values.begin() + static_cast<ptrdiff_t>(i + number));
}

bool isPointer(uint16_t tag) { return tag == kExifTag || tag == kGpsTag || tag == kInteroperabilityTag; }

/// What a directory that a tag points to may hold: one more, for interoperability within that of EXIF.
TiffFilter filterWithin(uint16_t pointer) {
    return [pointer](uint16_t tag) {
        const bool isNested = pointer == kExifTag && tag == kInteroperabilityTag;
        return isPointer(tag) && !isNested ? TiffChoice::Skip : TiffChoice::Read;
    };
}

/// Reads directories until their values are too many.
class DirectoryReader {
public:
    DirectoryReader(const TiffSource& source, const TiffHeader& header)
        : source_(source),
          isLittle_(header.isLittle),
          countBytes_(header.isBig ? 8 : 2),
          fieldBytes_(header.isBig ? 8 : 4) {}

    TiffDirectory read(uint64_t place, const TiffFilter& filter, uint64_t* next = nullptr) {
        TiffDirectory directory;
        uint8_t size[8], link[8];
        if (!source_(place, size, countBytes_)) return directory;
        const uint64_t count = number(size, countBytes_);
        if (count > kMostEntries) return directory;
        const size_t entryBytes = 4 + 2 * fieldBytes_;
        std::vector<uint8_t> bytes(static_cast<size_t>(count) * entryBytes);
        if (!source_(place + countBytes_, bytes.data(), bytes.size())) return directory;
        for (size_t at = 0; at < bytes.size(); at += entryBytes)
            if (std::optional<TiffEntry> entry = entryAt(&bytes[at], filter))
                directory.push_back(std::move(*entry));
        const bool isLinked = source_(place + countBytes_ + bytes.size(), link, fieldBytes_);
        if (next) *next = isLinked ? number(link, fieldBytes_) : 0;
        return directory;
    }

private:
    uint64_t number(const uint8_t* bytes, size_t count) const { return numberAt(bytes, count, isLittle_); }

    /// Tag, type, how many values, and the values or where they are.
    std::optional<TiffEntry> entryAt(const uint8_t* at, const TiffFilter& filter) {
        TiffEntry entry;
        entry.tag = static_cast<uint16_t>(number(at, 2));
        entry.type = static_cast<uint16_t>(number(at + 2, 2));
        const uint64_t count = number(at + 4, fieldBytes_);
        const uint8_t* held = at + 4 + fieldBytes_;
        if (count > UINT32_MAX) return std::nullopt;
        entry.count = static_cast<uint32_t>(count);
        const TiffChoice choice = filter(entry.tag);
        if (choice == TiffChoice::KeepPlace) entry.place = static_cast<uint32_t>(number(held, 4));
        const bool isRead = choice == TiffChoice::Read || choice == TiffChoice::ReadBytes;
        const bool isKept =
            isRead ? readValues(held, entry, choice == TiffChoice::Read) : entry.place.has_value();
        return isKept ? std::optional(std::move(entry)) : std::nullopt;
    }

    /// Reads the values of an entry, or the directory that it points to; false if there are none.
    bool readValues(const uint8_t* held, TiffEntry& entry, bool isOrdered) {
        if (isPointer(entry.tag)) return entry.count == 1 && readDirectory(number(held, fieldBytes_), entry);
        const ValueType* type = typeOf(entry.type);
        const uint64_t size = type ? uint64_t{type->bytes} * entry.count : 0;
        if (size == 0 || size > bytesLeft_) return false;
        bytesLeft_ -= size;
        const auto bytes = static_cast<size_t>(size);
        entry.values.assign(held, held + std::min(bytes, fieldBytes_));
        if (bytes > fieldBytes_) {
            entry.values.resize(bytes);
            if (!source_(number(held, fieldBytes_), entry.values.data(), bytes)) return false;
        }
        if (isOrdered) reorder(entry.values, type->number, isLittle_);
        return true;
    }

    bool readDirectory(uint64_t place, TiffEntry& entry) {
        if (bytesLeft_ < fieldBytes_) return false;
        bytesLeft_ -= fieldBytes_;
        entry.type = kLongType;  // in BigTIFF it may be one that is not known elsewhere
        entry.directory = read(place, filterWithin(entry.tag));
        return !entry.directory.empty();
    }

    const TiffSource& source_;
    const bool isLittle_;
    const size_t countBytes_, fieldBytes_;
    uint64_t bytesLeft_ = uint64_t{16} << 20;  // a maker's note takes some hundred kilobytes
};

}  // namespace

std::optional<TiffHeader> readTiffHeader(const TiffSource& source) {
    uint8_t bytes[16];
    if (!source(0, bytes, 8) || bytes[0] != bytes[1]) return std::nullopt;
    TiffHeader header;
    header.isLittle = bytes[0] == 'I';
    if (!header.isLittle && bytes[0] != 'M') return std::nullopt;
    const auto number = [&](size_t place, size_t count) {
        return numberAt(bytes + place, count, header.isLittle);
    };
    header.isBig = number(2, 2) == 43;
    if (!header.isBig && number(2, 2) != 42) return std::nullopt;
    if (header.isBig && (number(4, 2) != 8 || !source(0, bytes, sizeof bytes))) return std::nullopt;
    header.first = header.isBig ? number(8, 8) : number(4, 4);
    return header;
}

TiffDirectory readTiffDirectory(const TiffSource& source, const TiffHeader& header, const TiffFilter& filter,
                                uint64_t* next) {
    return DirectoryReader(source, header).read(header.first, filter, next);
}

void appendTiffNumber(std::string& bytes, uint32_t number, size_t count, bool isLittle) {
    for (size_t i = 0; i < count; ++i)
        bytes += static_cast<char>(number >> 8 * (isLittle ? i : count - 1 - i));
}

namespace {

/// Appends a directory and all that it points to.
class DirectoryWriter {
public:
    DirectoryWriter(std::string& bytes, uint32_t base, bool isLittle)
        : bytes_(bytes), base_(base), isLittle_(isLittle) {}

    uint32_t append(TiffDirectory directory, uint32_t next) {
        std::sort(directory.begin(), directory.end(),
                  [](const TiffEntry& a, const TiffEntry& b) { return a.tag < b.tag; });
        std::string entries;
        number(entries, static_cast<uint32_t>(directory.size()), 2);
        for (const TiffEntry& entry : directory) {
            number(entries, entry.tag, 2);
            number(entries, entry.type, 2);
            number(entries, entry.count, 4);
            entries += fieldOf(entry);
        }
        number(entries, next, 4);
        return add(entries);
    }

private:
    void number(std::string& bytes, uint32_t value, size_t count) const {
        appendTiffNumber(bytes, value, count, isLittle_);
    }

    /// The last four bytes of an entry: its values, or the place of what is too long.
    std::string fieldOf(const TiffEntry& entry) {
        std::string field;
        const ValueType* type = typeOf(entry.type);
        std::vector<uint8_t> values = entry.values;
        if (type) reorder(values, type->number, isLittle_);
        if (entry.place)
            number(field, *entry.place, 4);
        else if (!entry.directory.empty())
            number(field, append(entry.directory, 0), 4);
        else if (values.size() > 4)
            number(field, add({values.begin(), values.end()}), 4);
        else
            field.assign(values.begin(), values.end());
        field.resize(4);
        return field;
    }

    /// Appends bytes at an even place, as readers expect.
    uint32_t add(const std::string& bytes) {
        if ((base_ + bytes_.size()) % 2 != 0) bytes_ += '\0';
        const auto place = static_cast<uint32_t>(base_ + bytes_.size());
        bytes_ += bytes;
        return place;
    }

    std::string& bytes_;
    const uint32_t base_;
    const bool isLittle_;
};

}  // namespace

uint32_t appendTiffDirectory(std::string& bytes, uint32_t base, const TiffDirectory& directory, bool isLittle,
                             uint32_t next) {
    return DirectoryWriter(bytes, base, isLittle).append(directory, next);
}

}  // namespace krl::player
