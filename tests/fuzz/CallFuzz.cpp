#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <thread>

#include "catalogue/Catalogue.h"
#include "catalogue/DirectCall.h"
#include "catalogue/Notation.h"
#include "core/Faults.h"
#include "fuzz/PlainReferences.h"
#include "fuzz/RandomArguments.h"

/// Any method on any picture with any arguments: one band against many, and against the plain reference of
/// the method where it has one.
namespace krl::fuzz {

namespace {

/// Cancels calls that an argument has made too long to wait for: by processor time, so that a busy machine
/// judges as many calls as an idle one.
class Patience {
public:
    Patience() {
        std::thread([this] { watch(); }).detach();
    }
    void begin(ImageEngine& engine) {
        engine.resume();
        started_ = std::clock();
        engine_ = &engine;
    }
    void end() { engine_ = nullptr; }

private:
    static constexpr std::clock_t kLongest = CLOCKS_PER_SEC / 10;

    void watch() {
        for (;;) {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            if (ImageEngine* engine = engine_; engine && std::clock() - started_ > kLongest) engine->cancel();
        }
    }

    std::atomic<ImageEngine*> engine_ = nullptr;
    std::atomic<std::clock_t> started_ = 0;
};

/// What became of the calls, printed at the end of the program.
struct Tally {
    ~Tally() {
        std::printf("%llu calls compared, %llu refused, %llu cancelled\n", compared, refused, cancelled);
    }
    unsigned long long compared = 0, refused = 0, cancelled = 0;
};
Tally tally;

/// While this object lives, all bands of a call run on the calling thread, one after the other: they divide
/// the picture as ever, and starting threads would take most of a short call's time.
class NoThreads {
public:
    explicit NoThreads(bool applies) {
        if (!applies) return;
        faults().threads = 0;
        faults().lasting = true;
    }
    ~NoThreads() { faults() = {}; }
    NoThreads(const NoThreads&) = delete;
    NoThreads& operator=(const NoThreads&) = delete;
};

ImageEngine& engine() {
    static ImageEngine* const made = [] {
        auto* fresh = new ImageEngine;
        fresh->allocateTables();
        fresh->buildTables();
        return fresh;
    }();
    return *made;
}

Picture copyOf(const Picture& picture) {
    Picture copy = Picture::blank(picture.info.width, picture.info.height);
    std::memcpy(copy.pixels, picture.pixels, size_t(picture.info.rowBytes) * size_t(picture.info.height));
    return copy;
}

/// Arguments whose pictures are the callee's own, since a method may write them.
std::vector<Value> copyOf(const std::vector<Value>& arguments) {
    std::vector<Value> copy = arguments;
    for (Value& value : copy)
        if (const auto* picture = value.as<Picture>()) value = copyOf(*picture);
    return copy;
}

bool same(const Value& a, const Value& b);

bool samePicture(const Picture& a, const Picture& b) {
    return a.info.width == b.info.width && a.info.height == b.info.height &&
           std::memcmp(a.pixels, b.pixels, size_t(a.info.rowBytes) * size_t(a.info.height)) == 0;
}

bool same(const Value& a, const Value& b) {
    if (a.kind() != b.kind()) return false;
    if (const auto* picture = a.as<Picture>()) return samePicture(*picture, *b.as<Picture>());
    return a.as<ListValue>() || writeNotation(a) == writeNotation(b);
}

/// Everything that a call leaves behind.
struct Aftermath {
    Picture picture;
    std::vector<Value> arguments;
    CallResult result;
};

Aftermath after(const Method& method, const Picture& picture, const std::vector<Value>& arguments,
                int32_t bands) {
    static Patience* const patience = new Patience;
    Aftermath made{copyOf(picture), copyOf(arguments), {}};
    engine().setThreadCount(bands);
    engine().load(made.picture.pixels, made.picture.info);
    patience->begin(engine());
    made.result = callMethod(method, engine(), made.arguments);
    patience->end();
    engine().unload();
    return made;
}

void expectSame(const Method& method, const Aftermath& one, const Aftermath& many, int32_t bands) {
    const std::string where = method.shortName() + " in " + std::to_string(bands) + " bands: ";
    if (one.result.error != many.result.error)
        report(where + "\"" + one.result.error + "\" and \"" + many.result.error + '"');
    if (!one.result.ok()) return;
    if (!samePicture(one.picture, many.picture)) report(where + "another picture");
    for (size_t i = 0; i < one.arguments.size(); ++i)
        if (!same(one.arguments[i], many.arguments[i])) report(where + "another second picture");
    if (one.result.entries.size() != many.result.entries.size() ||
        one.result.pictures.size() != many.result.pictures.size())
        report(where + "another number of results");
    for (size_t i = 0; i < one.result.entries.size(); ++i)
        if (!same(one.result.entries[i].second, many.result.entries[i].second))
            report(where + "another result");
    for (size_t i = 0; i < one.result.pictures.size(); ++i)
        if (!same(one.result.pictures[i], many.result.pictures[i])) report(where + "another new picture");
}

std::vector<const Method*> callable() {
    std::vector<const Method*> all;
    for (const Method* method : catalogue().methods())
        if (!method->managesTheEngine()) all.push_back(method);
    return all;
}

}  // namespace

namespace {

/// Mostly a few pixels, and now and then lines longer than any part that a loop works in.
Picture pictureToChange(Bytes& bytes) {
    const auto side = [&](uint32_t most) { return 1 + static_cast<int32_t>(bytes.below(most)); };
    const uint32_t kind = bytes.below(256);
    int32_t width = 0, height = 0;
    if (kind < 254) {
        const uint32_t most = kind < 224 ? 12 : 40;
        width = side(most), height = side(most);
    } else {
        width = 600 + side(800), height = side(6);
        if (kind == 255) std::swap(width, height);
    }
    return randomPicture(bytes, width, height);
}

/// The call as somebody would write it, for those who look for what is wrong with it.
void show(const Method& method, const Picture& picture, const std::vector<Value>& arguments, int32_t bands) {
    std::string call = method.shortName() + '(';
    for (const Value& argument : arguments)
        call += (call.back() == '(' ? "" : ", ") +
                (argument.as<Picture>() ? "<picture>" : writeNotation(argument));
    std::fprintf(stderr, "%d by %d pixels, 1 and %d bands: %s)\n", picture.info.width, picture.info.height,
                 bands, call.c_str());
}

}  // namespace

int runCall(const uint8_t* data, size_t size) {
    static const std::vector<const Method*> methods = callable();
    Bytes bytes(data, size);
    const Method& method = *methods[bytes.below(static_cast<uint32_t>(methods.size()))];
    const Picture picture = pictureToChange(bytes);
    const std::vector<Value> arguments =
        randomArguments(bytes, method, picture.info.width, picture.info.height);
    const auto bands = 2 + static_cast<int32_t>(bytes.below(15));
    const NoThreads alone(!bytes.oneIn(32));
    if (std::getenv("KRL_FUZZ_SHOW")) show(method, picture, arguments, bands);
    const Aftermath one = after(method, picture, arguments, 1);
    const Aftermath many = after(method, picture, arguments, bands);
    if (one.result.code == kCallCancelled || many.result.code == kCallCancelled) {
        ++tally.cancelled;
        return 0;
    }
    ++(one.result.ok() ? tally.compared : tally.refused);
    if (!method.resultDependsOnBands()) expectSame(method, one, many, bands);
    if (one.result.ok() && differsFromReference(method, picture, arguments, one.picture))
        report(method.shortName() + " differs from its plain reference");
    return 0;
}

}  // namespace krl::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    return krl::fuzz::runCall(data, size);
}
