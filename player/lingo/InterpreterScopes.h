#pragma once

#include "player/host/HostError.h"
#include "player/lingo/Interpreter.h"

namespace krl::player {

/// Levels of statements and expressions at work, all handlers together: what the stack holds.
inline constexpr int kDeepestEvaluation = 8000;

/// One level more while it lives.
class Interpreter::DepthGuard {
public:
    explicit DepthGuard(int& depth) : depth_(depth) {
        if (depth_ >= kDeepestEvaluation) throw HostError("the calls and expressions are nested too deeply");
        ++depth_;
    }
    ~DepthGuard() { --depth_; }
    DepthGuard(const DepthGuard&) = delete;
    DepthGuard& operator=(const DepthGuard&) = delete;

private:
    int& depth_;
};

/// Makes a frame the one at work while it lives.
class Interpreter::FrameScope {
public:
    FrameScope(Interpreter& interpreter, Frame& frame)
        : interpreter_(interpreter), caller_(interpreter.frame_), place_(interpreter.place_) {
        interpreter_.frame_ = &frame;
        ++interpreter_.handlers_;
    }
    ~FrameScope() {
        interpreter_.frame_ = caller_;
        interpreter_.place_ = place_;
        --interpreter_.handlers_;
    }
    FrameScope(const FrameScope&) = delete;
    FrameScope& operator=(const FrameScope&) = delete;

private:
    Interpreter& interpreter_;
    Frame* caller_;
    Place place_;
};

}  // namespace krl::player
