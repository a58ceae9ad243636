#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "krlimage/engine.h"
#include "krlimage/options.h"

/// Effects that paint something of their own: a checker pattern, a gradient, a Bezier shape, a lens flare.
namespace krl {

/// Tiles the picture in squares of `size` pixels from the top left: `cOne` where row plus column of the
/// square is even, `cTwo` where it is odd. Alpha is kept. A size below 1 counts as 1.
Status drawCheckerBox(ImageEngine& engine, int32_t size, Colour cOne, Colour cTwo);

/// How a gradient runs from key to key.
enum class GradientType : int32_t {
    linear = 30,  ///< straight lines
    curved = 31,  ///< the smooth curve, one sample list read along columns 0 to 255
};

/// Paints columns of colour into `pixels`, a block of rows without padding that the caller owns; alpha is
/// kept. Key positions are columns. One key gives a flat picture, none a black one. A curved gradient does
/// not scale with the width: it reaches its last colour at column 255 and keeps it from there on. Needs the
/// engine's tables and no loaded picture.
Status rgbGradient(const ImageEngine& engine, Pixel* pixels, int32_t width, int32_t height,
                   std::vector<CurveKey> keys, GradientType type);

/// One cubic piece of a closed outline: `handle1` is relative to `vertex`, `handle2` to the first handle, and
/// `end` is the vertex of the next piece.
struct BezierSegment {
    Point vertex, handle1, handle2, end;
};

/// Replaces the picture's colours by a matte of one closed shape: the antialiased outline, three pixels
/// thick, in all three colour bytes, and the inside at 255 in blue. Alpha is kept. Coordinates count from a
/// place 200 rows above the bottom edge and 200 columns in, rows upward. With no picture it does nothing and
/// succeeds; `kStatusRefused` for a picture too large for the outline's fine grid.
Status drawBezierShape(ImageEngine& engine, std::span<const BezierSegment> segments);

/// The kinds of element that a lens flare is made of. The circles' numbers are the program's own.
enum class FlareKind : int32_t {
    Polyshape,    ///< a regular polygon, grown and softened: a ghost of the aperture
    RandomFan,    ///< diameters scattered over an angle
    Spike,        ///< rays scattered all around
    Star,         ///< evenly spaced arms
    Line,         ///< a bar with a dome across and along it
    StarCaustic,  ///< a bar that tapers along its angle and is sharp across it
    ChromaHoop,   ///< rays between two circles, coloured along their length
    FilledCircle = 45,
    GradientCircle = 46,
    OutlinedCircle = 47,
    FadedCircle = 48,  ///< an outlined circle that pales away from the picture's centre
};

/// One element's settings; each kind reads only its own.
struct FlareElement {
    FlareKind kind = FlareKind::FilledCircle;
    Point origin{};                       ///< the middle of the element
    Point handle{};                       ///< `ChromaHoop`: where the hoop slides from, the source of light
    float brightness = 255;               ///< 0..255
    int32_t transparency = 0;             ///< subtracted from every value
    BlendMode blend = BlendMode::Normal;  ///< `Normal`, `Add` or `Screen`

    float radius = 0;
    float angle = 0;       ///< degrees
    int32_t count = 0;     ///< corners, rays or arms
    int32_t width = 0;     ///< `Star`: neighbouring rays of an arm, one degree apart
    int32_t aperture = 0;  ///< `RandomFan`: degrees
    int32_t seed = 0;

    int32_t expandShape = 0;  ///< `Polyshape`: blur by which the shape grows
    int32_t shapeBlur = 0;    ///< `Polyshape`: blur of its edge

    float outerFeather = 0, innerFeather = 0;      ///< circles: width of the soft edges
    float outerThickness = 0, innerThickness = 0;  ///< outlined circles: width of the flat ring to each side

    float length = 0, thickness = 0;  ///< bars

    float position = 0;         ///< `ChromaHoop`: its centre on the way from `handle` to `origin`
    float softness = 0;         ///< `ChromaHoop`: how near the inner circle comes to the outer
    float density = 0;          ///< `ChromaHoop`: angle between rays, as a part of `arcCompleteness`
    float noise = 0;            ///< `ChromaHoop`: jitter of the rays
    float arcCompleteness = 0;  ///< `ChromaHoop`: 1 is the whole ring
    float apogeeScale = 0, chromaSpread = 0;  ///< `ChromaHoop`: accepted and without effect

    /// At 0..255 along the element's values, in the order of the list; white without any.
    std::vector<CurveKey> colours{};
};

/// Paints a lens flare into the picture, element by element. Each element has a value from 0 to 255 for every
/// pixel that it covers: its brightness there and the place on its colour ramp.
Status lensFlare(ImageEngine& engine, std::span<const FlareElement> elements);

}  // namespace krl
