#include "player/cli/TerminalPicture.h"

#if defined(KRL_WITH_CHAFA)

#include <chafa.h>

#include <memory>

#include "player/pictures/Label.h"

namespace krl::player {

namespace {

/// Calls `Unref` at the end.
template <auto Unref>
struct Release {
    void operator()(auto* object) const { Unref(object); }
};
using TermInfo = std::unique_ptr<ChafaTermInfo, Release<chafa_term_info_unref>>;
using Config = std::unique_ptr<ChafaCanvasConfig, Release<chafa_canvas_config_unref>>;
using Canvas = std::unique_ptr<ChafaCanvas, Release<chafa_canvas_unref>>;

/// What the environment says of the terminal.
TermInfo thisTerminal() {
    char** environment = g_get_environ();
    TermInfo info(chafa_term_db_detect(chafa_term_db_get_default(), environment));
    g_strfreev(environment);
    return info;
}

Config configFor(PixelProtocol protocol, const TerminalSize& cells) {
    constexpr int usualWidth = 10, usualHeight = 20;
    Config config(chafa_canvas_config_new());
    chafa_canvas_config_set_geometry(config.get(), cells.columns, cells.rows);
    const bool isKnown = cells.cellWidth > 0 && cells.cellHeight > 0;
    chafa_canvas_config_set_cell_geometry(config.get(), isKnown ? cells.cellWidth : usualWidth,
                                          isKnown ? cells.cellHeight : usualHeight);
    chafa_canvas_config_set_canvas_mode(config.get(), CHAFA_CANVAS_MODE_TRUECOLOR);
    chafa_canvas_config_set_pixel_mode(
        config.get(), protocol == PixelProtocol::Kitty ? CHAFA_PIXEL_MODE_KITTY : CHAFA_PIXEL_MODE_SIXELS);
    return config;
}

}  // namespace

bool hasPixelProtocols() { return true; }

PixelProtocol pixelProtocol() {
    const TermInfo terminal = thisTerminal();
    if (chafa_term_info_have_seq(terminal.get(), CHAFA_TERM_SEQ_BEGIN_KITTY_IMMEDIATE_IMAGE_V1))
        return PixelProtocol::Kitty;
    if (chafa_term_info_have_seq(terminal.get(), CHAFA_TERM_SEQ_BEGIN_SIXELS)) return PixelProtocol::Sixel;
    return PixelProtocol::None;
}

std::string pixels(const Bitmap& picture, PixelProtocol protocol, const TerminalSize& cells) {
    constexpr int32_t squares = 8;
    const TermInfo terminal = thisTerminal();
    // Sequences that were asked for although the terminal is not known to take them.
    const TermInfo every(chafa_term_db_get_fallback_info(chafa_term_db_get_default()));
    chafa_term_info_supplement(terminal.get(), every.get());
    const Config config = configFor(protocol, cells);
    const Canvas canvas(chafa_canvas_new(config.get()));
    const Bitmap shown = overSquares(picture, squares);
    chafa_canvas_draw_all_pixels(canvas.get(), CHAFA_PIXEL_BGRA8_UNASSOCIATED,
                                 reinterpret_cast<const guint8*>(shown.pixels.data()), shown.width,
                                 shown.height, shown.width * int(sizeof(Pixel)));
    GString* printed = chafa_canvas_print(canvas.get(), terminal.get());
    std::string text(printed->str, printed->len);
    g_string_free(printed, TRUE);
    return text + '\n';
}

}  // namespace krl::player

#else

namespace krl::player {

bool hasPixelProtocols() { return false; }

PixelProtocol pixelProtocol() { return PixelProtocol::None; }

std::string pixels(const Bitmap& picture, PixelProtocol, const TerminalSize& cells) {
    return halfBlocks(picture, cells);
}

}  // namespace krl::player

#endif
