#include "door/LoadedLibrary.h"

#if defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
#endif

#include <cstdint>

namespace krl::host::test {

#if defined(_WIN32)

LoadedLibrary::LoadedLibrary(const std::string& path) : handle_(LoadLibraryA(path.c_str())) {}

LoadedLibrary::~LoadedLibrary() {
    if (handle_) FreeLibrary(static_cast<HMODULE>(handle_));
}

void* LoadedLibrary::symbol(const char* name) const {
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(handle_), name));
}

void* LoadedLibrary::ordinal(int number) const {
    return symbol(reinterpret_cast<const char*>(static_cast<uintptr_t>(number)));
}

#else

LoadedLibrary::LoadedLibrary(const std::string& path)
    : handle_(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) {}

LoadedLibrary::~LoadedLibrary() {
    if (handle_) dlclose(handle_);
}

void* LoadedLibrary::symbol(const char* name) const { return dlsym(handle_, name); }

void* LoadedLibrary::ordinal(int) const { return nullptr; }

#endif

}  // namespace krl::host::test
