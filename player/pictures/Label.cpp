#include "player/pictures/Label.h"

#include <algorithm>

#include "player/pictures/VipsChain.h"

namespace krl::player {

#if defined(KRL_WITH_VIPS)

namespace {

/// For a text that may hold the letters of markup.
std::string escaped(const std::string& text) {
    char* safe = g_markup_escape_text(text.data(), static_cast<gssize>(text.size()));
    std::string result = safe;
    g_free(safe);
    return result;
}

/// The coverage of the letters, or null.
VipsImage* letters(const std::string& text, const LabelStyle& style) {
    const std::string markup = style.isBold ? "<b>" + escaped(text) + "</b>" : escaped(text);
    const std::string font = "sans " + std::to_string(style.size);
    VipsImage* image = nullptr;
    // At 72 dots an inch a point is a pixel.
    const int status =
        vips_text(&image, markup.c_str(), "font", font.c_str(), "dpi", 72, "width", std::max(style.width, 0),
                  "align", style.isCentred ? VIPS_ALIGN_CENTRE : VIPS_ALIGN_LOW, nullptr);
    if (status == 0) return image;
    vips_error_clear();
    return nullptr;
}

}  // namespace

std::optional<Bitmap> drawLabel(const std::string& text, const LabelStyle& style) {
    startVips();
    if (vips_type_find("VipsOperation", "text") == 0) return std::nullopt;
    VipsImage* image = letters(text, style);
    if (!image) return std::nullopt;
    size_t count = 0;
    void* bytes = vips_image_write_to_memory(image, &count);
    const int32_t width = image->Xsize, height = image->Ysize;
    g_object_unref(image);
    if (!bytes) return std::nullopt;
    Bitmap label{width, height, std::vector<Pixel>(count), nullptr};
    const auto* covers = static_cast<const uint8_t*>(bytes);
    std::transform(covers, covers + count, label.pixels.begin(), [&](uint8_t cover) {
        return Pixel{style.grey, style.grey, style.grey, cover};
    });
    g_free(bytes);
    return label;
}

#else

std::optional<Bitmap> drawLabel(const std::string&, const LabelStyle&) { return std::nullopt; }

#endif

void drawOver(Bitmap& ground, const Bitmap& picture, int32_t x, int32_t y) {
    const int32_t right = std::min(picture.width, ground.width - x);
    const int32_t bottom = std::min(picture.height, ground.height - y);
    for (int32_t row = std::max(0, -y); row < bottom; ++row)
        for (int32_t column = std::max(0, -x); column < right; ++column) {
            const Pixel& over = picture.row(row)[column];
            Pixel& under = ground.row(y + row)[x + column];
            for (size_t i = 0; i < 3; ++i)
                under[i] =
                    static_cast<uint8_t>((over[i] * over.alpha + under[i] * (255 - over.alpha) + 127) / 255);
            under.alpha = std::max(under.alpha, over.alpha);
        }
}

Bitmap overSquares(const Bitmap& picture, int32_t side) {
    constexpr uint8_t greys[] = {102, 77};
    Bitmap ground = picture;
    for (int32_t y = 0; y < ground.height; ++y)
        for (int32_t x = 0; x < ground.width; ++x) {
            const uint8_t grey = greys[(x / side + y / side) % 2];
            ground.row(y)[x] = {grey, grey, grey, 255};
        }
    drawOver(ground, picture, 0, 0);
    return ground;
}

}  // namespace krl::player
