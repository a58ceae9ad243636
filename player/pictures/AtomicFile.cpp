#include "player/pictures/AtomicFile.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <system_error>

#include "player/pictures/Picture.h"

namespace krl::player {

namespace {

/// Names of the files that are being written, where a signal handler can read them: one for each of
/// as many jobs as the command line allows.
constexpr size_t kSlots = 256, kNameBytes = 4096;
struct Unfinished {
    std::atomic<bool> taken = false, written = false;
    char name[kNameBytes];
};
std::array<Unfinished, kSlots> unfinished;

void remember(const std::string& name) {
    if (name.size() >= kNameBytes) return;
    for (Unfinished& slot : unfinished) {
        if (slot.taken.exchange(true)) continue;
        std::memcpy(slot.name, name.c_str(), name.size() + 1);
        slot.written = true;
        return;
    }
}

void forget(const std::string& name) {
    for (Unfinished& slot : unfinished) {
        if (!slot.written || name != slot.name) continue;
        slot.written = false;
        slot.taken = false;
        return;
    }
}

/// A name beside `target` that no other writer has: hidden, with the same extension, and short, since
/// the target's own may be as long as a name can be.
std::filesystem::path temporaryName(const std::filesystem::path& target) {
    static std::atomic<uint32_t> count = 0;
    const auto ticks = std::chrono::steady_clock::now().time_since_epoch().count();
    const std::string mark = std::to_string(ticks) + "-" + std::to_string(++count);
    return target.parent_path() / ("." + mark + target.extension().string());
}

}  // namespace

AtomicFile::AtomicFile(const std::filesystem::path& target)
    : target_(target), temporary_(temporaryName(target)) {
    // Remembered before it exists, so that no interruption falls in between.
    remember(temporary_.string());
    std::FILE* created = std::fopen(temporary_.string().c_str(), "wb");
    if (!created) {
        const std::string reason = std::strerror(errno);
        forget(temporary_.string());
        throw PictureError("cannot write " + target.string() + ": " + reason);
    }
    std::fclose(created);
}

AtomicFile::~AtomicFile() {
    if (committed_) return;
    std::error_code ignored;
    std::filesystem::remove(temporary_, ignored);
    forget(temporary_.string());
}

void AtomicFile::commit() {
    std::error_code failure;
    std::filesystem::rename(temporary_, target_, failure);
    if (failure) throw PictureError("cannot write " + target_.string() + ": " + failure.message());
    committed_ = true;
    forget(temporary_.string());
}

void removeUnfinishedFiles() noexcept {
    for (const Unfinished& slot : unfinished)
        if (slot.written) std::remove(slot.name);
}

}  // namespace krl::player
