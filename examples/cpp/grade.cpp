// The engine in a program of one's own: pixels in memory, effects on them, a file of the result.
#include <cstdio>
#include <vector>

#include "krlimage/blur.h"
#include "krlimage/engine.h"
#include "krlimage/tone.h"

namespace {

constexpr int32_t kWidth = 320, kHeight = 200;

/// A ramp from left to right with a bright square in it.
std::vector<krl::Pixel> makePicture() {
    std::vector<krl::Pixel> pixels(kWidth * kHeight);
    for (int32_t y = 0; y < kHeight; ++y)
        for (int32_t x = 0; x < kWidth; ++x) {
            const bool square = x >= 120 && x < 200 && y >= 60 && y < 140;
            const auto level = static_cast<uint8_t>(square ? 230 : x * 160 / kWidth);
            pixels[static_cast<size_t>(y * kWidth + x)] = {level, static_cast<uint8_t>(level / 2), 40, 255};
        }
    return pixels;
}

bool writePpm(const char* path, const std::vector<krl::Pixel>& pixels) {
    std::FILE* file = std::fopen(path, "wb");
    if (!file) return false;
    std::fprintf(file, "P6\n%d %d\n255\n", kWidth, kHeight);
    for (const krl::Pixel& p : pixels) {
        const uint8_t rgb[] = {p.red, p.green, p.blue};
        std::fwrite(rgb, 1, sizeof rgb, file);
    }
    return std::fclose(file) == 0;
}

}  // namespace

int main(int count, char** words) {
    if (count != 2) {
        std::fprintf(stderr, "usage: grade OUT.ppm\n");
        return 2;
    }
    std::vector<krl::Pixel> pixels = makePicture();

    krl::ImageEngine engine;
    engine.allocateTables();
    engine.buildTables();
    engine.configureExecution(false);  // one band of work for each processor
    krl::ImageInfo info;
    info.width = kWidth;
    info.height = kHeight;
    info.rowBytes = kWidth * 4;
    engine.load(reinterpret_cast<uint8_t*>(pixels.data()), info);

    // Every effect is a function on the engine; it gives 0 or says why it did not run.
    if (krl::brightness(engine, 40, krl::ChannelTarget::RGB) != krl::kStatusOk ||
        krl::fastGaussianBlur(engine, 6, krl::ChannelTarget::RGB) != krl::kStatusOk) {
        std::fprintf(stderr, "grade: an effect did not run\n");
        return 1;
    }
    engine.unload();
    return writePpm(words[1], pixels) ? 0 : 1;
}
