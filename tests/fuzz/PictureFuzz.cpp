#include <filesystem>
#include <fstream>

#include "fuzz/FuzzInput.h"
#include "fuzz/Scratch.h"
#include "player/pictures/PictureFiles.h"

/// Any bytes as a picture file: refused with one line, or read and written in every format.
namespace krl::fuzz {

namespace {

namespace fs = std::filesystem;

/// Larger pictures would take the fuzzer's time.
constexpr int64_t kMostPixels = 1 << 16;

void writeInEveryFormat(const player::Bitmap& picture) {
    for (const char* name : {"out.pam", "out.png", "out.jpg", "out.tif", "out.webp", "out.gif"}) {
        const fs::path file = scratchFolder() / name;
        if (!player::formatOf(file)) continue;
        try {
            player::writePicture(file, picture);
        } catch (const player::PictureError&) {
            continue;  // too large for its format
        }
        const player::Bitmap again = player::readPicture(file);
        if (again.width != picture.width || again.height != picture.height)
            report(std::string(name) + " has another size");
        if (std::string(name) == "out.pam" && again.pixels != picture.pixels) report("PAM has other pixels");
    }
}

}  // namespace

int readAnything(const uint8_t* data, size_t size) {
    const fs::path file = scratchFolder() / "in.picture";
    std::ofstream(file, std::ios::binary)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    try {
        const player::Bitmap picture = player::readPicture(file);
        if (int64_t{picture.width} * picture.height != static_cast<int64_t>(picture.pixels.size()))
            report("a picture without all its pixels");
        if (int64_t{picture.width} * picture.height <= kMostPixels) writeInEveryFormat(picture);
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
