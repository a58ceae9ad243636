#include <algorithm>
#include <cstring>
#include <utility>

#include "catalogue/Call.h"
#include "catalogue/Catalogue.h"
#include "core/LookupTables.h"
#include "core/Numbers.h"
#include "kernels/ramp/Curve.h"
#include "krlimage/generate.h"

/// Makes a new picture of colours that run from left to right, the same in every row.
namespace krl {

namespace {

constexpr uint32_t kAlphaMask = 0xFF000000u;

/// The colour bytes of a pixel word, each channel by its low byte.
uint32_t colourWord(const RampColour& colour) {
    const auto byte = [&](size_t channel) { return static_cast<uint32_t>(colour[channel]) & 0xFFu; };
    return byte(0) | byte(1) << 8 | byte(2) << 16;
}

std::vector<uint32_t> linearColumns(std::vector<CurveKey> keys, int32_t width) {
    sortCurveKeys(keys);
    std::vector<uint32_t> columns;
    columns.reserve(static_cast<size_t>(width));
    for (const RampColour& colour : linearRamp(padCurveKeys(keys, width), width))
        columns.push_back(colourWord(colour));
    return columns;
}

std::vector<uint32_t> curvedColumns(const LookupTables& tables, std::vector<CurveKey> keys, int32_t width) {
    const ColourCurve curve(std::move(keys), width);
    std::vector<uint32_t> columns;
    columns.reserve(static_cast<size_t>(width));
    for (int32_t x = 0; x < width; ++x) {
        const float t = tables.unitFromByte[std::min(x, 255)];
        const auto value = [&](size_t channel) { return int32_t{clampByte(curve.valueAt(channel, t))}; };
        columns.push_back(colourWord({value(0), value(1), value(2)}));
    }
    return columns;
}

}  // namespace

Status rgbGradient(const ImageEngine& engine, Pixel* pixels, int32_t width, int32_t height,
                   std::vector<CurveKey> keys, GradientType type) {
    if (width <= 0 || height <= 0) return kStatusOk;
    const auto columnCount = static_cast<size_t>(width);
    std::vector<uint32_t> columns;
    if (keys.size() == 1) {
        const CurveKey& key = keys.front();
        columns.assign(columnCount, colourWord({key.blue, key.green, key.red}));
    } else if (type == GradientType::linear) {
        columns = linearColumns(std::move(keys), width);
    } else {
        columns = curvedColumns(engine.tables(), std::move(keys), width);
    }

    auto* bytes = reinterpret_cast<uint8_t*>(pixels);
    for (int32_t y = 0; y < height; ++y) {
        for (size_t x = 0; x < columnCount; ++x, bytes += 4) {
            uint32_t word;
            std::memcpy(&word, bytes, 4);
            word = (word & kAlphaMask) | columns[x];
            std::memcpy(bytes, &word, 4);
        }
    }
    return kStatusOk;
}

namespace {

/// Percent of the width to whole columns.
std::vector<CurveKey> inColumns(std::vector<CurveKey> keys, int32_t width) {
    const auto scale = static_cast<float>(width / 100.0);
    for (CurveKey& key : keys) {
        const auto column = static_cast<float>(double{key.position} * scale);
        key.position = static_cast<float>(truncate(column));
    }
    return keys;
}

Outcome paintGradient(Call& call) {
    const auto width = call.get<int32_t>(0), height = call.get<int32_t>(1);
    HeldValue image(call.caller());
    ValueHandle made;
    if (call.caller().makePicture(width, height, made) != kCallOk)
        return failure("Failed to create new image (Image)");
    image.take(made);
    PictureLock lock(call.caller(), *image);
    if (!lock.pixels()) return failure("Failed to lock new image pixels (Image)");
    const Status status = rgbGradient(*call.engine(), reinterpret_cast<Pixel*>(lock.pixels()), width, height,
                                      inColumns(call.arguments()[3].keys, width), call.get<GradientType>(2));
    if (status != kStatusOk) return failure(call.method().failedText());
    if (lock.unlock() != kCallOk) return failure("Failed to unlock new image pixels (Image)");
    if (call.caller().answerWithPicture("buffer", image.release()) != kCallOk)
        return failure("Failed to release new image (Image)");
    return succeeded();
}

}  // namespace

void describeRgbGradient(Catalogue& catalogue) {
    catalogue.add("krlImageRGBGradient")
        .summary("Makes a new picture of colours that run from left to right.")
        .words("ramp, colours, background, new picture")
        .integer("width", {.from = 1, .to = 512, .example = 256, .pixels = true},
                 "columns of the new picture")
        .integer("height", {.from = 1, .to = 256, .example = 64, .pixels = true}, "rows of the new picture")
        .symbol("type", {{"linear", GradientType::linear}, {"curved", GradientType::curved}},
                refused("RGB Gradient invalid input quality (Image)"),
                "straight from colour to colour, or along a smooth curve that is 256 columns long")
        .thenCompare()
        .colourList("colourValues", {.real = false, .scale = 1.0},
                    {{0, Colour(20, 24, 82)}, {45, Colour(235, 94, 40)}, {100, Colour(255, 240, 180)}},
                    "colours under their places, in percent of the width")
        .givesPicture("buffer", "the new picture")
        .inputFailure("RGB Gradient input failure (Image)")
        .failed("Failed RGB Gradient function (Image)")
        .does(paintGradient);
}

}  // namespace krl
