#include "tests/player/Refusals.h"

#include <dlfcn.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <new>

namespace {

/// The number of allocations granted before one fails; negative for no limit.
std::atomic<int64_t> granted{-1};
std::atomic<bool> refused{false};
std::atomic<bool> closesFail{false};

}  // namespace

void* operator new(size_t bytes) {
    if (granted.load(std::memory_order_relaxed) >= 0 && granted.fetch_sub(1) == 0) {
        refused = true;
        throw std::bad_alloc();
    }
    if (void* block = std::malloc(bytes == 0 ? 1 : bytes)) return block;
    throw std::bad_alloc();
}
void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, size_t) noexcept { std::free(block); }

extern "C" int fclose(std::FILE* file) {
    static const auto closed = reinterpret_cast<int (*)(std::FILE*)>(dlsym(RTLD_NEXT, "fclose"));
    const int status = closed(file);
    if (!closesFail) return status;
    errno = EIO;
    return EOF;
}

namespace krl::player {

OneRefusal::OneRefusal(int64_t before) {
    refused = false;
    granted = before;
}
OneRefusal::~OneRefusal() { granted = -1; }
bool OneRefusal::happened() { return refused; }

FailingClose::FailingClose() { closesFail = true; }
FailingClose::~FailingClose() { closesFail = false; }

}  // namespace krl::player
