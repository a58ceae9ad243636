#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>
// libjpeg needs the one above.
#include <jpeglib.h>

namespace krl::player::test {

/// What a test's JPEG is made of.
struct JpegKind {
    int parts = 3;  ///< samples of a pixel
    J_COLOR_SPACE space = JCS_RGB;
    std::function<void(jpeg_compress_struct&)> change = {};  ///< makes others of libjpeg's usual settings
};

/// Writes a JPEG of slopes by libjpeg.
inline void writeJpeg(const std::string& path, int32_t width, int32_t height, const JpegKind& kind) {
    std::FILE* file = std::fopen(path.c_str(), "wb");
    jpeg_error_mgr errors;
    jpeg_compress_struct jpeg{};
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_compress(&jpeg);
    jpeg_stdio_dest(&jpeg, file);
    jpeg.image_width = static_cast<JDIMENSION>(width), jpeg.image_height = static_cast<JDIMENSION>(height);
    jpeg.input_components = kind.parts, jpeg.in_color_space = kind.space;
    jpeg_set_defaults(&jpeg);
    if (kind.change) kind.change(jpeg);
    jpeg_start_compress(&jpeg, TRUE);
    std::vector<uint8_t> row(size_t(width) * size_t(kind.parts));
    for (int32_t y = 0; y < height; ++y) {
        for (size_t x = 0; x < row.size(); ++x) row[x] = uint8_t(x * 7 + size_t(y) * 3);
        JSAMPROW samples = row.data();
        jpeg_write_scanlines(&jpeg, &samples, 1);
    }
    jpeg_finish_compress(&jpeg);
    jpeg_destroy_compress(&jpeg);
    std::fclose(file);
}

}  // namespace krl::player::test
