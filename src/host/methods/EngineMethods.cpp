#include <chrono>
#include <memory>
#include <utility>

#include "host/MethodCall.h"
#include "host/MethodRegistry.h"

/// The methods that manage the engine instead of rewriting pixels.
namespace krl::host {

namespace {

/// Milliseconds of a clock that only runs forward; wraps with 32 bits.
uint32_t tickCount() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<uint32_t>(std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
}

Outcome startTimer(MethodCall& call) {
    call.instance().timerStart = tickCount();
    return succeeded();
}

Outcome stopTimer(MethodCall& call) {
    const auto taken = static_cast<int32_t>(tickCount() - call.instance().timerStart);
    utils::PrintMessage::call(call.instance().utils, "Time taken (ms) = %d\n", taken);
    return succeeded();
}

/// A mode that cannot be read is taken as single-threaded, without a message, and its status goes
/// back to the host beside a success.
Outcome createLookupTables(MethodCall& call) {
    SymbolId mode = 0;
    const HostStatus unread = call.readSymbol(call.raw(0), mode);
    const bool threaded = unread == kHostOk && call.is(mode, "mt");
    if (unread == kHostOk && !threaded && !call.is(mode, "st"))
        return failure("Create Lookup Tables invalid MT input (Image)");
    delete std::exchange(call.instance().engine, nullptr);
    auto engine = std::make_unique<ImageEngine>();
    engine->allocateTables();
    engine->buildTables();
    engine->configureExecution(!threaded);
    call.instance().engine = engine.release();
    return {nullptr, unread};
}

Outcome destroyLookupTables(MethodCall& call) {
    delete std::exchange(call.instance().engine, nullptr);
    return succeeded();
}

Outcome load(MethodCall& call) {
    ScriptInstance& instance = call.instance();
    instance.imageValue = call.raw(0);
    ImageInfo info;
    images::QueryImage::call(call.images(), &instance.imageValue, &info);
    if (info.height < 1) return failure("Invalid image height (Image)");
    if (info.width < 1) return failure("Invalid image width (Image)");
    ImageLock lock;
    images::LockImage::call(call.images(), &instance.imageValue, &lock);
    call.engine()->load(lock.pixels, info);
    return succeeded();
}

Outcome quit(MethodCall& call) {
    call.engine()->unload();
    images::UnlockImage::call(call.images(), &call.instance().imageValue);
    return succeeded();
}

}  // namespace

void addEngineMethods(MethodList& list) {
    list.group("Engine");
    list.add(method("krlImageStartTimer")
                 .summary("Starts the stop-watch.")
                 .worksWithoutEngine()
                 .silent()
                 .does(startTimer));
    list.add(method("krlImageStopTimer")
                 .summary("Prints the milliseconds since the stop-watch was started.")
                 .worksWithoutEngine()
                 .silent()
                 .does(stopTimer));
    list.add(method("krlImageCreateLookupTables")
                 .summary("Makes the engine and its tables; to be called once, before any picture is loaded.")
                 .symbol("mtOption", {{"mt", 0}, {"st", 1}},
                         refused("Create Lookup Tables invalid MT input (Image)"),
                         "one band of work for each processor, or a single one")
                 .failed("Failed Create Lookup Tables function (Image)")
                 .worksWithoutEngine()
                 .asksPlayer()
                 .readsItself()
                 .does(createLookupTables));
    list.add(method("krlImageDestroyLookupTables")
                 .summary("Frees the engine and its tables; without an engine nothing happens.")
                 .failed("Failed Destroy Lookup Tables function (Image)")
                 .worksWithoutEngine()
                 .does(destroyLookupTables));
    list.add(
        method("krlImageLoad")
            .summary("Takes the picture that the following effects rewrite in place.")
            .value("srcCMem", "image(\"picture.png\")", "the picture; it stays locked until krlImageQuit")
            .failed("Failed Load function (Image)")
            .needsEngine()
            .asksPlayer()
            .does(load));
    list.add(method("krlImageQuit")
                 .summary("Lets go of the loaded picture; engine and tables stay for the next one.")
                 .failed("Failed Quit function (Image)")
                 .needsEngine()
                 .does(quit));
}

}  // namespace krl::host
