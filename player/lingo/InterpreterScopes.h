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

/// Adds one level during its lifetime.
class Interpreter::DepthGuard {
public:
    explicit DepthGuard(Interpreter& interpreter) : depth_(interpreter.depth_) {
        if (depth_ == 0) interpreter.stackBase_ = stackPlace();
        // The stack grows downwards on all supported platforms.
        const bool full = static_cast<intptr_t>(interpreter.stackBase_ - stackPlace()) > kMostStackBytes;
        if (depth_ >= kDeepestEvaluation || full)
            throw HostError("the calls and expressions are nested too deeply");
        ++depth_;
    }
    ~DepthGuard() { --depth_; }
    DepthGuard(const DepthGuard&) = delete;
    DepthGuard& operator=(const DepthGuard&) = delete;

private:
    int& depth_;
};

/// Makes a frame the current one during its lifetime.
class Interpreter::FrameScope {
public:
    FrameScope(Interpreter& interpreter, Frame& frame)
        : interpreter_(interpreter), caller_(interpreter.frame_), depth_(interpreter) {
        interpreter_.frame_ = &frame;
        ++interpreter_.handlers_;
    }
    ~FrameScope() {
        interpreter_.frame_ = caller_;
        --interpreter_.handlers_;
    }
    FrameScope(const FrameScope&) = delete;
    FrameScope& operator=(const FrameScope&) = delete;

private:
    Interpreter& interpreter_;
    Frame* caller_;
    const DepthGuard depth_;
};

}  // namespace krl::player
