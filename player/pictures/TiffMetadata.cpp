#include "player/pictures/TiffMetadata.h"

#include <algorithm>
#include <cstdio>

#include "player/pictures/ExifData.h"
#include "player/pictures/Iptc.h"
#include "player/pictures/Picture.h"
#include "player/pictures/TiffDirectory.h"

namespace krl::player {

namespace {

constexpr uint16_t kIptcTag = 33723, kPixelsAcross = 40962, kPixelsDown = 40963;
constexpr uint16_t kBytesType = 7;

/// The tags of a first directory that describe the picture. The others say how its pixels are stored.
bool isDescriptive(uint16_t tag) {
    static constexpr uint16_t tags[] = {
        269,      270,    271,   272,    // the document's name, description, camera's maker and model
        285,      305,    306,   315,    // the page's name, software, date, artist
        316,      18246,  18249,         // host computer, rating in stars and percent
        33432,    40091,  40092, 40093,  // copyright; title, comment, author ...
        40094,    40095,                 // ... keywords and subject in the words of a file browser
        kExifTag, kGpsTag};
    return std::find(std::begin(tags), std::end(tags), tag) != std::end(tags);
}

TiffChoice chooseDescription(uint16_t tag) {
    return isDescriptive(tag) ? TiffChoice::Read : TiffChoice::Skip;
}

template <class File>
TiffSource sourceOf(const File& file) {
    return [&file](uint64_t place, uint8_t* bytes, size_t count) { return file.readAt(place, bytes, count); };
}

TiffSource sourceWithin(const std::vector<uint8_t>& bytes, size_t start) {
    return [&bytes, start](uint64_t place, uint8_t* to, size_t count) {
        const uint64_t size = bytes.size() - start;
        if (place > size || count > size - place) return false;
        std::copy_n(bytes.begin() + static_cast<ptrdiff_t>(start + place), count, to);
        return true;
    };
}

TiffDirectory descriptionIn(const TiffSource& source) {
    const std::optional<TiffHeader> header = readTiffHeader(source);
    return header ? readTiffDirectory(source, *header, chooseDescription) : TiffDirectory();
}

TiffDirectory descriptionInExif(const std::vector<uint8_t>& exif) {
    TiffDirectory found = descriptionIn(sourceWithin(exif, exifStart(exif)));
    // The size of a TIFF's picture is elsewhere, and may have changed.
    for (TiffEntry& entry : found)
        std::erase_if(entry.directory, [](const TiffEntry& one) {
            return one.tag == kPixelsAcross || one.tag == kPixelsDown;
        });
    std::erase_if(found,
                  [](const TiffEntry& entry) { return entry.values.empty() && entry.directory.empty(); });
    return found;
}

std::vector<uint8_t> exifWith(const TiffDirectory& directory) {
    constexpr bool isLittle = true;
    std::string rest;
    const uint32_t first = appendTiffDirectory(rest, 8, directory, isLittle, 0);
    std::string exif(kExifMark);
    exif += "II";
    appendTiffNumber(exif, 42, 2, isLittle);
    appendTiffNumber(exif, first, 4, isLittle);
    exif += rest;
    return {exif.begin(), exif.end()};
}

}  // namespace

TiffFacts readTiffFacts(const InputFile& file) {
    const TiffSource source = sourceOf(file);
    const std::optional<TiffHeader> header = readTiffHeader(source);
    if (!header) return {};
    const auto read = [&](const TiffFilter& filter) { return readTiffDirectory(source, *header, filter); };
    TiffFacts facts;
    if (const TiffDirectory found = read(chooseDescription); !found.empty()) facts.exif = exifWith(found);
    const auto isIptc = [](uint16_t tag) {
        return tag == kIptcTag ? TiffChoice::ReadBytes : TiffChoice::Skip;
    };
    for (const TiffEntry& entry : read(isIptc)) facts.iptc = bareIptc(entry.values);
    return facts;
}

void addTiffFacts(AtomicFile& file, const TiffFacts& facts) {
    TiffDirectory added = descriptionInExif(facts.exif);
    if (!facts.iptc.empty())
        added.push_back({kIptcTag, kBytesType, static_cast<uint32_t>(facts.iptc.size()), facts.iptc, {}, {}});
    if (added.empty()) return;
    const auto refuse = [&] {
        throw PictureError("cannot write " + file.target().string() + ": its metadata does not fit");
    };
    const TiffSource source = sourceOf(file);
    const std::optional<TiffHeader> header = readTiffHeader(source);
    if (!header || header->isBig) refuse();
    uint64_t next = 0;
    // The new directory replaces the one there, whose values stay where they are.
    TiffDirectory all = readTiffDirectory(
        source, *header,
        [&](uint16_t tag) {
            const auto same = [&](const TiffEntry& entry) { return entry.tag == tag; };
            return std::any_of(added.begin(), added.end(), same) ? TiffChoice::Skip : TiffChoice::KeepPlace;
        },
        &next);
    all.insert(all.end(), added.begin(), added.end());
    const uint64_t end = file.size();
    if (end > UINT32_MAX - facts.exif.size() - facts.iptc.size() - 65536 * 12) refuse();
    std::string bytes, link;
    const uint32_t place = appendTiffDirectory(bytes, static_cast<uint32_t>(end), all, header->isLittle,
                                               static_cast<uint32_t>(next));
    appendTiffNumber(link, place, 4, header->isLittle);
    file.writeAt(end, bytes);
    file.writeAt(4, link);
}

}  // namespace krl::player
