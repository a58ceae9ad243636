#include "player/lingo/Performance.h"

#include <algorithm>

#include "player/host/SymbolTable.h"

namespace krl::player {

namespace {

constexpr const char* kEvents[] = {"prepareMovie", "stopMovie", "prepareFrame", "enterFrame",
                                   "exitFrame",    "stepFrame", "idle"};

}  // namespace

/// False after `halt`; `abort` ends only the work.
template <class Work>
bool Performance::unlessHalted(Work&& work) {
    try {
        work();
    } catch (const Halt& halt) {
        return halt.onlyHandlers;
    }
    return true;
}

const HandlerCode* Performance::handler(const char* name) const {
    return script_.handler(interpreter_.symbols.identifier(name));
}

/// The handler that a script starts at; null if it has only handlers for events, and these get their events.
const HandlerCode* Performance::entry(bool inFrames) const {
    for (const char* name : {"main", "startMovie"})
        if (const HandlerCode* found = handler(name)) return found;
    for (const auto& one : script_.codes) {
        const std::string& name = interpreter_.symbols.spelling(one->handler->name);
        const bool event = std::any_of(std::begin(kEvents), std::end(kEvents),
                                       [&](const char* known) { return sameText(name, known); });
        if (!event) return one.get();
    }
    const bool begun = handler("prepareMovie") || handler("stopMovie");
    return inFrames || begun ? nullptr : script_.codes.front().get();
}

void Performance::run(const Value& arguments, int frames) {
    const bool started = unlessHalted([&] {
        send("prepareMovie");
        if (const HandlerCode* first = entry(frames > 0)) interpreter_.run(script_, *first, {&arguments, 1});
    });
    bool running = started;
    interpreter_.inFrames = true;
    for (int i = 0; running && i < frames; ++i) {
        interpreter_.nextFrame = interpreter_.frameNumber + 1;
        running = unlessHalted([this] { frame(); });
        interpreter_.frameNumber = interpreter_.nextFrame;
    }
    interpreter_.inFrames = false;
    unlessHalted([this] { send("stopMovie"); });
}

void Performance::send(const char* message) {
    if (const HandlerCode* found = handler(message)) interpreter_.run(script_, *found, {});
}

void Performance::frame() {
    stepActors();
    for (const char* message : {"prepareFrame", "enterFrame", "idle", "exitFrame"}) send(message);
}

/// The list may change while its actors step.
void Performance::stepActors() {
    const auto* list = interpreter_.actorList.as<ListObject>();
    if (!list) return;
    const SymbolId step = interpreter_.symbols.identifier("stepFrame");
    const std::vector<Value> actors = list->items;
    for (const Value& actor : actors)
        if (interpreter_.responds(actor, step)) interpreter_.send(step, {&actor, 1});
}

}  // namespace krl::player
