#include <algorithm>
#include <unordered_map>
#include <vector>

#include "core/LookupTables.h"
#include "core/Numbers.h"
#include "core/Random.h"
#include "core/Scratch.h"
#include "effects/generate/FlareElements.h"
#include "kernels/path/GaussianLine.h"

namespace krl {

namespace {

/// One ray of a fan, and how often it is drawn.
struct FanRay {
    Point start, end;
    int32_t times = 1;
};

/// A byte that gains anything is full after this many gains.
constexpr int32_t kEnoughTimes = 255;

/// After this many draws every direction has long come up often enough.
constexpr int32_t kMostDraws = 1 << 24;

/// A ray that reaches out of any picture to all sides.
constexpr double kLongestRay = 1 << 28;

/// A star of more rays than this is drawn with evenly chosen ones: they fill its disc all the same.
constexpr int64_t kMostStarRays = 1 << 20;

/// The tag of a ray that is skipped.
constexpr float kSkippedTag = -1.0f;

double radiusOf(const FlareElement& rays) { return rays.radius > 0 ? rays.radius : 1.0; }

double belowFullTurn(double degrees) { return degrees >= 360 ? degrees - 360 : degrees; }

Point tipOf(const FlareElement& rays, double degrees) {
    const FlarePlace place = placeOnCircle(rays.origin, degrees, std::min(radiusOf(rays), kLongestRay));
    return {truncate(place.y), truncate(place.x)};
}

int32_t drawsOf(const FlareElement& rays) { return clampTo(rays.count, 1, kMostDraws); }

/// A direction in whole tenths of a degree for each spike. Of spikes with one direction every second is
/// skipped: each takes out the next that was still there.
std::vector<FanRay> spikeRays(const ImageEngine& engine, const FlareElement& rays) {
    constexpr int32_t directions = 3600;
    const auto degreesOf = [&](int32_t tenths) { return belowFullTurn(tenths / 10.0 + rays.angle); };
    std::vector<int32_t> times(directions, 0);
    std::unordered_map<float, bool> takesNext;
    Random random(rays.seed);
    for (int32_t i = drawsOf(rays); i > 0; --i) {
        engine.throwIfCancelled();
        const int32_t tenths = random.next() % directions;
        const auto tag = static_cast<float>(degreesOf(tenths));
        if (tag == kSkippedTag || tag != tag) continue;
        bool& takes = takesNext[tag];
        times[size_t(tenths)] += takes ? 0 : 1;
        takes = !takes;
    }
    std::vector<FanRay> list;
    for (int32_t tenths = 0; tenths < directions; ++tenths)
        if (const int32_t drawn = times[size_t(tenths)])
            list.push_back({rays.origin, tipOf(rays, degreesOf(tenths)), std::min(drawn, kEnoughTimes)});
    return list;
}

/// Whole diameters, scattered over the aperture to both sides of the angle.
std::vector<FanRay> fanRays(const ImageEngine& engine, const FlareElement& rays) {
    const int32_t aperture = clampTo(rays.aperture, 1, 360);
    std::vector<int32_t> times(size_t(aperture) * 10, 0);
    Random random(rays.seed);
    for (int32_t i = drawsOf(rays); i > 0; --i) {
        engine.throwIfCancelled();
        ++times[size_t(random.next() % (aperture * 10))];
    }
    std::vector<FanRay> list;
    for (size_t tenths = 0; tenths < times.size(); ++tenths) {
        if (times[tenths] == 0) continue;
        double degrees = belowFullTurn(double(tenths) / 10.0 + (rays.angle - aperture * 0.5));
        if (degrees < 0) degrees += 360;
        list.push_back({tipOf(rays, degrees), tipOf(rays, belowFullTurn(degrees + 180)),
                        std::min(times[tenths], kEnoughTimes)});
    }
    return list;
}

/// Evenly spaced arms of neighbouring rays, one degree apart. Rays of neighbouring arms that end in the same
/// pixel are one ray, drawn more often.
std::vector<FanRay> starRays(const ImageEngine& engine, const FlareElement& rays) {
    const int64_t arms = std::max(rays.count, 1), width = std::max(rays.width, 1);
    const int64_t total = arms * width, chosen = std::min(total, kMostStarRays);
    std::vector<FanRay> list;
    for (int64_t i = 0; i < chosen; ++i) {
        engine.throwIfCancelled();
        const int64_t place = chosen == total ? i : int64_t(double(i) * (double(total) / double(chosen)));
        const int64_t arm = place % arms, beside = place / arms;
        const double degrees =
            belowFullTurn(double(arm) * (360.0 / double(arms)) + (double(beside) + rays.angle));
        const Point tip = tipOf(rays, degrees);
        if (!list.empty() && list.back().end.x == tip.x && list.back().end.y == tip.y)
            list.back().times = std::min(list.back().times + 1, kEnoughTimes);
        else
            list.push_back({rays.origin, tip});
    }
    return list;
}

std::vector<FanRay> raysOf(const ImageEngine& engine, const FlareElement& rays) {
    switch (rays.kind) {
        case FlareKind::Spike:
            return spikeRays(engine, rays);
        case FlareKind::RandomFan:
            return fanRays(engine, rays);
        default:
            return starRays(engine, rays);
    }
}

}  // namespace

void paintRays(const FlareState& state, const FlareElement& rays) {
    const std::vector<FanRay> list = raysOf(*state.engine, rays);
    const double radius = radiusOf(rays);
    const double fade = 255.0 / radius;
    const int32_t intensity = truncate(rays.brightness);
    const GridBox box = boxAround(state, rays.origin, radius);
    const Scratch<uint8_t> cells(size_t(state.image.width) * size_t(state.image.height));
    const LightMask mask{cells.data(), state.image.width};
    const FlarePlot plot(state, rays);
    const ByteSquare<uint8_t>& multiply = state.tables->blendMultiply;

    // A band draws every ray within its own rows, so that no two bands light the same cell.
    forEachBandOfRows(state, box, [&](const GridBox& part) {
        std::fill(&mask.at(0, part.top),
                  &mask.at(0, part.top) + size_t(part.bottom - part.top) * size_t(mask.width), uint8_t{0});
        for (const FanRay& ray : list) {
            state.engine->throwIfCancelled();
            gaussianLine(mask, part, ray.start, ray.end, intensity, ray.times);
        }
        forEachPixelOf(state, part, [&](Pixel& pixel, int32_t x, int32_t y) {
            const uint8_t light = mask.at(x, y);
            if (light == 0 && plot.zeroIsNothing()) return;
            const float d = distanceBetween(x, y, rays.origin.x, rays.origin.y);
            if (d > radius) return;
            plot(pixel, multiply[truncatedByte((radius - d) * fade)][light]);
        });
    });
}

}  // namespace krl
