#pragma once

#include <utility>
#include <vector>

#include "krlimage/generate.h"
#include "support/Picture.h"

namespace krl::test {

/// The element painted over `picture`, in white or in the colours of `keys`.
inline Picture flared(const Picture& picture, FlareElement element, std::vector<CurveKey> keys = {},
                      int32_t bands = 1) {
    element.colours = std::move(keys);
    return picture.after([&](ImageEngine& engine) { return lensFlare(engine, {&element, 1}); }, bands);
}

/// What the element's values are: painted opaque in white over black, a value of v shows as v.
inline Picture values(int32_t width, int32_t height, const FlareElement& element, int32_t bands = 1) {
    return flared(Picture(width, height), element, {}, bands);
}

/// Black at value 0 to white at 255.
inline std::vector<CurveKey> greyRamp() { return {{0, 0, 0, 0}, {255, 255, 255, 255}}; }

/// One setting of every kind, on a picture of some 60 by 40, with every property away from its zero.
inline std::vector<FlareElement> oneOfEachKind() {
    const Point origin{18, 29};
    return {
        {.kind = FlareKind::Polyshape,
         .origin = origin,
         .brightness = 200,
         .transparency = 10,
         .radius = 13.5f,
         .angle = 10,
         .count = 5,
         .expandShape = 3,
         .shapeBlur = 4},
        {.kind = FlareKind::RandomFan,
         .origin = origin,
         .brightness = 90,
         .transparency = 5,
         .radius = 17,
         .angle = 20,
         .count = 30,
         .aperture = 70,
         .seed = 4},
        {.kind = FlareKind::Spike,
         .origin = origin,
         .brightness = 90,
         .transparency = 5,
         .radius = 17,
         .angle = 20,
         .count = 40,
         .seed = 4},
        {.kind = FlareKind::Star,
         .origin = origin,
         .brightness = 120,
         .transparency = 5,
         .radius = 17,
         .angle = 20,
         .count = 5,
         .width = 3},
        {.kind = FlareKind::Line,
         .origin = origin,
         .brightness = 250,
         .transparency = 5,
         .angle = -65,
         .length = 50,
         .thickness = 9},
        {.kind = FlareKind::StarCaustic,
         .origin = origin,
         .brightness = 250,
         .transparency = 5,
         .angle = 25,
         .length = 50,
         .thickness = 9},
        {.kind = FlareKind::ChromaHoop,
         .origin = {30, 40},
         .handle = {8, 12},
         .transparency = 90,
         .blend = BlendMode::Screen,
         .seed = 3,
         .position = 0.5f,
         .softness = 0.6f,
         .density = 0.01f,
         .noise = 0.4f,
         .arcCompleteness = 0.8f},
        {.kind = FlareKind::FilledCircle,
         .origin = origin,
         .brightness = 150,
         .transparency = 5,
         .radius = 9,
         .outerFeather = 5.5f},
        {.kind = FlareKind::GradientCircle,
         .origin = origin,
         .brightness = 250,
         .transparency = 5,
         .radius = 15.5f},
        {.kind = FlareKind::OutlinedCircle,
         .origin = origin,
         .brightness = 220,
         .transparency = 5,
         .radius = 11,
         .outerFeather = 3,
         .innerFeather = 4,
         .outerThickness = 2,
         .innerThickness = 1.5f},
        {.kind = FlareKind::FadedCircle,
         .origin = origin,
         .brightness = 110,
         .transparency = 5,
         .radius = 11,
         .outerFeather = 3,
         .innerFeather = 4,
         .outerThickness = 2,
         .innerThickness = 1.5f},
    };
}

}  // namespace krl::test
