#include "faults/GuardedPicture.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>

namespace krl::test {

namespace {

constexpr uint8_t kGuardByte = 0xA5;

size_t roundedUp(size_t bytes, size_t unit) { return (bytes + unit - 1) / unit * unit; }

}  // namespace

GuardedPicture::GuardedPicture(int32_t width, int32_t height, PictureForm form, uint32_t seed)
    : info_{width, height, 0, form.bitsPerPixel, 0, 0}, seed_(seed) {
    const size_t tight = static_cast<size_t>(width) * static_cast<size_t>(form.bitsPerPixel) / 8;
    const size_t rowBytes = roundedUp(tight, 4) + static_cast<size_t>(form.padding);
    info_.rowBytes =
        static_cast<int32_t>(form.bottomUp ? -static_cast<ptrdiff_t>(rowBytes) : ptrdiff_t(rowBytes));
    blockBytes_ = rowBytes * static_cast<size_t>(height);
    const auto page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    const size_t inside = roundedUp(blockBytes_ + 1, page);
    pageBytes_ = inside + 2 * page;
    void* mapped = mmap(nullptr, pageBytes_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapped == MAP_FAILED ||
        mprotect(static_cast<uint8_t*>(mapped) + page, inside, PROT_READ | PROT_WRITE) != 0)
        std::abort();
    pages_ = static_cast<uint8_t*>(mapped) + page;
    block_ = pages_ + inside - blockBytes_;
    std::fill(pages_, block_, kGuardByte);
    pages_ -= page;
    restore();
    firstHash_ = hash();
}

GuardedPicture::~GuardedPicture() { munmap(pages_, pageBytes_); }

uint8_t* GuardedPicture::pixels() const {
    return info_.rowBytes < 0 ? block_ + blockBytes_ + info_.rowBytes : block_;
}

void GuardedPicture::restore() {
    uint32_t state = seed_;
    for (size_t i = 0; i < blockBytes_; ++i) {
        state = state * 1664525u + 1013904223u;
        block_[i] = static_cast<uint8_t>(state >> 24);
    }
}

bool GuardedPicture::guardsAreIntact() const {
    const auto page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    return std::all_of(pages_ + page, block_, [](uint8_t byte) { return byte == kGuardByte; });
}

uint64_t GuardedPicture::hash() const {
    uint64_t hash = 14695981039346656037u;
    for (size_t i = 0; i < blockBytes_; ++i) hash = (hash ^ block_[i]) * 1099511628211u;
    return hash;
}

}  // namespace krl::test
