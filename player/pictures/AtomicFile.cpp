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
#else
#include <fcntl.h>
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
    const auto ticks = std::chrono::steady_clock::now().time_since_epoch().count();
    const std::string mark = std::to_string(ticks) + "-" + std::to_string(++count);
    return target.parent_path() / ("." + mark + target.extension().string());
}

std::FILE* create(const fs::path& file) {
#if defined(_WIN32)
    return _wfopen(file.c_str(), L"w+b");
#else
    return std::fopen(file.c_str(), "w+be");
#endif
}

void removeFile(const fs::path& file) noexcept {
#if defined(_WIN32)
    _wremove(file.c_str());
#else
    ::unlink(file.c_str());
#endif
}

#if defined(_WIN32)
bool isPouredInto(const fs::path&) { return false; }
int openToPour(const fs::path&) { return -1; }
#else
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

AtomicFile::AtomicFile(const fs::path& target) : target_(target) {
    int error = 0;
    if (isPouredInto(target)) {
        poured_ = openToPour(target);
        stream_ = poured_ < 0 ? nullptr : std::tmpfile();
        error = errno;
        if (!stream_ && poured_ >= 0) ::close(poured_);
    } else {
        temporary_ = temporaryName(target);
        const GateGuard guard;
        stream_ = create(temporary_);
        error = errno;
        if (stream_) next_ = std::exchange(unfinished, this);
    }
    if (!stream_) fail(error);
}

AtomicFile::~AtomicFile() {
    if (stream_) std::fclose(stream_);
    if (poured_ >= 0) ::close(poured_);
    if (temporary_.empty()) return;
    const GateGuard guard;
    removeFile(temporary_);
    forget();
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

void AtomicFile::commit(const std::function<void()>& whenInPlace) {
    // Closing writes the last bytes, so a file server may report an error only now.
    if (poured_ >= 0)
        pour();
    else if (std::fclose(std::exchange(stream_, nullptr)) != 0)
        fail(errno);
    std::error_code failure;
    {
        const GateGuard guard;
        if (!temporary_.empty()) fs::rename(temporary_, target_, failure);
        if (!failure) {
            forget();
            temporary_.clear();
            if (whenInPlace) whenInPlace();
        }
    }
    if (failure) throw PictureError("cannot write " + target_.string() + ": " + failure.message());
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
    for (const AtomicFile* file = unfinished; file; file = file->next_) removeFile(file->temporary_);
}

}  // namespace krl::player
