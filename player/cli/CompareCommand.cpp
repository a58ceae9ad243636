#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <optional>
#include <ostream>

#include "catalogue/Notation.h"
#include "player/cli/Commands.h"
#include "player/cli/Similarity.h"
#include "player/pictures/Picture.h"

namespace krl::player {

namespace {

constexpr size_t kChannels = sizeof(Pixel);

/// How far the samples of two pictures of one size differ.
struct Difference {
    int largest = 0;
    uint64_t sum = 0, squares = 0, samples = 0;
    uint64_t pixels = 0;          ///< pixels that differ by more than is allowed
    std::optional<size_t> first;  ///< the first of them
    double similarity = 1;

    double mean() const { return static_cast<double>(sum) / static_cast<double>(samples); }
    /// Peak signal-to-noise ratio in decibels; infinite for equal pictures.
    double psnr() const {
        const double error = static_cast<double>(squares) / static_cast<double>(samples);
        return 10 * std::log10(255.0 * 255.0 / error);
    }
};

Difference differenceOf(const Bitmap& a, const Bitmap& b, int allowed) {
    Difference found;
    found.samples = a.pixels.size() * kChannels;
    for (size_t i = 0; i < a.pixels.size(); ++i) {
        int largest = 0;
        for (size_t c = 0; c < kChannels; ++c) {
            const int apart = std::abs(a.pixels[i][c] - b.pixels[i][c]);
            largest = std::max(largest, apart);
            found.sum += static_cast<uint64_t>(apart);
            found.squares += static_cast<uint64_t>(apart * apart);
        }
        found.largest = std::max(found.largest, largest);
        if (largest <= allowed) continue;
        ++found.pixels;
        if (!found.first) found.first = i;
    }
    if (found.squares > 0) found.similarity = structuralSimilarity(a, b);
    return found;
}

/// The absolute difference of every sample, opaque; that of alpha is added to all colours.
Bitmap pictureOf(const Bitmap& a, const Bitmap& b) {
    Bitmap picture = a;
    picture.metadata = nullptr;
    for (size_t i = 0; i < picture.pixels.size(); ++i) {
        Pixel& p = picture.pixels[i];
        const int alpha = std::abs(a.pixels[i].alpha - b.pixels[i].alpha);
        for (size_t c = 0; c < 3; ++c)
            p[c] = static_cast<uint8_t>(std::min(255, std::abs(a.pixels[i][c] - b.pixels[i][c]) + alpha));
        p.alpha = 255;
    }
    return picture;
}

std::string sizeOf(const Bitmap& picture) {
    return std::to_string(picture.width) + " by " + std::to_string(picture.height);
}

std::string rounded(double value) { return realNotation(std::round(value * 1000) / 1000); }

void print(const Difference& found, const Bitmap& picture, const CompareOptions& options,
           const Terminal& terminal) {
    const auto column = [&] { return *found.first % static_cast<size_t>(picture.width); };
    const auto row = [&] { return *found.first / static_cast<size_t>(picture.width); };
    if (options.json) {
        nlohmann::ordered_json json = {{"equal", !found.first},
                                       {"largest", found.largest},
                                       {"mean", found.mean()},
                                       {"pixels", found.pixels}};
        if (found.squares > 0) json["psnr"] = found.psnr();
        json["ssim"] = found.similarity;
        if (found.first) json["first"] = {column(), row()};
        terminal.out << json.dump(2) << '\n';
        return;
    }
    terminal.out << "largest difference  " << found.largest << '\n'
                 << "mean difference     " << rounded(found.mean()) << '\n'
                 << "pixels that differ  " << found.pixels << " of " << picture.pixels.size() << '\n'
                 << "PSNR                "
                 << (found.squares > 0 ? rounded(found.psnr()) + " dB" : std::string("infinite")) << '\n'
                 << "SSIM                " << rounded(found.similarity) << '\n';
    if (found.first) terminal.out << "first at            " << column() << ", " << row() << '\n';
}

}  // namespace

int comparePictures(const CompareOptions& options, const Terminal& terminal) {
    try {
        const Bitmap first = readPicture(options.first), second = readPicture(options.second);
        if (first.width != second.width || first.height != second.height) {
            terminal.err << "krlimage: the sizes differ: " << options.first.string() << " is "
                         << sizeOf(first) << " pixels, " << options.second.string() << " is "
                         << sizeOf(second) << '\n';
            return 1;
        }
        const Difference found = differenceOf(first, second, options.largest);
        print(found, first, options, terminal);
        if (!options.difference.empty()) writePicture(options.difference, pictureOf(first, second));
        return found.first ? 1 : 0;
    } catch (const PictureError& error) {
        throw CommandError(error.what());
    }
}

}  // namespace krl::player
