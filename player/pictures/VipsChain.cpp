#include "player/pictures/VipsChain.h"

#if defined(KRL_WITH_VIPS)

#include <dlfcn.h>

#include <filesystem>
#include <mutex>
#include <set>

namespace krl::player {

namespace {

/// The library loads all of its modules when it starts, and their libraries, unless it looks in the wrong
/// place.
class WithoutModules {
public:
    WithoutModules() : before_(g_strdup(g_getenv(kVariable))) { g_setenv(kVariable, "/nonexistent", TRUE); }
    ~WithoutModules() {
        if (before_)
            g_setenv(kVariable, before_, TRUE);
        else
            g_unsetenv(kVariable);
        g_free(before_);
    }
    WithoutModules(const WithoutModules&) = delete;
    WithoutModules& operator=(const WithoutModules&) = delete;

private:
    static constexpr const char* kVariable = "VIPSHOME";
    char* before_;
};

}  // namespace

void loadVipsModule(const char* name) {
    static std::mutex guard;
    static std::set<std::string> loaded;
    const std::lock_guard lock(guard);
    Dl_info library{};
    if (!loaded.insert(name).second || ::dladdr(vipsSymbol("vips_init"), &library) == 0) return;
    const std::filesystem::path folder =
        std::filesystem::path(library.dli_fname).parent_path() /
        ("vips-modules-" + std::to_string(vips_version(0)) + '.' + std::to_string(vips_version(1)));
    // Without the module, its formats are unknown; it can also be part of the library.
    if (GModule* module = g_module_open((folder / name).c_str(), G_MODULE_BIND_LAZY))
        g_module_make_resident(module);
}

void startVips() {
    static std::once_flag started;
    std::call_once(started, [] {
        const WithoutModules quick;
        g_setenv("VIPS_WARNING", "0", TRUE);
        if (vips_init("krlimage")) throw PictureError("cannot initialise libvips");
        vips_block_untrusted_set(TRUE);
        vips_concurrency_set(1);  // parallelism is across pictures, not within one
        vips_cache_set_max(0);
    });
}

std::string vipsReason() {
    std::string reason = vips_error_buffer();
    vips_error_clear();
    constexpr std::string_view mark = "unix error: ";
    const size_t system = reason.find(mark);
    if (system != std::string::npos) reason.erase(0, system + mark.size());
    reason = reason.substr(0, reason.find('\n'));
    return reason.empty() ? "unknown error" : reason;
}

void failAt(const std::string& doing) { throw PictureError("cannot " + doing + ": " + vipsReason()); }

std::shared_mutex& vipsLog() {
    static std::shared_mutex log;
    return log;
}

}  // namespace krl::player

#endif
