#include <memory>
#include <string_view>
#include <utility>

#include "core/Thread.h"
#include "host/HostCall.h"

/// What the methods do that manage the engine instead of rewriting pixels.
namespace krl::host {

namespace {

Outcome startTimer(HostCall& call) {
    call.instance().timerStart = tickCount();
    return succeeded();
}

Outcome stopTimer(HostCall& call) {
    const auto taken = static_cast<int32_t>(tickCount() - call.instance().timerStart);
    utils::PrintMessage::call(call.instance().utils, "Time taken (ms) = %d\n", taken);
    return succeeded();
}

/// A mode that cannot be read is taken as single-threaded, without a message, and its status goes
/// back to the host beside a success.
Outcome createLookupTables(HostCall& call) {
    SymbolId mode = 0;
    const HostStatus unread = call.readSymbol(call.argument(0), mode);
    const bool threaded = unread == kHostOk && mode == call.choice(0);
    if (unread == kHostOk && !threaded && mode != call.choice(1))
        return failure("Create Lookup Tables invalid MT input (Image)");
    delete std::exchange(call.instance().engine, nullptr);
    auto engine = std::make_unique<ImageEngine>();
    engine->allocateTables();
    engine->buildTables();
    engine->configureExecution(!threaded);
    engine->requireThreads(true);
    engine->keepShortBands(true);
    engine->keepScratch(false);  // the host's process may have little room
    call.instance().engine = engine.release();
    return {nullptr, unread};
}

Outcome destroyLookupTables(HostCall& call) {
    delete std::exchange(call.instance().engine, nullptr);
    return succeeded();
}

Outcome load(HostCall& call) {
    ScriptValue& image = call.instance().imageValue;
    ImageInfo info;
    call.describePicture(call.argument(0), info);
    if (info.height < 1 || info.width < 1) {
        image = call.raw(0);
        return failure(info.height < 1 ? "Invalid image height (Image)" : "Invalid image width (Image)");
    }
    // Rows that do not hold whole pixels are no picture for effects.
    if (!hasWholePixels(info)) return failure(call.method().failedText());
    PictureLock lock(call, call.argument(0));
    if (!lock.held()) return failure(call.method().failedText());
    call.engine()->load(lock.pixels(), info);
    lock.keep();  // until krlImageQuit
    image = call.raw(0);
    return succeeded();
}

Outcome quit(HostCall& call) {
    call.engine()->unload();
    images::UnlockImage::call(call.images(), &call.instance().imageValue);
    return succeeded();
}

struct NamedBody {
    const char* name;
    EngineBody body;
};

constexpr NamedBody kBodies[] = {{"krlImageStartTimer", startTimer},
                                 {"krlImageStopTimer", stopTimer},
                                 {"krlImageCreateLookupTables", createLookupTables},
                                 {"krlImageDestroyLookupTables", destroyLookupTables},
                                 {"krlImageLoad", load},
                                 {"krlImageQuit", quit}};

}  // namespace

EngineBody engineBody(const Method& method) {
    if (!method.managesTheEngine()) return nullptr;
    for (const NamedBody& entry : kBodies)
        if (std::string_view(entry.name) == method.name()) return entry.body;
    return nullptr;
}

}  // namespace krl::host
