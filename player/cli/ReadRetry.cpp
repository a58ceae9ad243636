#include "player/cli/ReadRetry.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <thread>
#include <utility>

namespace krl::player {

namespace {

constexpr std::chrono::milliseconds kFirstPause{100}, kLongestPause{10'000};

/// Errors of a file server or a network, which pass.
bool isPassing(int error) {
    static constexpr int passing[] = {
        EIO,
        EAGAIN,
        EINTR,
        ETIMEDOUT,
        ENETDOWN,
        ENETUNREACH,
        ECONNRESET,
        EHOSTUNREACH,
#if defined(ESTALE)
        ESTALE,
#endif
    };
    return std::find(std::begin(passing), std::end(passing), error) != std::end(passing);
}

/// Why the file cannot be read to its end; 0 if it can.
int readingError(const std::filesystem::path& file) {
    std::FILE* stream = std::fopen(file.string().c_str(), "rb");
    if (!stream) return errno;
    std::array<char, 65536> piece;
    while (std::fread(piece.data(), 1, piece.size(), stream) == piece.size()) continue;
    const int error = std::ferror(stream) ? errno : 0;
    std::fclose(stream);
    return error;
}

}  // namespace

bool ReadRetry::again() {
    if (left_ == 0) return false;
    --left_;
    const int error = readingError(file_);
    if (error == 0) return !std::exchange(couldBeRead_, true);
    if (!isPassing(error)) return false;
    std::this_thread::sleep_for(std::min(kFirstPause * (1 << std::min(pauses_, 7u)), kLongestPause));
    ++pauses_;
    return true;
}

}  // namespace krl::player
