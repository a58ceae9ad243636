#include <filesystem>
#include <fstream>

#include "fuzz/FuzzInput.h"
#include "fuzz/Scratch.h"
#include "player/pictures/PictureFiles.h"
#include "player/pictures/PixelLimit.h"

/// Any bytes as a picture file: refused with one line, or read and written in one format or all.
namespace krl::fuzz {

namespace {

namespace fs = std::filesystem;

/// Larger pictures would take the fuzzer's time.
constexpr int64_t kMostPixels = 1 << 12;

void write(const std::string& name, const player::Bitmap& picture) {
    const fs::path file = scratchFolder() / name;
    if (!player::formatOf(file)) return;
    try {
        player::writePicture(file, picture);
    } catch (const player::PictureError&) {
        return;  // too large for its format
    }
    const player::Bitmap again = player::readPicture(file);
    if (again.width != picture.width || again.height != picture.height) report(name + " has another size");
    if (name == "out.pam" && again.pixels != picture.pixels) report("PAM has other pixels");
}

/// In one format that the input's size chooses, and now and then in all, which takes as long as 50 readings.
void write(const player::Bitmap& picture, size_t choice) {
    static constexpr const char* kNames[] = {"out.pam", "out.png",  "out.jpg",
                                             "out.tif", "out.webp", "out.gif"};
    for (size_t i = 0; i < std::size(kNames); ++i)
        if (choice % 16 == i || choice % 64 == 63) write(kNames[i], picture);
}

}  // namespace

int readAnything(const uint8_t* data, size_t size) {
    const player::PixelLimit limit(size % 256 == 0 ? player::kUsualPixelLimit : 1 << 20);
    const fs::path file = scratchFolder() / "in.picture";
    std::ofstream(file, std::ios::binary)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    try {
        const player::Bitmap picture = player::readPicture(file);
        if (int64_t{picture.width} * picture.height != static_cast<int64_t>(picture.pixels.size()))
            report("a picture without all its pixels");
        if (int64_t{picture.width} * picture.height <= kMostPixels) write(picture, size);
    } catch (const player::PictureError& error) {
        const std::string text = error.what();
        if (text.empty() || text.find('\n') != std::string::npos) report("not one line: " + text);
    } catch (const std::bad_alloc&) {
    }
    return 0;
}

}  // namespace krl::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    return krl::fuzz::readAnything(data, size);
}
