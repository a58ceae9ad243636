#pragma once

#include "player/lingo/Interpreter.h"

namespace krl::player {

/// Runs a script like a movie: its start, a number of frames, and its end.
class Performance {
public:
    Performance(Interpreter& interpreter, const LoadedScript& script)
        : interpreter_(interpreter), script_(script) {}

    /// Calls `prepareMovie`; `main`, `startMovie` or the first other handler with `arguments`; the handlers
    /// of `frames` frames; and `stopMovie`. `halt` ends all but the last.
    void run(const Value& arguments, int frames);

private:
    const HandlerCode* handler(const char* name) const;
    const HandlerCode* entry(bool inFrames) const;
    void send(const char* message);
    void frame();
    void stepActors();
    template <class Work>
    bool unlessHalted(Work&& work);

    Interpreter& interpreter_;
    const LoadedScript& script_;
};

}  // namespace krl::player
