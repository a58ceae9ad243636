#pragma once

#include "player/host/HostError.h"
#include "player/lingo/Interpreter.h"

namespace krl::player {

/// Limit of running handlers and texts, whatever the caller allows.
inline constexpr int kDeepestEvaluation = 8000;
/// Limit of the stack they use, about half of a thread's stack: sanitizer builds need more per level.
#if defined(_WIN32)
inline constexpr intptr_t kMostStackBytes = intptr_t(1) << 20;
#else
inline constexpr intptr_t kMostStackBytes = intptr_t(4) << 20;
#endif

/// The approximate current stack address.
inline uintptr_t stackPlace() { return reinterpret_cast<uintptr_t>(__builtin_frame_address(0)); }

/// The handlers that run from here on. Those that have not ended when it goes are ended.
class Interpreter::Execution {
public:
    explicit Execution(Interpreter& interpreter) : interpreter_(interpreter), level_(interpreter.running_) {
        if (level_ == 0) interpreter.stackBase_ = stackPlace();
        // The stack grows downwards on all supported platforms.
        if (static_cast<intptr_t>(interpreter.stackBase_ - stackPlace()) > kMostStackBytes) refuse();
    }
    ~Execution() {
        while (interpreter_.running_ > level_) interpreter_.pop();
    }
    Execution(const Execution&) = delete;
    Execution& operator=(const Execution&) = delete;

    [[noreturn]] static void refuse() { throw HostError("the calls and expressions are nested too deeply"); }

private:
    Interpreter& interpreter_;
    const int level_;
};

}  // namespace krl::player
