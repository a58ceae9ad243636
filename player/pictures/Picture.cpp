#include "player/pictures/Picture.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "player/pictures/Formats.h"

namespace krl::player {

namespace {

#if defined(KRL_WITH_VIPS)
constexpr const char* kExtensions[] = {".png", ".jpg", ".jpeg", ".tif", ".tiff", ".webp", ".pam"};
constexpr const char* kFormats = ".png, .jpg, .tif, .webp or .pam";
#else
constexpr const char* kExtensions[] = {".pam"};
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
    if (std::filesystem::is_directory(status)) refuse("it is a folder");
    // A second look, as formats want it, would find a pipe empty.
    if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status))
        refuse("a picture is read from a file, not from a pipe or device");
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
        throw PictureError(path.string() + " is too large: " + size + ", and a picture may take 2^31 bytes");
}

Bitmap readPicture(const std::filesystem::path& path) {
    if (beginsAsPam(path)) return readPam(path);
#if defined(KRL_WITH_VIPS)
    return readWithVips(path);
#else
    throw PictureError(path.string() + " is no PAM picture, the one format that this build reads");
#endif
}

bool isPictureName(const std::filesystem::path& path) {
    const std::string extension = lowerExtension(path);
    return std::find(std::begin(kExtensions), std::end(kExtensions), extension) != std::end(kExtensions);
}

std::string writableFormats() { return kFormats; }

void writePicture(const std::filesystem::path& path, const Bitmap& picture, const WriteOptions& options) {
    if (!isPictureName(path))
        throw PictureError("cannot write " + path.string() + ": its name must end in " + kFormats);
    requirePictureSize(path, picture.width, picture.height);
    AtomicFile file(path);
    if (lowerExtension(path) == ".pam") {
        writePam(file, picture);
    } else {
#if defined(KRL_WITH_VIPS)
        writeWithVips(file, picture, options);
#else
        static_cast<void>(options);
#endif
    }
    file.commit();
}

}  // namespace krl::player
