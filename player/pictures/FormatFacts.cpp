#include <algorithm>
#include <cstdint>
#include <string_view>

#include "player/pictures/Formats.h"
#include "player/pictures/PictureMetadata.h"

namespace krl::player {

namespace {

/// What a format holds besides the pixels of one picture, and how these can be packed.
struct FormatFacts {
    PictureFormat format;
    const char* name;
    bool frames, exif, xmp, iptc, texts, profile, sixteenBits, chroma;
    std::string_view compressions;  ///< names with blanks between them
    size_t mostExifBytes = SIZE_MAX, mostXmpBytes = SIZE_MAX;
};

constexpr bool yes = true, no = false;
constexpr const char* kLossless = "lossless";

// EXIF and XMP data of a JPEG must fit in one segment each, the latter behind a mark of 29 bytes.
constexpr FormatFacts kFacts[] = {
    // Has                              frames exif xmp iptc texts profile 16 chroma
    {PictureFormat::Jpeg, "JPEG", no, yes, yes, yes, no, yes, no, yes, "", 65533, 65504},
    {PictureFormat::Png, "PNG", no, yes, yes, no, yes, yes, yes, no, "0 1 2 3 4 5 6 7 8 9"},
    {PictureFormat::Tiff, "TIFF", yes, yes, yes, yes, no, yes, yes, no, "none packbits lzw deflate zstd"},
    {PictureFormat::Webp, "WebP", yes, yes, yes, no, no, yes, no, no, kLossless},
    {PictureFormat::Gif, "GIF", yes, no, no, no, no, no, no, no, ""},
    {PictureFormat::Avif, "AVIF", no, yes, yes, no, no, yes, no, yes, kLossless},
    {PictureFormat::Heic, "HEIC", no, yes, yes, no, no, yes, no, yes, kLossless},
    {PictureFormat::Jxl, "JPEG XL", no, yes, yes, no, no, yes, no, no, kLossless},
    {PictureFormat::Pam, "PAM", no, no, no, no, no, no, no, no, ""},
};

bool holdsWord(std::string_view words, const std::string& word) {
    return (' ' + std::string(words) + ' ').find(' ' + word + ' ') != std::string::npos;
}

/// `none, lzw or deflate` of `none lzw deflate`.
std::string listed(std::string_view words) {
    std::string text(words);
    if (const size_t last = text.rfind(' '); last != std::string::npos) text.replace(last, 1, " or ");
    for (size_t i = text.find(' '); i != std::string::npos; i = text.find(' ', i + 2))
        if (text.compare(i, 4, " or ") != 0)
            text.insert(i++, ",");
        else
            break;
    return text;
}

/// The formats for which `has` holds: `PNG and TIFF`.
template <class Has>
std::string namesOf(const Has& has) {
    std::vector<std::string> names;
    for (const FormatFacts& facts : kFacts)
        if (has(facts)) names.push_back(facts.name);
    std::string text;
    for (size_t i = 0; i < names.size(); ++i)
        text += (i == 0 ? "" : i + 1 == names.size() ? " and " : ", ") + names[i];
    return text;
}

const FormatFacts& factsOf(PictureFormat format) {
    return *std::find_if(std::begin(kFacts), std::end(kFacts),
                         [&](const FormatFacts& facts) { return facts.format == format; });
}

}  // namespace

bool holdsFrames(PictureFormat format) { return factsOf(format).frames; }

std::string writeOptionComplaint(PictureFormat format, const WriteOptions& options) {
    const FormatFacts& facts = factsOf(format);
    const std::string name = facts.name;
    if (options.depth == 16 && !facts.sixteenBits)
        return name + " has 8 bits a sample; " +
               namesOf([](const FormatFacts& one) { return one.sixteenBits; }) + " have 16";
    if (!options.chroma.empty() && !facts.chroma)
        return "chroma " + options.chroma + " is for " +
               namesOf([](const FormatFacts& one) { return one.chroma; }) + ", not for " + name;
    if (options.compression.empty() || holdsWord(facts.compressions, options.compression)) return "";
    return "compression " + options.compression + " is not for " + name +
           (facts.compressions.empty() ? "" : ", which has " + listed(facts.compressions));
}

std::vector<std::string> lossesOfWriting(const std::filesystem::path& path, const PictureFrames& frames,
                                         const WriteOptions& options) {
    const std::optional<PictureFormat> format = formatFor(path, options);
    if (!format) return {};  // writing reports it
    const FormatFacts& facts = factsOf(*format);
    std::vector<std::string> losses;
    const auto lose = [&](bool isLost, const std::string& what) {
        if (isLost) losses.push_back(what + ", which " + facts.name + " does not hold");
    };
    const size_t count = frames.pictures.size();
    lose(count > 1 && !facts.frames, "all but the first of " + std::to_string(count) + " pages or frames");
    const PictureMetadata* metadata = frames.pictures.front().metadata.get();
    if (!metadata || options.isStripped) return losses;
    lose(!metadata->exif.empty() && !facts.exif, "EXIF data");
    lose(facts.exif && metadata->exif.size() > facts.mostExifBytes,
         "EXIF data of " + std::to_string(metadata->exif.size()) + " bytes");
    lose(!metadata->xmp.empty() && !facts.xmp, "XMP data");
    lose(facts.xmp && metadata->xmp.size() > facts.mostXmpBytes,
         "XMP data of " + std::to_string(metadata->xmp.size()) + " bytes");
    lose(!metadata->iptc.empty() && !facts.iptc, "IPTC records");
    if (metadata->hasOtherResources)
        losses.push_back("resources beside the IPTC records, such as guides and paths, which are not kept");
    lose(!metadata->texts.empty() && !facts.texts, "texts");
    lose(!metadata->colourProfile.empty() && !facts.profile, "the colour profile");
    return losses;
}

}  // namespace krl::player
