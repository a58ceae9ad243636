#include "player/pictures/Picture.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>

#include "player/pictures/AtomicFile.h"
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
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    char start[2] = {};
    if (!file || std::filesystem::is_directory(path))
        throw PictureError("cannot read " + path.string() + ": " +
                           (errno != 0 ? std::strerror(errno) : "it is a folder"));
    file.read(start, 2);
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
        writePam(file.path(), picture);
    } else {
#if defined(KRL_WITH_VIPS)
        writeWithVips(file.path(), picture, options);
#else
        static_cast<void>(options);
#endif
    }
    file.commit();
}

}  // namespace krl::player
