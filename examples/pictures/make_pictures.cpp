#include <cstdio>

#include "Scenes.h"

/// Paints the sample pictures into a folder: `make_pictures examples/pictures`.
int main(int argc, char** argv) {
    using namespace krl;
    if (argc != 2) {
        std::fprintf(stderr, "usage: make_pictures FOLDER\n");
        return 2;
    }
    const std::pair<const char*, player::Bitmap (*)()> scenes[] = {{"landscape.png", paint::landscape},
                                                                   {"greenscreen.png", paint::greenscreen},
                                                                   {"portrait.png", paint::portrait},
                                                                   {"logo.png", paint::logo}};
    try {
        for (const auto& [name, scene] : scenes)
            player::writePicture(std::filesystem::path(argv[1]) / name, scene());
    } catch (const player::PictureError& error) {
        std::fprintf(stderr, "make_pictures: %s\n", error.what());
        return 1;
    }
    return 0;
}
