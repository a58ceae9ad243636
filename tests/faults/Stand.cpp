#include "faults/Stand.h"

#include <gtest/gtest.h>

#include "catalogue/ExampleCall.h"
#include "catalogue/Notation.h"
#include "core/Scratch.h"
#include "memory/CountedMemory.h"
#include "host/Door.h"
#include "host/Identifiers.h"
#include "host/MethodRegistry.h"

namespace krl::test {

using namespace host;

namespace {

/// Every kind of element, within the small picture.
constexpr const char* kSmallFlare =
    "[#gradientCircle: [#origin: point(5, 4), #radius: 4.0, #brightness: 200.0, #transparency: 0, "
    "#colourList: [0: rgb(60, 10, 0), 45: rgb(255, 120, 40), 100: rgb(255, 245, 220)], #blendMethod: "
    "#screen], "
    "#star: [#count: 4, #width: 1, #angle: 11.0, #brightness: 150.0, #radius: 5.0, #origin: point(5, 4), "
    "#transparency: 0, #colourList: [0: rgb(255, 225, 180)], #blendMethod: #add], "
    "#starCaustic: [#length: 14.0, #thickness: 4.0, #angle: 0.0, #origin: point(5, 4), #brightness: 200.0, "
    "#transparency: 0, #colourList: [0: rgb(255, 150, 70)], #blendMethod: #screen], "
    "#polyshape: [#count: 6, #angle: 15.0, #brightness: 95.0, #radius: 4.0, #expandshape: 0, #shapeBlur: 1, "
    "#origin: point(6, 5), #transparency: 0, #colourList: [0: rgb(80, 220, 170)], #blendmethod: #screen], "
    "#randomFan: [#count: 3, #angle: 10.0, #brightness: 90.0, #radius: 5.0, #aperture: 20, #origin: point(5, "
    "4), "
    "#seed: 3, #transparency: 0, #colourList: [0: rgb(80, 220, 170)], #blendMethod: #normal], "
    "#spike: [#count: 3, #angle: 10.0, #brightness: 90.0, #radius: 5.0, #origin: point(5, 4), #seed: 3, "
    "#transparency: 0, #colourList: [0: rgb(80, 220, 170), 90: rgb(9, 9, 9)], #blendMethod: #screen], "
    "#line: [#length: 8.0, #thickness: 2.0, #angle: 30.0, #origin: point(5, 4), #brightness: 90, "
    "#transparency: 0, "
    "#colourList: [0: rgb(80, 220, 170)], #blendMethod: #screen], "
    "#filledCircle: [#origin: point(5, 4), #radius: 4.0, #outerFeather: 1.0, #brightness: 90.0, "
    "#transparency: 0, "
    "#colourList: [0: rgb(80, 220, 170)], #blendMethod: #screen], "
    "#outlinedCircle: [#origin: point(5, 4), #radius: 4.0, #outerThickness: 1.0, #innerThickness: 1.0, "
    "#outerFeather: 1.0, #innerFeather: 1.0, #brightness: 90.0, #transparency: 0, "
    "#colourList: [0: rgb(80, 220, 170)], #blendMethod: #screen], "
    "#fadedCircle: [#origin: point(5, 4), #radius: 4.0, #outerThickness: 1.0, #innerThickness: 1.0, "
    "#outerFeather: 1.0, #innerFeather: 1.0, #brightness: 90.0, #transparency: 0, "
    "#colourList: [0: rgb(80, 220, 170)], #blendMethod: #screen], "
    "#chromaHoop: [#position: 4.0, #angle: 10.0, #apogeeScale: 1.0, #softness: 0.5, #chromaSpread: 1.0, "
    "#density: 3.0, #noise: 0.2, #arcCompleteness: 90.0, #seed: 3, #brightness: 90.0, #transparency: 0, "
    "#origin: point(5, 4), #handle: point(8, 6), #colourList: [0: rgb(80, 220, 170)], #blendMethod: "
    "#screen]]";

std::string_view nameOf(const Method& method) { return method.name(); }

}  // namespace

bool Seen::operator==(const Seen& other) const {
    return status == other.status && result == other.result && picture == other.picture &&
           seconds == other.seconds;
}

std::ostream& operator<<(std::ostream& out, const Seen& seen) {
    return out << std::hex << "status " << seen.status << ", picture " << seen.picture << ", others "
               << seen.seconds << std::dec << ", kept " << seen.valuesKept << " values, " << seen.blocksKept
               << " blocks, " << seen.interfacesKept << " interfaces, " << seen.result.c_str();
}

Stand::Stand(const Method& method, int32_t bands)
    : method_(method), bands_(bands), blocksBefore_(livingBlocks()) {
    int32_t bytes = 0;
    CreateInstanceFunction create = nullptr;
    DestroyInstanceFunction destroy = nullptr;
    DllGetClassForm(&ids::kScriptClass, &bytes, &create, &destroy);
    instance_ = static_cast<ScriptInstance*>(std::calloc(1, static_cast<size_t>(bytes)));
    instance_->operations = host.other.operations.data();
    instance_->hostWords[0] = &host;
    instance_->callback = &host.provider.door;
    instance_->allocator = &host.memory.door;
    void* made = nullptr;
    if (create(instance_) != kHostOk ||
        DllGetInterface(instance_, &ids::kScriptClass, &ids::kIMoaMmXScript, &made) != kHostOk)
        std::abort();
    script_ = static_cast<HostInterface*>(made);
    loaded_ = host.picture(kWidth, kHeight);
    arguments_.push_back({});
    for (const Argument& argument : method.arguments()) arguments_.push_back(example(argument));
}

Stand::~Stand() {
    if (instance_ && !leavesNothing()) ADD_FAILURE() << method_.name() << " left something behind";
}

ScriptValue Stand::example(const Argument& argument) {
    if (argument.kind == ArgumentKind::SecondImage) return host.picture(kWidth, kHeight, {}, 2);
    if (nameOf(method_) == "krlImageLoad") return host.picture(kWidth, kHeight, {}, 3);
    if (nameOf(method_) == "krlImageLensFlare") return host.make(readNotation(kSmallFlare));
    if (nameOf(method_) == "krlImageBroadcastCombine")
        return host.make(ListValue(4, PictureReference{"", 4, 3}));
    return host.make(exampleValue(argument, {.width = kWidth, .height = kHeight, .image = {}}));
}

void Stand::prepare() {
    forgetLocks();
    const bool needsEngine = nameOf(method_) != "krlImageCreateLookupTables";
    const bool needsPicture =
        needsEngine && nameOf(method_) != "krlImageLoad" && nameOf(method_) != "krlImageDestroyLookupTables";
    if (engineHoldsPicture() && !needsPicture) call("krlImageQuit");
    if (instance_->engine && !needsEngine) call("krlImageDestroyLookupTables");
    if (!instance_->engine && needsEngine) {
        const ScriptValue mode = host.make(Symbol{"st"});
        call("krlImageCreateLookupTables", mode);
        host.release(mode);
        instance_->engine->setThreadCount(bands_);
    }
    if (!engineHoldsPicture() && needsPicture) call("krlImageLoad", loaded_);
    host.restorePictures();
    host.trace.clear();
}

Seen Stand::call() { return send(method_, arguments_.data()); }

Seen Stand::call(const char* name, ScriptValue argument) {
    ScriptValue words[] = {{}, argument};
    return send(*findMethod(name), words);
}

Seen Stand::send(const Method& method, ScriptValue* arguments) {
    CallInfo info;
    info.selector = selectorOf(method);
    info.arguments = arguments;
    Seen seen;
    const int64_t values = host.values(), blocks = livingBlocks(), interfaces = host.references();
    seen.status = CallOperation::call(script_, &info);
    seen.blocksKept = livingBlocks() - blocks;
    seen.interfacesKept = host.references() - interfaces;
    seen.result = host.describe(info.result);
    const ScriptValue error = host.entry(info.result, "error");
    if (host.kindOf(error) == HostKind::Text) seen.message = host.describe(error);
    host.release(info.result);
    seen.valuesKept = host.values() - values;
    seen.picture = host.pictureOf(loaded_)->hash();
    seen.untouched = host.pictureOf(loaded_)->isUntouched();
    for (size_t i = 1; i < arguments_.size(); ++i)
        if (host.kindOf(arguments_[i]) == HostKind::Picture)
            seen.seconds = seen.seconds * 31 + host.pictureOf(arguments_[i])->hash();
    return seen;
}

bool Stand::engineHoldsPicture() const { return instance_->engine && instance_->engine->buffer(); }

int64_t Stand::loadedLocks() {
    const bool loads = nameOf(method_) == "krlImageLoad";
    return host.pictureOf(loads ? arguments_[1] : loaded_)->locks;
}

void Stand::forgetLocks() {
    for (const ScriptValue& argument : arguments_)
        if (nameOf(method_) != "krlImageLoad" && host.kindOf(argument) == HostKind::Picture)
            host.forceUnlock(argument);
    if (!engineHoldsPicture()) host.forceUnlock(loaded_);
}

bool Stand::leavesNothing() {
    if (engineHoldsPicture()) call("krlImageQuit");
    forgetLocks();
    const bool unlocked = host.locks() == 0;
    for (const ScriptValue& argument : arguments_) host.release(argument);
    host.release(loaded_);
    unknown::Release::call(script_);
    const bool kept = instance_->hostWords[2] != nullptr;
    destroyScriptInstance(instance_);
    std::free(std::exchange(instance_, nullptr));
    releaseIdleScratch();
    return unlocked && !kept && host.values() == 0 && host.references() == 0 && host.blocks() == 0 &&
           (!countsBlocks_ || livingBlocks() == blocksBefore_) && host.complaints.empty();
}

}  // namespace krl::test
