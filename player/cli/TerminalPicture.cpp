#include "player/cli/TerminalPicture.h"

#include <algorithm>
#include <cmath>

#include "player/pictures/Label.h"
#include "player/pictures/Scale.h"

namespace krl::player {

namespace {

constexpr int32_t kSquares = 2;

/// What the cells show, with `rows` pixels in each.
Bitmap fitted(const Bitmap& picture, const TerminalSize& cells, int rows) {
    return overSquares(scaled(picture, cells.columns, cells.rows * rows), kSquares);
}

std::string colour(int layer, const Pixel& p) {
    return "\x1b[" + std::to_string(layer) + ";2;" + std::to_string(p.red) + ';' + std::to_string(p.green) +
           ';' + std::to_string(p.blue) + 'm';
}

bool sameColour(const Pixel& a, const Pixel& b) {
    return a.red == b.red && a.green == b.green && a.blue == b.blue;
}

}  // namespace

TerminalSize cellsFor(int32_t width, int32_t height, const TerminalSize& space) {
    const double share = std::min({1.0, double(space.columns) / width, 2.0 * space.rows / height});
    TerminalSize cells = space;
    cells.columns = std::max(1, int(std::lround(width * share)));
    cells.rows = std::max(1, int(std::lround(height * share / 2)));
    return cells;
}

std::string halfBlocks(const Bitmap& picture, const TerminalSize& cells) {
    constexpr int foreground = 38, background = 48;
    const Bitmap shown = fitted(picture, cells, 2);
    std::string text;
    for (int32_t y = 0; y < shown.height; y += 2) {
        const Pixel *upper = shown.row(y), *lower = shown.row(y + 1);
        for (int32_t x = 0; x < shown.width; ++x) {
            if (x == 0 || !sameColour(upper[x], upper[x - 1])) text += colour(foreground, upper[x]);
            if (x == 0 || !sameColour(lower[x], lower[x - 1])) text += colour(background, lower[x]);
            text += "▀";
        }
        text += "\x1b[0m\n";
    }
    return text;
}

std::string shades(const Bitmap& picture, const TerminalSize& cells) {
    static constexpr const char* steps[] = {" ", "░", "▒", "▓", "█"};
    const Bitmap shown = fitted(picture, cells, 1);
    std::string text;
    for (int32_t y = 0; y < shown.height; ++y) {
        for (int32_t x = 0; x < shown.width; ++x) {
            const Pixel& p = shown.row(y)[x];
            text += steps[(p.red * 77 + p.green * 150 + p.blue * 29) * 5 / (256 * 256)];
        }
        text += '\n';
    }
    return text;
}

}  // namespace krl::player
