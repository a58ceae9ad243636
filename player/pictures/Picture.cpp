#include "player/pictures/Picture.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "player/pictures/ExifData.h"
#include "player/pictures/FileAccess.h"
#include "player/pictures/Formats.h"
#include "player/pictures/Geometry.h"
#include "player/pictures/PictureMetadata.h"
#include "player/pictures/PixelLimit.h"

namespace krl::player {

namespace {

struct Extension {
    const char* name;
    PictureFormat format;
};

#if defined(KRL_WITH_VIPS)
constexpr Extension kExtensions[] = {
    {".png", PictureFormat::Png},   {".jpg", PictureFormat::Jpeg},  {".jpeg", PictureFormat::Jpeg},
    {".tif", PictureFormat::Tiff},  {".tiff", PictureFormat::Tiff}, {".webp", PictureFormat::Webp},
    {".gif", PictureFormat::Gif},   {".avif", PictureFormat::Avif}, {".heic", PictureFormat::Heic},
    {".heif", PictureFormat::Heic}, {".jxl", PictureFormat::Jxl},   {".pam", PictureFormat::Pam},
};
constexpr const char* kFormats = ".png, .jpg, .tif, .webp, .gif, .avif, .heic, .jxl or .pam";
#elif defined(KRL_WITH_PNG_JPEG)
constexpr Extension kExtensions[] = {
    {".png", PictureFormat::Png},
    {".jpg", PictureFormat::Jpeg},
    {".jpeg", PictureFormat::Jpeg},
    {".pam", PictureFormat::Pam},
};
constexpr const char* kFormats = ".png, .jpg or .pam";
constexpr const char* kReadFormats = "PNG, JPEG, PAM, PPM or PGM";
#else
constexpr Extension kExtensions[] = {{".pam", PictureFormat::Pam}};
constexpr const char* kFormats = ".pam";
constexpr const char* kReadFormats = "PAM, PPM or PGM";
#endif

std::string lowerExtension(const std::filesystem::path& path) {
    std::string extension = path.extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return extension;
}

/// The formats that are read without libvips.
constexpr const FormatReader* kReaders[] = {
    &kNetpbmReader,
#if defined(KRL_WITH_PNG_JPEG)
    &kPngReader,
    &kJpegReader,
#endif
};

}  // namespace

const FormatReader* readerFor(const InputFile& file) {
    for (const FormatReader* reader : kReaders)
        if (reader->isFormatOf(file)) return reader;
#if !defined(KRL_WITH_VIPS)
    throw PictureError(file.path().string() + " is not a " + kReadFormats +
                       " picture, the only formats that this build reads");
#else
    return nullptr;
#endif
}

Bitmap readWhole(const FormatReader& reader, const InputFile& file) {
    const std::unique_ptr<RowSource> source = reader.open(file);
    const PictureSize size = source->size();
    requirePictureSize(file.path(), size.width, size.height);
    Bitmap picture{static_cast<int32_t>(size.width), static_cast<int32_t>(size.height), {}, nullptr};
    picture.pixels.resize(static_cast<size_t>(size.width) * static_cast<size_t>(size.height));
    source->read(picture.pixels.data(), picture.height);
    source->finish();
    const std::shared_ptr<PictureMetadata> metadata = source->metadata();
    picture.metadata = metadata;
    if (!metadata) return picture;
    return upright(std::move(picture), takeOrientation(metadata->exif));
}

namespace {

PictureFrames readWith(const FormatReader& reader, const InputFile& file) {
    PictureFrames one;
    one.pictures.push_back(readWhole(reader, file));
    return one;
}

#if defined(KRL_WITH_VIPS)
PictureFrames read(const InputFile& file, FrameChoice choice) {
    const FormatReader* reader = readerFor(file);
    if (!reader) return readWithVips(file, choice);
    try {
        return readWith(*reader, file);
    } catch (const NeedsVips&) {
        return readWithVips(file, choice);
    }
}
#else
PictureFrames read(const InputFile& file, FrameChoice) { return readWith(*readerFor(file), file); }
#endif

PictureSize readSize(const InputFile& file) {
    const FormatReader* reader = readerFor(file);
#if defined(KRL_WITH_VIPS)
    if (!reader) return readSizeWithVips(file);
#endif
    return reader->readSize(file);
}

Bitmap readFirst(const InputFile& file) { return std::move(read(file, FrameChoice::First).pictures.front()); }

}  // namespace

bool convertsColours(const PictureMetadata* metadata, const WriteOptions& options) {
    const bool hasProfile = metadata && !metadata->colourProfile.empty();
    return !options.profile.empty() && (hasProfile || options.profile != "srgb");
}

const FormatWriter* writerFor(PictureFormat format) {
    switch (format) {
        case PictureFormat::Pam:
            return &kPamWriter;
#if defined(KRL_WITH_PNG_JPEG)
        case PictureFormat::Png:
            return &kPngWriter;
        case PictureFormat::Jpeg:
            return &kJpegWriter;
#endif
        default:
            return nullptr;
    }
}

void writeWhole(const FormatWriter& writer, AtomicFile& file, const Bitmap& picture,
                const WriteOptions& options) {
    const PictureContent content = writer.dependsOnContent ? contentOf(picture) : PictureContent();
    const std::unique_ptr<RowSink> sink =
        writer.open(file, {picture.width, picture.height, picture.metadata}, options, content);
    sink->write(picture.pixels.data(), picture.height);
    sink->finish();
}

namespace {

#if defined(KRL_WITH_VIPS)
void writePictures(AtomicFile& file, const FramesToWrite& frames, PictureFormat format,
                   const WriteOptions& options) {
    const Bitmap& first = frames.pictures.front();
    const FormatWriter* writer = writerFor(format);
    const bool isConverted = convertsColours(first.metadata.get(), options);
    if (!writer || isConverted) return writeWithVips(file, frames, format, options);
    try {
        writeWhole(*writer, file, first, options);
    } catch (const NeedsVips&) {
        writeWithVips(file, frames, format, options);
    }
}
#else
void writePictures(AtomicFile& file, const FramesToWrite& frames, PictureFormat format,
                   const WriteOptions& options) {
    writeWhole(*writerFor(format), file, frames.pictures.front(), options);
}
#endif

void write(AtomicFile& file, const FramesToWrite& frames, const WriteOptions& options) {
    writePictures(file, frames, *formatFor(file.target(), options), options);
    file.commit(options.whenWritten);
}

/// Why no other colour profile can be converted to, or an empty text.
std::string conversionComplaint([[maybe_unused]] PictureFormat format) {
#if defined(KRL_WITH_VIPS)
    return format == PictureFormat::Pam ? "PAM is written without converting to another colour profile" : "";
#else
    return "this build cannot convert to another colour profile";
#endif
}

/// Throws unless the picture can be written under this name, before a file is made.
void requireWritable(const std::filesystem::path& path, const Bitmap& picture, const WriteOptions& options) {
    const std::optional<PictureFormat> format = formatFor(path, options);
    if (!format) throw PictureError("cannot write " + path.string() + ": its name must end in " + kFormats);
    const std::string complaint = writeOptionComplaint(*format, options);
    if (!complaint.empty()) throw PictureError("cannot write " + path.string() + ": " + complaint);
    const std::string missing = conversionComplaint(*format);
    if (!missing.empty() && convertsColours(picture.metadata.get(), options))
        throw PictureError("cannot write " + path.string() + ": " + missing);
    requirePossibleSize(path, picture.width, picture.height);
}

std::string sizeText(int64_t width, int64_t height) {
    return std::to_string(width) + " by " + std::to_string(height) + " pixels";
}

void requirePixels(const std::filesystem::path& path, int64_t width, int64_t height) {
    if (width < 1 || height < 1)
        throw PictureError(path.string() + " has no pixels: " + sizeText(width, height));
}

}  // namespace

void requirePossibleSize(const std::filesystem::path& path, int64_t width, int64_t height) {
    requirePixels(path, width, height);
    if (width > kPictureByteLimit / 4 / height)
        throw PictureError(path.string() + " is too large: " + sizeText(width, height) +
                           ", and pictures in memory are limited to 2 GiB");
}

void requireAllowedSize(const std::filesystem::path& path, int64_t width, int64_t height) {
    requirePixels(path, width, height);
    const int64_t most = PixelLimit::current();
    if (width > most / height)
        throw PictureError(path.string() + " is too large: " + sizeText(width, height) +
                           ", and --max-pixels is " + std::to_string(most));
}

void requirePictureSize(const std::filesystem::path& path, int64_t width, int64_t height) {
    requireAllowedSize(path, width, height);
    requirePossibleSize(path, width, height);
}

Bitmap readPicture(const std::filesystem::path& path) { return readFirst(InputFile(path)); }

PictureFrames readFrames(const std::filesystem::path& path, FrameChoice choice) {
    return read(InputFile(path), choice);
}

PictureSize readPictureSize(const std::filesystem::path& path, FrameChoice choice) {
    PictureSize size = readSize(InputFile(path));
    if (choice == FrameChoice::First) size.frames = 1;
    requireAllowedSize(path, size.width, size.height * size.frames);
    return size;
}

namespace {

/// Throws if the file that is open is not the one that was checked.
void requireInPlace(const InputFile& file) {
    const std::filesystem::path place = file.place();
    if (!place.empty() && place != file.path())
        throw PictureError("cannot read " + file.path().string() + ": it was replaced by " + place.string());
}

}  // namespace

Bitmap readCheckedPicture(const std::filesystem::path& path) {
    const InputFile file(path);
    requireInPlace(file);
    return readFirst(file);
}

std::string readCheckedBytes(const std::filesystem::path& path) {
    const InputFile file(path);
    requireInPlace(file);
    std::string bytes;
    char part[65536];
    std::FILE* const stream = file.fromStart();
    while (const size_t count = std::fread(part, 1, sizeof part, stream)) bytes.append(part, count);
    if (std::ferror(stream)) throw PictureError("cannot read " + path.string() + ": " + std::strerror(errno));
    return bytes;
}

std::optional<PictureFormat> formatOf(const std::filesystem::path& path) {
    const std::string extension = lowerExtension(path);
    const auto found = std::find_if(std::begin(kExtensions), std::end(kExtensions),
                                    [&](const Extension& entry) { return entry.name == extension; });
    return found == std::end(kExtensions) ? std::nullopt : std::optional(found->format);
}

std::optional<PictureFormat> formatFor(const std::filesystem::path& path, const WriteOptions& options) {
    return options.format ? options.format : formatOf(path);
}

bool isReadableName(const std::filesystem::path& path) {
    const std::optional<PictureFormat> written = formatOf(path);
    const std::string extension = lowerExtension(path);
    // libvips does not trust its reader of JPEG XL, so neither does anybody here.
    return written ? *written != PictureFormat::Jxl : extension == ".pgm" || extension == ".ppm";
}

bool isPictureName(const std::filesystem::path& path) { return formatOf(path).has_value(); }

std::string writableFormats() { return kFormats; }

void writePicture(const std::filesystem::path& path, const Bitmap& picture, const WriteOptions& options) {
    requireWritable(path, picture, options);
    AtomicFile file(path);
    write(file, {{&picture, 1}, {}, 0}, options);
}

void writePicture(const std::filesystem::path& path, const Bitmap& picture) {
    writePicture(path, picture, WriteOptions());
}

void writeCheckedPicture(const std::filesystem::path& path, const Bitmap& picture) {
    requireWritable(path, picture, {});
    AtomicFile file(path, {.isChecked = true});
    write(file, {{&picture, 1}, {}, 0}, {});
}

void writeFramesOf(const std::filesystem::path& source, const std::filesystem::path& path,
                   const PictureFrames& frames, const WriteOptions& options) {
    requireWritable(path, frames.pictures.front(), options);
    AtomicFile file(path, rulesFor(source));
    write(file, {frames.pictures, frames.delays, frames.loops}, options);
}

}  // namespace krl::player
