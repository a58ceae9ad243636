// Times our native code on one thread by the C interface: native WIDTH HEIGHT PICTURE SECOND, both files of
// RGBA.
#include <krlimage.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <utility>
#include <vector>

namespace {

constexpr int kRuns = 7;

std::vector<char> bytesOf(const char* file, size_t count) {
    std::vector<char> bytes(count);
    if (!std::ifstream(file, std::ios::binary).read(bytes.data(), static_cast<std::streamsize>(count)))
        std::abort();
    return bytes;
}

template <class Run>
void time(const char* name, const std::vector<char>& picture, const Run& run) {
    double best = 1e9;
    for (int i = 0; i < kRuns; ++i) {
        std::vector<char> own = picture;
        const auto begun = std::chrono::steady_clock::now();
        if (run(own.data()) != KRL_OK) std::abort();
        const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - begun;
        best = std::min(best, taken.count());
    }
    std::printf("%s %.2f\n", name, best);
}

}  // namespace

int main(int, char** words) {
    const int32_t width = std::atoi(words[1]), height = std::atoi(words[2]);
    const size_t count = size_t(width) * size_t(height) * 4;
    const std::vector<char> picture = bytesOf(words[3], count);
    std::vector<char> second = bytesOf(words[4], count);
    krl_engine* engine = krl_engine_new(1);
    const auto described = [&](char* pixels) {
        return krl_picture{sizeof(krl_picture), pixels, width, height, width * 4, KRL_RGBA};
    };
    const auto applied = [&](const char* name, const char* call) {
        time(name, picture, [&](char* pixels) {
            krl_picture own = described(pixels);
            return krl_apply(engine, &own, call, nullptr);
        });
    };
    applied("brightness", "brightness(40, #RGB)");
    applied("saturation", "saturation(1.3)");
    applied("blur10", "fastGaussianBlur(10, #RGBA)");
    applied("blur100", "fastGaussianBlur(100, #RGBA)");
    applied("edges", "sobel(#RGB)");
    applied("sharpen", "sharpen(10, 1.0, 0, #RGB)");
    krl_picture other = described(second.data());
    const auto called = [&](const char* name, const char* method,
                            const std::vector<std::pair<const char*, krl_value*>>& values) {
        std::vector<krl_argument> given;
        for (const auto& [argument, value] : values) given.push_back({argument, value});
        time(name, picture, [&](char* pixels) {
            krl_picture own = described(pixels);
            return krl_call(engine, &own, method, given.data(), given.size(), nullptr);
        });
        for (const auto& [argument, value] : values) krl_value_free(value);
    };
    called("blend", "composite",
           {{"foreground", krl_picture_value(&other)},
            {"blendMethod", krl_symbol("multiply")},
            {"backgroundAlpha", krl_symbol("background_alpha_no")}});
    applied("twirl", "twirl(30, #bilinear, #RGBA)");
    called("displacement", "displacementMapComposite",
           {{"dMapOne", krl_picture_value(&other)},
            {"colouringOptionOne", krl_symbol("red")},
            {"dMapTwo", krl_picture_value(&other)},
            {"colouringOptionTwo", krl_symbol("green")},
            {"hDistance", krl_real(60)},
            {"vDistance", krl_real(40)},
            {"edgeOption", krl_symbol("wrap")}});
    krl_engine_free(engine);
}
