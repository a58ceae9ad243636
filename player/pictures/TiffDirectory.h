#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

/// Directories of tags, the structure that TIFF files and EXIF data share.
namespace krl::player {

struct TiffEntry;
using TiffDirectory = std::vector<TiffEntry>;

struct TiffEntry {
    uint16_t tag = 0, type = 0;
    uint32_t count = 0;
    std::vector<uint8_t> values;  ///< least significant byte first
    /// Where the file already has the values, or the values themselves if they are short; nothing for
    /// `values`.
    std::optional<uint32_t> place;
    TiffDirectory directory;  ///< for a tag that points to one
};

/// The tags that point to further directories.
inline constexpr uint16_t kExifTag = 34665, kGpsTag = 34853, kInteroperabilityTag = 40965;

/// Reads `count` bytes at a place; false where there are none.
using TiffSource = std::function<bool(uint64_t place, uint8_t* bytes, size_t count)>;

/// Where the first directory is and how numbers are stored.
struct TiffHeader {
    bool isLittle = true;
    bool isBig = false;  ///< BigTIFF, whose files may be larger than 4 GB
    uint64_t first = 0;
};
/// Nothing for all that is not a TIFF.
std::optional<TiffHeader> readTiffHeader(const TiffSource& source);

/// Which tags to read, and whether the tag's values stay where they are.
enum class TiffChoice {
    Skip,
    Read,
    ReadBytes,  ///< in the order of the file, whatever their type
    KeepPlace,  ///< not for BigTIFF
};
using TiffFilter = std::function<TiffChoice(uint16_t tag)>;

/// The first directory, with those that it points to. Skips entries that make no sense; `next`, if not null,
/// receives the place of the next directory.
TiffDirectory readTiffDirectory(const TiffSource& source, const TiffHeader& header, const TiffFilter& filter,
                                uint64_t* next = nullptr);

/// Appends a directory, in the order of tags, to the bytes that begin at `base`; returns its place.
uint32_t appendTiffDirectory(std::string& bytes, uint32_t base, const TiffDirectory& directory, bool isLittle,
                             uint32_t next);

/// Appends a number in the byte order.
void appendTiffNumber(std::string& bytes, uint32_t number, size_t count, bool isLittle);

}  // namespace krl::player
