#include "player/pictures/VipsLibrary.h"

#if defined(KRL_WITH_VIPS)

#include <dlfcn.h>

#include <string>

#include "player/pictures/Picture.h"

namespace krl::player {

namespace {

/// The version whose headers these are.
#if defined(__APPLE__)
constexpr const char* kLibrary = "libvips.42.dylib";
#else
constexpr const char* kLibrary = "libvips.so.42";
#endif

[[noreturn]] void fail() {
    const char* why = ::dlerror();
    throw PictureError(std::string("cannot load libvips, which this picture needs: ") +
                       (why ? why : kLibrary));
}

}  // namespace

void* vipsLibrary() {
    // Not to be unloaded: neither the library nor those behind it can end before the program does.
    static void* const library = [] {
        void* opened = ::dlopen(kLibrary, RTLD_LAZY | RTLD_LOCAL);
        if (!opened) fail();
        return opened;
    }();
    return library;
}

void* vipsSymbol(const char* name) {
    void* symbol = ::dlsym(vipsLibrary(), name);
    if (!symbol) fail();
    return symbol;
}

}  // namespace krl::player

#endif
