#pragma once

#include <algorithm>
#include <cmath>
#include <vector>

#include "core/Bands.h"
#include "core/LookupTables.h"
#include "core/Numbers.h"
#include "core/Random.h"
#include "krlimage/stylise.h"
#include "reference/TentBlurReference.h"
#include "support/Picture.h"

/// The stylise effects pixel by pixel, as they are defined.
namespace krl::test {

inline bool isTargeted(ChannelTarget target, size_t channel) {
    return target == ChannelTarget::RGBA || (channel < 3) == (target == ChannelTarget::RGB);
}

inline Picture referenceMosaic(Picture picture, int amount, ChannelTarget target) {
    amount = std::max(amount, 2);
    const int w = picture.width(), h = picture.height();
    for (int top = 0; top < h; top += amount)
        for (int left = 0; left < w; left += amount)
            for (size_t channel = 0; channel < 4; ++channel) {
                if (!isTargeted(target, channel)) continue;
                int sum = 0, missing = 0;
                for (int y = top; y < top + amount; ++y)
                    for (int x = left; x < left + amount; ++x)
                        x < w&& y < h ? sum += picture.at(x, y)[channel] : ++missing;
                const int n = std::max(amount * amount - missing + 1, 1);
                for (int y = top; y < std::min(top + amount, h); ++y)
                    for (int x = left; x < std::min(left + amount, w); ++x)
                        picture.at(x, y)[channel] = uint8_t(std::clamp(sum / n, 0, 255));
            }
    return picture;
}

inline Picture referenceOilPaint(const Picture& copy, int brushSize, int intensity) {
    brushSize = std::clamp(brushSize, 1, 5);
    intensity = std::clamp(intensity, 10, 255);
    const double levelScale = intensity / 255.0;
    const LookupTables& tables = sharedTables();
    Picture result = copy;
    for (int y = 0; y < copy.height(); ++y)
        for (int x = 0; x < copy.width(); ++x) {
            int counts[256] = {}, sums[256][3] = {};
            for (int sy = std::max(0, y - brushSize); sy <= std::min(copy.height() - 1, y + brushSize); ++sy)
                for (int sx = std::max(0, x - brushSize); sx <= std::min(copy.width() - 1, x + brushSize);
                     ++sx) {
                    const Pixel p = copy.at(sx, sy);
                    const double luma =
                        double(tables.lumaRed[p.red]) + tables.lumaGreen[p.green] + tables.lumaBlue[p.blue];
                    const int bin = truncate(luma * levelScale) & 255;
                    ++counts[bin];
                    for (size_t c = 0; c < 3; ++c) sums[bin][c] += tables.scaleByte[p.alpha][p[c]];
                }
            int winner = 0;
            for (int bin = 1; bin <= intensity; ++bin)
                if (counts[bin] > counts[winner]) winner = bin;
            for (size_t c = 0; c < 3; ++c) result.at(x, y)[c] = uint8_t(sums[winner][c] / counts[winner]);
        }
    return result;
}

inline Picture referenceFragment(const Picture& copy, int distance, ChannelTarget target) {
    const int w = copy.width(), h = copy.height();
    Picture result = copy;
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            const auto column = [&](int i) { return std::clamp(i, 0, w - 1); };
            const auto line = [&](int i) { return std::clamp(i, 0, h - 1); };
            const Pixel samples[] = {copy.at(x, line(y - distance)), copy.at(x, line(y + distance)),
                                     copy.at(column(x - distance), y), copy.at(column(x + distance), y)};
            for (size_t channel = 0; channel < 4; ++channel) {
                if (!isTargeted(target, channel)) continue;
                int sum = 0;
                for (const Pixel& p : samples)
                    sum += target == ChannelTarget::RGBA && channel < 3
                               ? sharedTables().scaleByte[p.alpha][p[channel]]
                               : p[channel];
                result.at(x, y)[channel] = uint8_t(sharedTables().meanOf4[sum]);
            }
        }
    return result;
}

inline Picture referenceTile(const Picture& copy, int tileW, int tileH, int random, int seed,
                             ChannelTarget target, int bands) {
    tileW = std::max(tileW, 1), tileH = std::max(tileH, 1), random = std::max(random, 1);
    const int w = copy.width(), h = copy.height();
    const int tiles = ((w + tileW - 1) / tileW) * ((h + tileH - 1) / tileH);
    std::vector<Point> slips;
    Random generator(seed);
    for (int i = 0; i < tiles; ++i) {
        const int x = generator.next() % random - random / 2, y = generator.next() % random - random / 2;
        slips.push_back({y, x});
    }
    Picture result = copy;
    for (int band = 0; band < bands; ++band) {
        const IndexRange rows = lineBand(h, bands, band);
        int tile = std::max(0, (((rows.first - 2) / tileH) * w) / tileW);
        for (int top = rows.first; top < rows.last; top += tileH)
            for (int left = 0; left < w && tile < tiles; left += tileW, ++tile)
                for (int y = top; y < top + tileH; ++y)
                    for (int x = left; x < left + tileW; ++x) {
                        const int toX = x + slips[size_t(tile)].x, toY = y + slips[size_t(tile)].y;
                        if (x <= 0 || x >= w || y <= 0 || y >= h || toX <= 0 || toX >= w || toY <= 0 ||
                            toY >= h)
                            continue;
                        for (size_t channel = 0; channel < 4; ++channel)
                            if (isTargeted(target, channel))
                                result.at(toX, toY)[channel] = copy.at(x, y)[channel];
                    }
    }
    return result;
}

inline Picture referenceVignette(Picture picture, VignetteSettings a) {
    const int w = picture.width(), h = picture.height();
    a.transparency = std::clamp(a.transparency, 0, 255);
    a.scaleX = clampTo(a.scaleX, 0.0f, 2.0f), a.scaleY = clampTo(a.scaleY, 0.0f, 2.0f);
    a.offsetX = std::clamp(a.offsetX, -100, 100), a.offsetY = std::clamp(a.offsetY, -100, 100);
    a.blur = std::max(a.blur, 0);
    const int planeW = w + 2 * a.blur, planeH = h + 2 * a.blur;
    const int centreX = planeW / 2 + planeW * a.offsetX / 100,
              centreY = planeH / 2 + planeH * a.offsetY / 100;
    const float radiusX = float(double(w / 2) * a.scaleX), radiusY = float(double(h / 2) * a.scaleY);
    const int inside = a.isInverted ? a.transparency : 0, outside = a.isInverted ? 0 : a.transparency;
    std::vector<int64_t> plane(size_t(planeW) * size_t(planeH));
    for (int y = 0; y < planeH; ++y)
        for (int x = 0; x < planeW; ++x) {
            bool isOutside;
            if (a.shape == VignetteShape::Ellipse) {
                const double dx = x - centreX, dy = y - centreY;
                isOutside =
                    dx * dx / (double(radiusX) * radiusX) + dy * dy / (double(radiusY) * radiusY) >= 1;
            } else {
                isOutside =
                    x < truncate(centreX - double(radiusX)) || x >= truncate(centreX + double(radiusX)) ||
                    y < truncate(centreY - double(radiusY)) || y >= truncate(centreY + double(radiusY));
            }
            plane[size_t(y) * size_t(planeW) + size_t(x)] = isOutside ? outside : inside;
        }
    if (a.blur > 0) plane = reference::tentPlane(std::move(plane), planeH, planeW, a.blur);
    const auto& scaleByte = sharedTables().scaleByte;
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            Pixel& p = picture.at(x, y);
            const auto m = static_cast<int32_t>(
                std::clamp<int64_t>(plane[size_t(y + a.blur) * size_t(planeW) + size_t(x + a.blur)], 0, 255));
            if (a.target == VignetteTarget::Alpha) {
                p.alpha = scaleByte[p.alpha][255 - m];
                continue;
            }
            const uint8_t colours[] = {a.colour.blue(), a.colour.green(), a.colour.red()};
            for (size_t c = 0; c < 3; ++c)
                p[c] = uint8_t(scaleByte[m][colours[c]] + scaleByte[255 - m][p[c]]);
        }
    return picture;
}

}  // namespace krl::test
