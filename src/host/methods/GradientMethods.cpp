#include "core/Numbers.h"
#include "generate/Gradient.h"
#include "host/MethodCall.h"
#include "host/MethodRegistry.h"

/// Binding of the gradient, which makes a picture and leaves the loaded one alone.
namespace krl::host {

namespace {

/// The pixels of a picture, until `unlock` or the end of the scope.
class PixelLock {
public:
    PixelLock(HostInterface* images, const ScriptValue* image) : images_(images), image_(image) {
        held_ = images::LockImage::call(images_, image_, &lock_) == kHostOk;
    }
    ~PixelLock() {
        if (held_) unlock();
    }
    PixelLock(const PixelLock&) = delete;
    PixelLock& operator=(const PixelLock&) = delete;

    /// Null where the lock could not be had.
    Pixel* pixels() const { return held_ ? reinterpret_cast<Pixel*>(lock_.pixels) : nullptr; }
    HostStatus unlock() {
        held_ = false;
        return images::UnlockImage::call(images_, image_);
    }

private:
    HostInterface* images_;
    const ScriptValue* image_;
    ImageLock lock_;
    bool held_ = false;
};

/// Percent of the width to whole columns.
std::vector<CurveKey> inColumns(std::vector<CurveKey> keys, int32_t width) {
    const auto scale = static_cast<float>(width / 100.0);
    for (CurveKey& key : keys) {
        const auto column = static_cast<float>(double{key.position} * scale);
        key.position = static_cast<float>(truncate(column));
    }
    return keys;
}

/// Appends `value` to `list` under the symbol `key`.
void append(const MethodCall& call, const ScriptValue& list, const char* key, const ScriptValue& value) {
    OwnedValue keyValue(call.values());
    values::SymbolToValue::call(call.values(), call.intern(key), keyValue.out());
    lists::AppendProperty::call(call.lists(), &list, keyValue.get(), &value);
}

/// Answers with the image under `buffer`. The release of the image is part of the method: one that
/// fails is told, in a result without it.
Outcome answerWithImage(MethodCall& call, ScriptValue image) {
    ScriptValue result, zero;
    lists::NewPropertyList::call(call.lists(), &result);
    values::IntegerToValue::call(call.values(), 0, &zero);
    append(call, result, "error", zero);
    append(call, result, "buffer", image);
    if (values::ReleaseValue::call(call.values(), &image) != kHostOk) {
        values::ReleaseValue::call(call.values(), &result);
        return failure("Failed to release new image (Image)");
    }
    call.answerWith(result);
    return succeeded();
}

Outcome paintGradient(MethodCall& call) {
    const auto width = call.get<int32_t>(0), height = call.get<int32_t>(1);
    OwnedValue image(call.values());
    ScriptValue made;
    if (images::CreateImage::call(call.images(), width, height, 32, 8, 0, &made) != kHostOk)
        return failure("Failed to create new image (Image)");
    *image.out() = made;
    PixelLock lock(call.images(), image.get());
    if (!lock.pixels()) return failure("Failed to lock new image pixels (Image)");
    const Status status = rgbGradient(call.engine()->tables(), lock.pixels(), width, height,
                                      inColumns(call.arguments()[3].keys, width), call.get<GradientType>(2));
    if (status != kStatusOk) return failure(call.method().failedText());
    if (lock.unlock() != kHostOk) return failure("Failed to unlock new image pixels (Image)");
    return answerWithImage(call, image.release());
}

}  // namespace

void addGradientMethods(MethodList& list) {
    list.group("Generators");
    list.add(
        method("krlImageRGBGradient")
            .summary("Makes a new picture of colours that run from left to right.")
            .integer("width", {.from = 1, .to = 512, .example = 256}, "columns of the new picture")
            .integer("height", {.from = 1, .to = 256, .example = 64}, "rows of the new picture")
            .symbol("type", {{"linear", GradientType::linear}, {"curved", GradientType::curved}},
                    refused("RGB Gradient invalid input quality (Image)"),
                    "straight from colour to colour, or along a smooth curve that is 256 columns long")
            .thenCompare()
            .colourList("colourValues", {.real = false, .scale = 1.0},
                        {{0, Colour(20, 24, 82)}, {45, Colour(235, 94, 40)}, {100, Colour(255, 240, 180)}},
                        "colours under their places, in percent of the width")
            .gives("buffer", "the new picture")
            .inputFailure("RGB Gradient input failure (Image)")
            .failed("Failed RGB Gradient function (Image)")
            .does(paintGradient));
}

}  // namespace krl::host
