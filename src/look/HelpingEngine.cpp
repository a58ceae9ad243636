#include "look/HelpingEngine.h"

#include <mutex>
#include <vector>

#include "core/Thread.h"

namespace krl {

namespace {

class IdleEngines {
public:
    /// Lives as long as the program, whose threads may end after its static objects.
    static IdleEngines& all() {
        static auto& idle = *new IdleEngines;
        return idle;
    }

    /// Null if there is none.
    std::unique_ptr<ImageEngine> take() {
        const std::lock_guard lock(guard_);
        if (engines_.empty()) return nullptr;
        std::unique_ptr<ImageEngine> taken = std::move(engines_.back());
        engines_.pop_back();
        return taken;
    }

    /// Frees those that are too many.
    void give(std::unique_ptr<ImageEngine> engine) {
        const std::lock_guard lock(guard_);
        if (engines_.size() < engines_.capacity()) engines_.push_back(std::move(engine));
    }

private:
    IdleEngines() { engines_.reserve(static_cast<size_t>(processorCount())); }

    Mutex guard_;
    std::vector<std::unique_ptr<ImageEngine>> engines_;
};

}  // namespace

HelpingEngine::HelpingEngine() : engine_(IdleEngines::all().take()) {
    if (engine_) return;
    engine_ = std::make_unique<ImageEngine>();
    engine_->allocateTables();
    engine_->buildTables();
}

HelpingEngine::~HelpingEngine() { IdleEngines::all().give(std::move(engine_)); }

}  // namespace krl
