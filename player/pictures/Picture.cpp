#include "player/pictures/Picture.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

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

bool beginsAsPam(const std::filesystem::path& path) {
    const auto refuse = [&path](const char* why) {
        throw PictureError("cannot read " + path.string() + ": " + why);
    };
    std::error_code failed;
    const std::filesystem::file_status status = std::filesystem::status(path, failed);
    if (std::filesystem::is_directory(status)) refuse("is a folder");
    // Formats are detected by reading a file twice, which a pipe does not allow.
    if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status))
        refuse("pictures can be read from files only, not from a pipe or device");
    std::FILE* file = std::fopen(path.string().c_str(), "rb");
    if (!file) refuse(std::strerror(errno));
    char start[2] = {};
    const bool broken = std::fread(start, 1, 2, file) < 2 && std::ferror(file);
    const int error = errno;
    std::fclose(file);
    if (broken) refuse(std::strerror(error));
    return start[0] == 'P' && start[1] == '7';
}

}  // namespace

void requirePictureSize(const std::filesystem::path& path, int64_t width, int64_t height) {
    const std::string size = std::to_string(width) + " by " + std::to_string(height) + " pixels";
    if (width < 1 || height < 1) throw PictureError(path.string() + " has no pixels: " + size);
    if (width > kPictureByteLimit / 4 / height)
        throw PictureError(path.string() + " is too large: " + size + ", and pictures are limited to 2 GiB");
}

Bitmap readPicture(const std::filesystem::path& path) {
    if (beginsAsPam(path)) return readPam(path);
#if defined(KRL_WITH_VIPS)
    return readWithVips(path);
#else
    throw PictureError(path.string() + " is not a PAM picture, the only format that this build reads");
#endif
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
    const std::optional<PictureFormat> format = options.format ? options.format : formatOf(path);
    if (!format) throw PictureError("cannot write " + path.string() + ": its name must end in " + kFormats);
    requirePictureSize(path, picture.width, picture.height);
    AtomicFile file(path);
    if (format == PictureFormat::Pam) {
        writePam(file, picture);
    } else {
#if defined(KRL_WITH_VIPS)
        writeWithVips(file, picture, *format, options.quality);
#endif
    }
    file.commit(options.whenWritten);
}

}  // namespace krl::player
