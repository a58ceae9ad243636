#include "tests/player/FailingClose.h"

#include <dlfcn.h>

#include <atomic>
#include <cerrno>
#include <cstdio>

namespace {

std::atomic<bool> closesFail{false};

}  // namespace

extern "C" int fclose(std::FILE* file) {
    static const auto closed = reinterpret_cast<int (*)(std::FILE*)>(dlsym(RTLD_NEXT, "fclose"));
    const int status = closed(file);
    if (!closesFail) return status;
    errno = EIO;
    return EOF;
}

namespace krl::player {

FailingClose::FailingClose() { closesFail = true; }
FailingClose::~FailingClose() { closesFail = false; }

}  // namespace krl::player
