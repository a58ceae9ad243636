#include "catalogue/Call.h"
#include "catalogue/Catalogue.h"
#include "effects/generate/BezierShape.h"

/// The binding of the Bezier rasteriser, whose list of segments is of its own kind.
namespace krl {

namespace {

/// The point under `key`; a missing one, or a value of another kind, counts as (0, 0).
Point pointUnder(const Call& call, const ValueHandle& entry, const char* key) {
    HeldValue value(call.caller());
    Point point;
    if (call.elementUnder(entry, key, value) != kCallOk || call.read(*value, point) != kCallOk) return {};
    return point;
}

/// The pieces of a closed outline: each ends where the next begins, the last at the first.
std::vector<BezierSegment> readSegments(const Call& call, const ValueHandle& list) {
    std::vector<BezierSegment> segments;
    const int32_t count = call.countElements(list);
    for (int32_t i = 1; i <= count; ++i) {
        HeldValue entry(call.caller());
        BezierSegment& segment = segments.emplace_back();
        if (call.element(list, i, entry) != kCallOk) continue;
        segment.vertex = pointUnder(call, *entry, "vertex");
        segment.handle1 = pointUnder(call, *entry, "handle1");
        segment.handle2 = pointUnder(call, *entry, "handle2");
    }
    for (size_t i = 0; i < segments.size(); ++i) segments[i].end = segments[(i + 1) % segments.size()].vertex;
    return segments;
}

Outcome drawShape(Call& call) {
    const Status status = drawBezierShape(*call.engine(), readSegments(call, call.raw(0)));
    return status == kStatusOk ? succeeded() : failure(call.method().failedText());
}

}  // namespace

void describeBezierMethods(Catalogue& catalogue) {
    catalogue.add(
        method("krlImageDrawBezierShape")
            .summary("Replaces the picture's colours by a matte of one closed Bezier shape.")
            .value("bezierList",
                   "[[#vertex: point(280, 200), #handle1: point(80, 130), #handle2: point(200, -180)], "
                   "[#vertex: point(280, -60), #handle1: point(-280, 210), #handle2: point(200, 180)]]",
                   "the pieces in order, each with #vertex, #handle1 from the vertex and #handle2 from "
                   "the first handle; (0, 0) lies 200 columns in and 200 rows above the bottom edge, "
                   "rows upward")
            .failed("Failed Draw Bezier Shape function (Image)")
            .does(drawShape));
}

}  // namespace krl
