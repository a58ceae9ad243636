#include <atomic>
#include <chrono>
#include <cstring>
#include <thread>

#include "catalogue/Catalogue.h"
#include "catalogue/DirectCall.h"
#include "catalogue/Notation.h"
#include "fuzz/PlainReferences.h"
#include "fuzz/RandomArguments.h"

/// Any method on any picture with any arguments: one band against many, and against the plain reference of
/// the method where it has one.
namespace krl::fuzz {

namespace {

/// Cancels calls that an argument has made too long to wait for.
class Patience {
public:
    Patience() {
        std::thread([this] { watch(); }).detach();
    }
    void begin(ImageEngine& engine) {
        engine.resume();
        started_ = now();
        engine_ = &engine;
    }
    void end() { engine_ = nullptr; }

private:
    static int64_t now() { return std::chrono::steady_clock::now().time_since_epoch().count(); }

    void watch() {
        const auto longest = std::chrono::nanoseconds(std::chrono::milliseconds(500)).count();
        for (;;) {
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
            if (ImageEngine* engine = engine_; engine && now() - started_ > longest) engine->cancel();
        }
    }

    std::atomic<ImageEngine*> engine_ = nullptr;
    std::atomic<int64_t> started_ = 0;
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

int runCall(const uint8_t* data, size_t size) {
    static const std::vector<const Method*> methods = callable();
    Bytes bytes(data, size);
    const Method& method = *methods[bytes.below(static_cast<uint32_t>(methods.size()))];
    const auto width = 1 + static_cast<int32_t>(bytes.below(40));
    const auto height = 1 + static_cast<int32_t>(bytes.below(40));
    const Picture picture = randomPicture(bytes, width, height);
    const std::vector<Value> arguments = randomArguments(bytes, method, width, height);
    const auto bands = 2 + static_cast<int32_t>(bytes.below(15));
    const Aftermath one = after(method, picture, arguments, 1);
    const Aftermath many = after(method, picture, arguments, bands);
    if (one.result.code == kCallCancelled || many.result.code == kCallCancelled) return 0;
    if (!method.resultDependsOnBands()) expectSame(method, one, many, bands);
    if (one.result.ok() && differsFromReference(method, picture, arguments, one.picture))
        report(method.shortName() + " differs from its plain reference");
    return 0;
}

}  // namespace krl::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    return krl::fuzz::runCall(data, size);
}
