#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "catalogue/Catalogue.h"
#include "catalogue/PropertyReader.h"
#include "core/Numbers.h"
#include "core/Scratch.h"
#include "effects/generate/BezierOutline.h"
#include "kernels/path/DigitalLine.h"
#include "krlimage/generate.h"

/// Replaces the picture's colours by a matte of one closed Bezier shape: its antialiased outline, and its
/// inside in blue.
namespace krl {

namespace {

/// Cells of a pixel on each axis in the outline's mask.
constexpr int32_t kScale = 4;
/// Half the outline's thickness, in cells.
constexpr int32_t kRadius = 6;
/// What each of a pixel's cells adds to its coverage.
constexpr float kCoverageWeight = 255.0f / (kScale * kScale);

/// Pixel rows that the outline is drawn in at a time: the mask of so many stays in the cache.
constexpr int32_t kTileRows = 32;

/// One row of the disc that draws the outline: columns from the centre's, the high one exclusive. The disc
/// leaves out its last row and column.
struct DiscRow {
    int32_t left, right;
};

std::array<DiscRow, 2 * kRadius> discRows() {
    std::array<DiscRow, 2 * kRadius> rows;
    for (int32_t dy = -kRadius; dy < kRadius; ++dy) {
        int32_t half = kRadius;
        while (half * half + dy * dy > kRadius * kRadius) --half;
        const int32_t row = dy + kRadius;
        rows[static_cast<size_t>(row)] = {-half, std::min(half + 1, kRadius)};
    }
    return rows;
}

/// The outline, as cells set in a mask of four by four to a pixel, one tile of whole pixel rows at a time.
class OutlineTile {
public:
    explicit OutlineTile(const ImageBuffer& image)
        : maskWidth_(image.width * kScale),
          maskHeight_(image.height * kScale),
          cells_(size_t(maskWidth_) * kScale * size_t(std::min(kTileRows, image.height))),
          disc_(discRows()) {}

    /// Draws the lines between consecutive `points` as far as they touch pixel rows `first` to `last` - 1.
    void stroke(const std::vector<Point>& points, int32_t first, int32_t last) {
        top_ = first * kScale;
        bottom_ = last * kScale;
        std::memset(cells_.data(), 0, cells_.size());
        const GridBox reach{-kRadius, top_ - kRadius, maskWidth_ + kRadius, bottom_ + kRadius + 1};
        for (size_t i = 0; i + 1 < points.size(); ++i)
            DigitalLine(points[i], points[i + 1], HalfwayMove::Diagonal)
                .walk(reach, [this](int32_t x, int32_t y, int64_t) { stampDisc(x, y); });
    }

    /// Writes the coverage of pixel row `y` to the colour bytes of `pixels`.
    void reduce(int32_t y, Pixel* pixels) const {
        const uint8_t* cells = row(y * kScale);
        for (int32_t x = 0; x < maskWidth_ / kScale; ++x, cells += kScale) {
            int32_t count = 0;
            for (int32_t cell = 0; cell < kScale * kScale; ++cell)
                count += cells[size_t(cell / kScale) * size_t(maskWidth_) + size_t(cell % kScale)];
            const auto coverage = truncatedByte(double{kCoverageWeight} * count);
            pixels[x].blue = pixels[x].green = pixels[x].red = coverage;
        }
    }

private:
    /// Sets the cells of a disc; those of the mask's last row and column are never set.
    void stampDisc(int32_t column, int32_t centreRow) {
        const int32_t firstRow = std::max(centreRow - kRadius, top_);
        const int32_t lastRow = std::min({centreRow + kRadius, bottom_, maskHeight_ - 1});
        for (int32_t y = firstRow; y < lastRow; ++y) {
            const int32_t discRow = y - centreRow + kRadius;
            const DiscRow disc = disc_[static_cast<size_t>(discRow)];
            const int32_t left = std::max(column + disc.left, 0);
            const int32_t right = std::min(column + disc.right, maskWidth_ - 1);
            if (left < right) std::memset(row(y) + left, 1, size_t(right - left));
        }
    }

    uint8_t* row(int32_t y) const { return cells_.data() + size_t(y - top_) * size_t(maskWidth_); }

    int32_t maskWidth_, maskHeight_;
    int32_t top_ = 0, bottom_ = 0;
    Scratch<uint8_t> cells_;
    std::array<DiscRow, 2 * kRadius> disc_;
};

void drawOutline(const ImageBuffer& image, const std::vector<Point>& points) {
    OutlineTile tile(image);
    for (int32_t first = 0; first < image.height; first += kTileRows) {
        const int32_t last = std::min(first + kTileRows, image.height);
        tile.stroke(points, first, last);
        for (int32_t y = first; y < last; ++y) tile.reduce(y, image.row(y));
    }
}

/// One side of the shape in pixels, for the rows from `top` to `bottom` - 1.
struct OutlineEdge {
    Point from, to;

    int32_t top() const { return std::min(from.y, to.y); }
    int32_t bottom() const { return std::max(from.y, to.y); }
    float columnAt(int32_t row) const {
        const double part = (double(row) - from.y) / (double(to.y) - from.y);
        return static_cast<float>(part * (double(to.x) - from.x) + from.x);
    }
};

/// Fills the shape by the even-odd rule, within its bounding box, whose high edges are exclusive.
class ShapeFill {
public:
    explicit ShapeFill(const std::vector<Point>& points) {
        Point before;
        for (size_t i = 0; i < points.size(); ++i) {
            const Point point{points[i].y / kScale, points[i].x / kScale};
            left_ = std::min(left_, points[i].x);
            right_ = std::max(right_, points[i].x);
            top_ = std::min(top_, points[i].y);
            bottom_ = std::max(bottom_, points[i].y);
            if (i > 0 && before.y != point.y) edges_.push_back({before, point});
            before = point;
        }
        std::ranges::stable_sort(edges_, {}, &OutlineEdge::top);
    }

    void paint(const ImageBuffer& image) {
        const auto cut = [](int32_t bound, int32_t limit) { return clampTo(bound / kScale, 0, limit); };
        const int32_t left = cut(left_, image.width), right = cut(right_, image.width);
        const int32_t top = cut(top_, image.height), bottom = cut(bottom_, image.height);
        for (int32_t y = top; y < bottom; ++y) {
            findCrossings(y, left, right);
            paintRow(image.row(y), left);
        }
    }

private:
    /// Puts into `ends_` the first column, of those from `left` to `right`, right of every crossing of row
    /// `y`.
    void findCrossings(int32_t y, int32_t left, int32_t right) {
        while (nextEdge_ < edges_.size() && edges_[nextEdge_].top() <= y)
            active_.push_back(edges_[nextEdge_++]);
        std::erase_if(active_, [y](const OutlineEdge& edge) { return edge.bottom() <= y; });
        ends_.clear();
        for (const OutlineEdge& edge : active_) {
            const double end = std::ceil(double{edge.columnAt(y)});
            ends_.push_back(truncate(clampTo(end, double(left), double(right))));
        }
        std::ranges::sort(ends_);
    }

    /// A pixel is inside where an odd number of crossings lies right of it.
    void paintRow(Pixel* row, int32_t left) const {
        size_t i = ends_.size() % 2;
        if (i == 1) fillBlue(row, left, ends_[0]);
        for (; i + 1 < ends_.size(); i += 2) fillBlue(row, ends_[i], ends_[i + 1]);
    }

    static void fillBlue(Pixel* row, int32_t from, int32_t to) {
        for (int32_t x = from; x < to; ++x) row[x].blue = 255;
    }

    int32_t left_ = 100000000, top_ = 100000000, right_ = 0, bottom_ = 0;  ///< of the points, in cells
    std::vector<OutlineEdge> edges_;                                       ///< by top
    size_t nextEdge_ = 0;
    std::vector<OutlineEdge> active_;  ///< edges that the current row crosses
    std::vector<int32_t> ends_;
};

}  // namespace

Status drawBezierShape(ImageEngine& engine, std::span<const BezierSegment> segments) {
    if (engine.imageStatus()) return kStatusOk;
    const ImageBuffer& image = *engine.buffer();
    if (image.width < 1 || image.height < 1) return kStatusOk;
    if (int64_t(image.width) * kScale * image.height * kScale > std::numeric_limits<int32_t>::max())
        return kStatusRefused;
    const std::vector<Point> points = flattenOutline(segments, image.height, kScale);
    ShapeFill fill(points);
    drawOutline(image, points);
    fill.paint(image);
    return kStatusOk;
}

namespace {

constexpr Property<BezierSegment> kSegmentProperties[] = {property<&BezierSegment::vertex>("vertex"),
                                                          property<&BezierSegment::handle1>("handle1"),
                                                          property<&BezierSegment::handle2>("handle2")};

/// The pieces of a closed outline: each ends where the next begins, the last at the first. A point that is
/// missing or of another kind counts as (0, 0).
std::vector<BezierSegment> readSegments(const Call& call, const ValueHandle& list) {
    std::vector<BezierSegment> segments;
    const int32_t count = call.countElements(list);
    for (int32_t i = 1; i <= count; ++i) {
        HeldValue entry(call.caller());
        BezierSegment& segment = segments.emplace_back();
        if (call.element(list, i, entry) != kCallOk) continue;
        for (const auto& point : kSegmentProperties) point.read(call, *entry, segment);
    }
    for (size_t i = 0; i < segments.size(); ++i) segments[i].end = segments[(i + 1) % segments.size()].vertex;
    return segments;
}

Outcome drawShape(Call& call) {
    const Status status = drawBezierShape(*call.engine(), readSegments(call, call.raw(0)));
    return status == kStatusOk ? succeeded() : failure(call.method().failedText());
}

}  // namespace

void describeDrawBezierShape(Catalogue& catalogue) {
    catalogue.add("krlImageDrawBezierShape")
        .summary("Replaces the picture's colours by a matte of one closed Bezier shape.")
        .words("mask, matte, garbage matte, roto, outline, path, curve")
        .value("bezierList",
               "[[#vertex: point(280, 200), #handle1: point(80, 130), #handle2: point(200, -180)], "
               "[#vertex: point(280, -60), #handle1: point(-280, 210), #handle2: point(200, 180)]]",
               "the pieces in order, each with #vertex, #handle1 from the vertex and #handle2 from "
               "the first handle; (0, 0) is 200 columns in and 200 rows above the bottom edge, "
               "rows upward")
        .failed("Failed Draw Bezier Shape function (Image)")
        .does(drawShape);
}

}  // namespace krl
