#include "player/pictures/AtomicFile.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <csignal>
#include <cstring>
#include <system_error>
#include <thread>
#include <utility>

#if defined(_WIN32)
#include <io.h>
#include <process.h>
#else
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

#include "player/pictures/Picture.h"

namespace krl::player {

namespace {

namespace fs = std::filesystem;

std::atomic_flag gate = ATOMIC_FLAG_INIT;
AtomicFile* unfinished = nullptr;  ///< guarded by the gate

void passGate() noexcept {
    while (gate.test_and_set(std::memory_order_acquire)) std::this_thread::yield();
}

/// Lets one thread at a time create or remove files, with signals blocked: their handler takes the gate too.
class GateGuard {
public:
    GateGuard() {
#if !defined(_WIN32)
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &before_);
#endif
        passGate();
    }
    ~GateGuard() {
        gate.clear(std::memory_order_release);
#if !defined(_WIN32)
        pthread_sigmask(SIG_SETMASK, &before_, nullptr);
#endif
    }
    GateGuard(const GateGuard&) = delete;
    GateGuard& operator=(const GateGuard&) = delete;

private:
#if !defined(_WIN32)
    sigset_t before_{};
#endif
};

/// A unique name beside `target`: hidden, with the same extension, and short, since the target's name
/// may already have the maximum length.
fs::path temporaryName(const fs::path& target) {
    static std::atomic<uint32_t> count = 0;
    return AtomicFile::mark() + "_" + std::to_string(++count) + target.extension().string();
}

#if defined(_WIN32)
int processNumber() { return _getpid(); }
bool isPouredInto(const fs::path&) { return false; }
int openToPour(const fs::path&) { return -1; }
#else
int processNumber() { return ::getpid(); }

/// The file descriptor that a name denotes, such as 1 for `/dev/stdout`, or -1.
int namedDescriptor(const std::string& name) {
    if (name == "/dev/stdout") return STDOUT_FILENO;
    if (name == "/dev/stderr") return STDERR_FILENO;
    for (const std::string_view folder : {"/dev/fd/", "/proc/self/fd/"}) {
        if (name.rfind(folder, 0) != 0) continue;
        int number = -1;
        const char* last = name.data() + name.size();
        if (std::from_chars(name.data() + folder.size(), last, number).ptr == last) return number;
    }
    return -1;
}

bool isPouredInto(const fs::path& target) {
    std::error_code unreadable;
    const fs::file_status status = fs::status(target, unreadable);
    const bool special = fs::exists(status) && !fs::is_regular_file(status) && !fs::is_directory(status);
    return special || namedDescriptor(target.string()) >= 0;
}

int openToPour(const fs::path& target) {
    const int named = namedDescriptor(target.string());
    return named >= 0 ? ::fcntl(named, F_DUPFD_CLOEXEC, 0) : ::open(target.c_str(), O_WRONLY | O_CLOEXEC);
}
#endif

}  // namespace

AtomicFileRules rulesFor(const fs::path& source) {
    std::error_code unknown;
    const fs::file_status status = fs::status(source, unknown);
    const auto permissions = static_cast<unsigned>(status.permissions()) & 0777u;
    return {.permissions = fs::is_regular_file(status) ? permissions : 0};
}

const std::string& AtomicFile::mark() {
    static const std::string mark = [] {
        const auto ticks = std::chrono::system_clock::now().time_since_epoch().count();
        return "." + std::to_string(ticks) + "-" + std::to_string(processNumber());
    }();
    return mark;
}

AtomicFile::AtomicFile(const fs::path& target, const AtomicFileRules& rules) : target_(target) {
    int error = 0;
    if (isPouredInto(target)) {
        poured_ = openToPour(target);
        stream_ = poured_ < 0 ? nullptr : std::tmpfile();
        error = errno;
        if (!stream_ && poured_ >= 0) ::close(poured_);
    } else {
        // All memory is taken before there is a file that would be left behind.
        name_ = target.filename();
        temporary_ = temporaryName(target);
        openFolder(rules.isChecked);
        const GateGuard guard;
        create(rules.permissions);
        error = errno;
        if (stream_) next_ = std::exchange(unfinished, this);
    }
    if (!stream_) {
        temporary_.clear();
        closeFolder();
        fail(error);
    }
}

#if defined(_WIN32)
void AtomicFile::openFolder(bool) { temporary_ = target_.parent_path() / temporary_; }
void AtomicFile::closeFolder() noexcept {}

void AtomicFile::create(unsigned) noexcept { stream_ = _wfopen(temporary_.c_str(), L"w+b"); }

void AtomicFile::removeTemporary() const noexcept { _wremove(temporary_.c_str()); }

int AtomicFile::rename() const {
    std::error_code failure;
    fs::rename(temporary_, target_, failure);
    return failure.value();
}
#else
void AtomicFile::openFolder(bool isChecked) {
    const fs::path name = target_.has_parent_path() ? target_.parent_path() : fs::path(".");
    folder_ = ::open(name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder_ < 0) fail(errno);
    if (!isChecked) return;
    try {
        std::error_code unknown;
        const fs::path place = fs::read_symlink("/proc/self/fd/" + std::to_string(folder_), unknown);
        if (unknown || place == name) return;
        throw PictureError("cannot write " + target_.string() + ": its folder was replaced by " +
                           place.string());
    } catch (...) {
        closeFolder();
        throw;
    }
}

void AtomicFile::closeFolder() noexcept {
    if (folder_ >= 0) ::close(std::exchange(folder_, -1));
}

void AtomicFile::create(unsigned permissions) noexcept {
    const mode_t allowed = permissions == 0 ? 0666 : (permissions & 0666) | S_IRUSR | S_IWUSR;
    const int descriptor =
        ::openat(folder_, temporary_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, allowed);
    if (descriptor < 0) return;
    struct stat replaced {};
    if (::fstatat(folder_, name_.c_str(), &replaced, 0) == 0 && S_ISREG(replaced.st_mode))
        static_cast<void>(::fchmod(descriptor, replaced.st_mode & 0777));
    stream_ = ::fdopen(descriptor, "w+b");
    if (stream_) return;
    const int error = errno;
    ::close(descriptor);
    removeTemporary();
    errno = error;
}

void AtomicFile::removeTemporary() const noexcept { ::unlinkat(folder_, temporary_.c_str(), 0); }

int AtomicFile::rename() const {
    const int status = ::renameat(folder_, temporary_.c_str(), folder_, name_.c_str());
    return status == 0 ? 0 : errno;
}
#endif

AtomicFile::~AtomicFile() {
    if (stream_) std::fclose(stream_);
    if (poured_ >= 0) ::close(poured_);
    if (!temporary_.empty()) {
        const GateGuard guard;
        removeTemporary();
        forget();
    }
    closeFolder();
}

void AtomicFile::fail(int error) const {
    throw PictureError("cannot write " + target_.string() + ": " + std::strerror(error));
}

/// Call with the gate held.
void AtomicFile::forget() noexcept {
    for (AtomicFile** link = &unfinished; *link; link = &(*link)->next_)
        if (*link == this) {
            *link = next_;
            return;
        }
}

void AtomicFile::write(std::string_view bytes) {
    if (std::fwrite(bytes.data(), 1, bytes.size(), stream_) != bytes.size()) fail(errno);
}

int AtomicFile::descriptor() const { return fileno(stream_); }

void AtomicFile::restart() {
    std::rewind(stream_);
#if defined(_WIN32)
    const bool emptied = _chsize(descriptor(), 0) == 0;
#else
    const bool emptied = ::ftruncate(descriptor(), 0) == 0;
#endif
    if (!emptied) fail(errno);
}

bool AtomicFile::readAt(uint64_t place, uint8_t* bytes, size_t count) const {
    return std::fseek(stream_, static_cast<long>(place), SEEK_SET) == 0 &&
           std::fread(bytes, 1, count, stream_) == count;
}

void AtomicFile::writeAt(uint64_t place, std::string_view bytes) {
    if (std::fseek(stream_, static_cast<long>(place), SEEK_SET) != 0) fail(errno);
    write(bytes);
}

uint64_t AtomicFile::size() const {
    if (std::fseek(stream_, 0, SEEK_END) != 0) fail(errno);
    return static_cast<uint64_t>(std::ftell(stream_));
}

void AtomicFile::commit(const std::function<void()>& whenInPlace) {
    // Closing writes the last bytes, so a file server may report an error only now.
    if (poured_ >= 0)
        pour();
    else if (std::fclose(std::exchange(stream_, nullptr)) != 0)
        fail(errno);
    int failure = 0;
    {
        const GateGuard guard;
        if (!temporary_.empty()) failure = rename();
        if (failure == 0) {
            forget();
            temporary_.clear();
            if (whenInPlace) whenInPlace();
        }
    }
    if (failure != 0) fail(failure);
}

void AtomicFile::pour() {
    std::array<char, 65536> bytes;
    if (std::fflush(stream_) != 0) fail(errno);
    std::rewind(stream_);
    while (const size_t count = std::fread(bytes.data(), 1, bytes.size(), stream_))
        for (size_t done = 0; done < count;) {
            const auto written = ::write(poured_, bytes.data() + done, count - done);
            if (written < 0 && errno != EINTR) fail(errno);
            if (written > 0) done += static_cast<size_t>(written);
        }
    if (std::ferror(stream_)) fail(errno);
    if (::close(std::exchange(poured_, -1)) != 0) fail(errno);
}

void removeUnfinishedFiles() noexcept {
    passGate();  // and never release it
    for (const AtomicFile* file = unfinished; file; file = file->next_) file->removeTemporary();
}

}  // namespace krl::player
