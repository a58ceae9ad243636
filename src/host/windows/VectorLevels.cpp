#include <windows.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>

/// Selects the vector level when the library is loaded. The build joins the two versions of the hot files
/// with these tables (cmake/join-levels).
extern "C" {
extern void* krl_chosen_functions[];
extern void* const krl_wide_functions[];
extern const uint32_t krl_function_count;
}

namespace krl::host {

namespace {

/// `KRL_VECTOR_LEVEL=plain` in the environment keeps the baseline, for tests and measurements.
bool plainIsRequested() {
    char level[8] = {};
    const DWORD length = GetEnvironmentVariableA("KRL_VECTOR_LEVEL", level, sizeof(level));
    return length < sizeof(level) && std::strcmp(level, "plain") == 0;
}

/// Runs before any host can call. The compiler's check includes whether the system preserves the wide
/// registers.
__attribute__((constructor)) void selectLevel() {
    __builtin_cpu_init();
    if (!__builtin_cpu_supports("avx2") || plainIsRequested()) return;
    std::memcpy(krl_chosen_functions, krl_wide_functions, krl_function_count * sizeof(void*));
}

}  // namespace

}  // namespace krl::host
