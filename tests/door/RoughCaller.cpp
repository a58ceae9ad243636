#include <algorithm>
#include <array>
#include <bit>
#include <cfenv>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <memory>
#include <utility>

#include "door/LoadedLibrary.h"
#include "host/Door.h"
#include "host/Identifiers.h"

/// A plug-in that is nothing but another one, the file in `KRL_ROUGH_LIBRARY`, as it meets a host that
/// leaves the processor in a bad state: every call comes with another setting of the floating-point units
/// and, on 32 bits, with a stack that is aligned to 4 bytes and no more. The program ends when a call
/// does not give the settings back.
namespace krl::host::test {
namespace {

/// The settings of the floating-point units, from the thread's or to it.
struct FloatState {
#if defined(__i386__) || defined(__x86_64__)
    uint16_t x87 = 0;
    uint32_t mxcsr = 0;

    static FloatState current() {
        FloatState state;
        __asm__ volatile("fnstcw %0\n\tstmxcsr %1" : "=m"(state.x87), "=m"(state.mxcsr));
        return state;
    }
    void apply() const { __asm__ volatile("fnclex\n\tfldcw %0\n\tldmxcsr %1" : : "m"(x87), "m"(mxcsr)); }
#else
    int rounding = 0;

    static FloatState current() { return {std::fegetround()}; }
    void apply() const { std::fesetround(rounding); }
#endif
    bool operator==(const FloatState&) const = default;
};

constexpr FloatState kBadStates[] = {
#if defined(__i386__) || defined(__x86_64__)
    {0x007F, 0x9FC0},  // single precision; small numbers become nothing
    {0x0E7F, 0x7F80},  // toward zero
    {0x0840, 0x4000},  // upward, single precision, and every doubt is a fault
#else
    {FE_UPWARD},
    {FE_TOWARDZERO},
#endif
};

#if defined(__i386__)
/// Calls `function` with a stack whose lowest bits are those of -`shift` before the arguments.
uint32_t callOnStack(const void* function, const uint32_t* words, uint32_t count, uint32_t shift) {
    uint32_t result = 0;
    __asm__ volatile(
        "movl %%esp, %%esi\n\t"
        "andl $-16, %%esp\n\t"
        "subl %%edi, %%esp\n"
        "1:\n\t"
        "pushl -4(%%edx,%%ecx,4)\n\t"
        "decl %%ecx\n\t"
        "jnz 1b\n\t"
        "call *%%eax\n\t"
        "movl %%esi, %%esp"
        : "=a"(result), "+c"(count), "+d"(words), "+D"(shift)
        : "a"(function)
        : "esi", "memory", "cc", "xmm0", "xmm1", "xmm2", "xmm3", "xmm4", "xmm5", "xmm6", "xmm7");
    return result;
}
#endif

/// Calls `function` in the next bad state.
template <class Result, class... Arguments>
Result callRoughly(Result(KRL_HOST_CALL* function)(Arguments...), Arguments... arguments) {
    static unsigned calls = 0;
    ++calls;
    const FloatState before = FloatState::current();
    const FloatState& bad = kBadStates[calls % std::size(kBadStates)];
    const auto call = [&] {
#if defined(__i386__)
        const uint32_t words[] = {std::bit_cast<uint32_t>(arguments)...};
        return static_cast<Result>(callOnStack(reinterpret_cast<const void*>(function), words,
                                               sizeof...(arguments), calls / 3 % 4 * 4));
#else
        return function(arguments...);
#endif
    };
    bad.apply();
    const Result result = call();
    const FloatState after = FloatState::current();
    before.apply();
    if (after == bad) return result;
    std::fprintf(stderr, "the plug-in did not give the floating-point settings back\n");
    std::_Exit(3);
}

HostStatus KRL_HOST_CALL load(std::unique_ptr<LoadedLibrary>* to) {
    const char* file = std::getenv("KRL_ROUGH_LIBRARY");
    *to = std::make_unique<LoadedLibrary>(file ? file : "");
    return (*to)->loaded() ? kHostOk : kHostNoClass;
}

LoadedLibrary& library() {
    static std::unique_ptr<LoadedLibrary> loaded;
    if (!loaded && callRoughly(load, &loaded) != kHostOk) {
        std::fprintf(stderr, "KRL_ROUGH_LIBRARY names no library\n");
        std::_Exit(3);
    }
    return *loaded;
}

template <class Function>
Function real(const char* name) {
    return library().function<Function>(name);
}

CreateInstanceFunction realCreate = nullptr;

HostStatus KRL_HOST_CALL createRoughly(InstanceHead* head) { return callRoughly(realCreate, head); }

// The interfaces of the plug-in keep the operations that a host uses, the one that does the work behind this
// library's own.
constexpr size_t kWorkSlot = 3;
static_assert(RegisterOperation::slot == kWorkSlot && CallOperation::slot == kWorkSlot);
constexpr size_t kOperations = kWorkSlot + 1;

struct RoughTable {
    std::array<void*, kOperations> operations{};
    void* realWork = nullptr;
};
RoughTable registration, script;

HostStatus KRL_HOST_CALL registerRoughly(HostInterface* self, HostInterface* cache, HostInterface* entry) {
    return callRoughly(reinterpret_cast<RegisterOperation::Function>(registration.realWork), self, cache,
                       entry);
}

HostStatus KRL_HOST_CALL callMethodRoughly(HostInterface* self, CallInfo* info) {
    return callRoughly(reinterpret_cast<CallOperation::Function>(script.realWork), self, info);
}

/// Puts `work` into a copy of the operations of `object`.
void replaceWork(InterfaceObject& object, RoughTable& table, void* work) {
    std::copy_n(object.operations, kOperations, table.operations.begin());
    table.realWork = std::exchange(table.operations[kWorkSlot], work);
    object.operations = table.operations.data();
}

}  // namespace
}  // namespace krl::host::test

using namespace krl::host;
using namespace krl::host::test;

KRL_EXPORT HostStatus KRL_HOST_CALL DllCanUnloadNow() {
    return real<CanUnloadNowFunction>("DllCanUnloadNow")();
}

KRL_EXPORT HostStatus KRL_HOST_CALL DllGetClassForm(const Identifier* classId, int32_t* instanceBytes,
                                                    CreateInstanceFunction* create,
                                                    DestroyInstanceFunction* destroy) {
    const HostStatus status =
        callRoughly(real<GetClassFormFunction>("DllGetClassForm"), classId, instanceBytes, create, destroy);
    if (*classId == ids::kScriptClass) realCreate = std::exchange(*create, createRoughly);
    return status;
}

KRL_EXPORT HostStatus KRL_HOST_CALL DllGetClassInfo(HostInterface* memory, ClassInfoRecord** records) {
    return callRoughly(real<GetClassInfoFunction>("DllGetClassInfo"), memory, records);
}

KRL_EXPORT HostStatus KRL_HOST_CALL DllGetClassObject(const Identifier* classId,
                                                      const Identifier* interfaceId, void** object) {
    return callRoughly(real<GetClassObjectFunction>("DllGetClassObject"), classId, interfaceId, object);
}

KRL_EXPORT HostStatus KRL_HOST_CALL DllGetInterface(InstanceHead* instance, const Identifier* classId,
                                                    const Identifier* interfaceId, void** object) {
    const HostStatus status =
        callRoughly(real<GetInterfaceFunction>("DllGetInterface"), instance, classId, interfaceId, object);
    if (status != kHostOk) return status;
    auto& made = *static_cast<InterfaceObject*>(*object);
    if (*interfaceId == ids::kIMoaRegister)
        replaceWork(made, registration, reinterpret_cast<void*>(registerRoughly));
    else
        replaceWork(made, script, reinterpret_cast<void*>(callMethodRoughly));
    return status;
}
