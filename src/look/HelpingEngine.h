#pragma once

#include <memory>

#include "krlimage/engine.h"

namespace krl {

/// An engine for a thread that helps with the calls of another engine. Its tables take milliseconds to build,
/// so that it is kept for later calls: at most one for each processor.
class HelpingEngine {
public:
    /// Throws `std::bad_alloc`.
    HelpingEngine();
    ~HelpingEngine();
    HelpingEngine(const HelpingEngine&) = delete;
    HelpingEngine& operator=(const HelpingEngine&) = delete;

    ImageEngine& get() const { return *engine_; }

private:
    std::unique_ptr<ImageEngine> engine_;
};

}  // namespace krl
