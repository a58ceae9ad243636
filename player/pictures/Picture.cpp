#include "player/pictures/Picture.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "player/pictures/FileAccess.h"
#include "player/pictures/Formats.h"

namespace krl::player {

namespace {

struct Extension {
    const char* name;
    PictureFormat format;
};

#if defined(KRL_WITH_VIPS)
constexpr Extension kExtensions[] = {
    {".png", PictureFormat::Png},  {".jpg", PictureFormat::Jpeg},  {".jpeg", PictureFormat::Jpeg},
    {".tif", PictureFormat::Tiff}, {".tiff", PictureFormat::Tiff}, {".webp", PictureFormat::Webp},
    {".pam", PictureFormat::Pam},
};
constexpr const char* kFormats = ".png, .jpg, .tif, .webp or .pam";
#else
constexpr Extension kExtensions[] = {{".pam", PictureFormat::Pam}};
constexpr const char* kFormats = ".pam";
#endif

std::string lowerExtension(const std::filesystem::path& path) {
    std::string extension = path.extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return extension;
}

bool beginsAsPam(const InputFile& file) {
    char start[2] = {};
    std::FILE* stream = file.fromStart();
    if (std::fread(start, 1, 2, stream) < 2 && std::ferror(stream))
        throw PictureError("cannot read " + file.path().string() + ": " + std::strerror(errno));
    return start[0] == 'P' && start[1] == '7';
}

Bitmap read(const InputFile& file) {
    if (beginsAsPam(file)) return readPam(file);
#if defined(KRL_WITH_VIPS)
    return readWithVips(file);
#else
    throw PictureError(file.path().string() + " is not a PAM picture, the only format that this build reads");
#endif
}

void write(AtomicFile& file, const Bitmap& picture, const WriteOptions& options) {
    const std::filesystem::path& path = file.target();
    const std::optional<PictureFormat> format = options.format ? options.format : formatOf(path);
    if (format == PictureFormat::Pam) {
        writePam(file, picture);
    } else {
#if defined(KRL_WITH_VIPS)
        writeWithVips(file, picture, *format, options.quality);
#endif
    }
    file.commit(options.whenWritten);
}

/// Throws unless the picture can be written under this name, before a file is made.
void requireWritable(const std::filesystem::path& path, const Bitmap& picture, const WriteOptions& options) {
    if (!options.format && !formatOf(path))
        throw PictureError("cannot write " + path.string() + ": its name must end in " + kFormats);
    requirePictureSize(path, picture.width, picture.height);
}

}  // namespace

void requirePictureSize(const std::filesystem::path& path, int64_t width, int64_t height) {
    const std::string size = std::to_string(width) + " by " + std::to_string(height) + " pixels";
    if (width < 1 || height < 1) throw PictureError(path.string() + " has no pixels: " + size);
    if (width > kPictureByteLimit / 4 / height)
        throw PictureError(path.string() + " is too large: " + size + ", and pictures are limited to 2 GiB");
}

Bitmap readPicture(const std::filesystem::path& path) { return read(InputFile(path)); }

Bitmap readCheckedPicture(const std::filesystem::path& path) {
    const InputFile file(path);
    const std::filesystem::path place = file.place();
    if (!place.empty() && place != path)
        throw PictureError("cannot read " + path.string() + ": it was replaced by " + place.string());
    return read(file);
}

std::vector<std::string> lossesIn(const std::filesystem::path& path) {
    if (path == "/dev/stdin") return {};  // it can be read once
    try {
        const InputFile file(path);
        if (beginsAsPam(file)) return {};
#if defined(KRL_WITH_VIPS)
        return lossesWithVips(file);
#endif
    } catch (const PictureError&) {
        // Reading the picture reports it.
    }
    return {};
}

std::optional<PictureFormat> formatOf(const std::filesystem::path& path) {
    const std::string extension = lowerExtension(path);
    const auto found = std::find_if(std::begin(kExtensions), std::end(kExtensions),
                                    [&](const Extension& entry) { return entry.name == extension; });
    return found == std::end(kExtensions) ? std::nullopt : std::optional(found->format);
}

bool isPictureName(const std::filesystem::path& path) { return formatOf(path).has_value(); }

std::string writableFormats() { return kFormats; }

void writePicture(const std::filesystem::path& path, const Bitmap& picture, const WriteOptions& options) {
    requireWritable(path, picture, options);
    AtomicFile file(path);
    write(file, picture, options);
}

void writeCheckedPicture(const std::filesystem::path& path, const Bitmap& picture) {
    requireWritable(path, picture, {});
    AtomicFile file(path, {.isChecked = true});
    write(file, picture, {});
}

void writePictureOf(const std::filesystem::path& source, const std::filesystem::path& path,
                    const Bitmap& picture, const WriteOptions& options) {
    requireWritable(path, picture, options);
    std::error_code unknown;
    const std::filesystem::file_status status = std::filesystem::status(source, unknown);
    const auto permissions = static_cast<unsigned>(status.permissions()) & 0777u;
    AtomicFile file(path, {.permissions = std::filesystem::is_regular_file(status) ? permissions : 0});
    write(file, picture, options);
}

}  // namespace krl::player
