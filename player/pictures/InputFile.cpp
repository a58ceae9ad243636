#include "player/pictures/InputFile.h"

#include <cerrno>
#include <cstring>
#include <string>
#include <system_error>

#if defined(_WIN32)
#include <io.h>
#else
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

#include "player/pictures/Picture.h"

namespace krl::player {

namespace fs = std::filesystem;

namespace {

#if defined(_WIN32)
std::FILE* open(const fs::path& path) { return _wfopen(path.c_str(), L"rb"); }
#else
/// Does not wait for the other end of a pipe.
std::FILE* open(const fs::path& path) {
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    return descriptor < 0 ? nullptr : ::fdopen(descriptor, "rb");
}
#endif

}  // namespace

InputFile::InputFile(const fs::path& path) : path_(path) {
    if (path == "/dev/stdin") {
        copyStandardInput();
        return;
    }
    std::error_code failed;
    const fs::file_status status = fs::status(path, failed);
    if (fs::is_directory(status)) refuse("is a folder");
    stream_ = open(path);
    if (!stream_) refuse(std::strerror(errno));
#if !defined(_WIN32)
    struct stat found {};
    if (::fstat(::fileno(stream_), &found) == 0 && S_ISREG(found.st_mode)) return;
    std::fclose(stream_);
    // Formats are detected by reading a file twice, which a pipe does not allow.
    refuse("expected a file, got a pipe or device");
#endif
}

InputFile::~InputFile() { std::fclose(stream_); }

void InputFile::refuse(const char* why) const {
    throw PictureError("cannot read " + path_.string() + ": " + why);
}

std::FILE* InputFile::fromStart() const {
    std::rewind(stream_);
    return stream_;
}

int InputFile::descriptor() const {
    std::rewind(stream_);
#if defined(_WIN32)
    return _fileno(stream_);
#else
    ::lseek(::fileno(stream_), 0, SEEK_SET);
    return ::fileno(stream_);
#endif
}

uint64_t InputFile::size() const {
#if defined(_WIN32)
    const auto size = _filelengthi64(_fileno(stream_));
#else
    struct stat found {};
    const auto size = ::fstat(::fileno(stream_), &found) == 0 ? found.st_size : 0;
#endif
    return size > 0 ? static_cast<uint64_t>(size) : 0;
}

bool InputFile::readAt(uint64_t place, uint8_t* bytes, size_t count) const {
#if defined(_WIN32)
    return std::fseek(stream_, static_cast<long>(place), SEEK_SET) == 0 &&
           std::fread(bytes, 1, count, stream_) == count;
#else
    return ::pread(::fileno(stream_), bytes, count, static_cast<off_t>(place)) == static_cast<ssize_t>(count);
#endif
}

fs::path InputFile::place() const {
#if defined(__linux__)
    std::error_code failed;
    return fs::read_symlink("/proc/self/fd/" + std::to_string(::fileno(stream_)), failed);
#else
    return {};
#endif
}

void InputFile::copyStandardInput() {
    stream_ = std::tmpfile();
    if (!stream_) refuse(std::strerror(errno));
    char bytes[65536];
    while (const size_t count = std::fread(bytes, 1, sizeof bytes, stdin))
        if (std::fwrite(bytes, 1, count, stream_) != count) break;
    const bool isWhole = !std::ferror(stdin) && !std::ferror(stream_) && std::fflush(stream_) == 0;
    if (isWhole) return;
    const int error = errno;
    std::fclose(stream_);
    refuse(std::strerror(error));
}

}  // namespace krl::player
