#include "player/host/PlugInLibrary.h"

#if defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
#endif

#include "player/host/HostError.h"

namespace krl::player {

namespace {

// The platform's loader: a handle that closes itself, function lookup, error text.
#if defined(_WIN32)
std::shared_ptr<void> openLibrary(const std::filesystem::path& file) {
    HMODULE handle = LoadLibraryW(file.wstring().c_str());
    if (!handle) return nullptr;
    return {handle, [](void* opened) { FreeLibrary(static_cast<HMODULE>(opened)); }};
}
void* findSymbol(void* handle, const char* name) {
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(handle), name));
}
std::string loaderMessage() { return "error " + std::to_string(GetLastError()); }
#else
std::shared_ptr<void> openLibrary(const std::filesystem::path& file) {
    // A bare name would be searched for in the system's folders.
    void* handle = dlopen(std::filesystem::absolute(file).c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!handle) return nullptr;
    return {handle, [](void* opened) { dlclose(opened); }};
}
void* findSymbol(void* handle, const char* name) { return dlsym(handle, name); }
std::string loaderMessage() {
    const char* text = dlerror();
    return text ? text : "unknown error";
}
#endif

template <class Function>
void find(const PlugInLibrary& library, const std::filesystem::path& file, const char* name,
          Function& function) {
    function = reinterpret_cast<Function>(findSymbol(library.file.get(), name));
    if (!function) throw HostError(file.string() + " is not an xtra: it does not export " + name);
}

}  // namespace

PlugInLibrary builtInPlugIn() {
    return {DllGetClassForm, DllGetClassInfo, DllGetInterface, DllCanUnloadNow, nullptr};
}

PlugInLibrary loadPlugIn(const std::filesystem::path& file) {
    PlugInLibrary library;
    library.file = openLibrary(file);
    if (!library.file) throw HostError("cannot load the xtra " + file.string() + ": " + loaderMessage());
    find(library, file, "DllGetClassForm", library.getClassForm);
    find(library, file, "DllGetClassInfo", library.getClassInfo);
    find(library, file, "DllGetInterface", library.getInterface);
    find(library, file, "DllCanUnloadNow", library.canUnloadNow);
    return library;
}

}  // namespace krl::player
