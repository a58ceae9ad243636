#include "Scene.h"

#include <algorithm>
#include <stdexcept>
#include <string>

#include "core/Bands.h"
#include "core/Numbers.h"
#include "core/Random.h"
#include "player/pictures/PictureFiles.h"

namespace krl::bench {

namespace {

/// The position of a sample of the enlarged picture between two samples of the small one.
struct Between {
    Between(int32_t index, int32_t count, int32_t smallCount) {
        const double place = std::max(0.0, (index + 0.5) * smallCount / count - 0.5);
        first = truncate(place);
        second = std::min(first + 1, smallCount - 1);
        share = place - first;
    }

    int32_t first = 0, second = 0;
    double share = 0;
};

}  // namespace

player::Bitmap landscape(int32_t width, int32_t height) {
    constexpr int32_t kGrain = 5;  // levels, from -2 to 2
    const player::Bitmap small = player::readPicture(KRL_SAMPLES "/landscape.png");
    player::Bitmap picture{width, height, std::vector<Pixel>(size_t(width) * size_t(height)), nullptr};
    Random random(2026);
    for (int32_t y = 0; y < height; ++y) {
        const Between down(y, height, small.height);
        for (int32_t x = 0; x < width; ++x) {
            const Between across(x, width, small.width);
            Pixel& p = picture.row(y)[x];
            for (size_t channel = 0; channel < 3; ++channel) {
                const auto along = [&](const Pixel* row) {
                    const int32_t from = row[across.first][channel], to = row[across.second][channel];
                    return from + (to - from) * across.share;
                };
                const double above = along(small.row(down.first)), below = along(small.row(down.second));
                const double grain = random.next() % kGrain - kGrain / 2;
                p[channel] = truncatedByte(above + (below - above) * down.share + grain + 0.5);
            }
            p.alpha = 255;
        }
    }
    return picture;
}

ImageInfo infoOf(const player::Bitmap& picture) {
    return {picture.width, picture.height, picture.width * int32_t(sizeof(Pixel)), 0, 0, 0};
}

void mustRun(Status status) {
    if (status != kStatusOk)
        throw std::runtime_error("an effect fails with status " + std::to_string(status));
}

Status readAndWrite(const ImageEngine& engine) {
    return forEachSpan(engine, [](Pixel* first, Pixel* last) {
        auto* bytes = reinterpret_cast<uint8_t*>(first);
        for (ptrdiff_t i = 0; i < (last - first) * ptrdiff_t(sizeof(Pixel)); ++i) bytes[i] ^= 1;
    });
}

}  // namespace krl::bench
