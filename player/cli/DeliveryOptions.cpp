#include "player/cli/ApplyOptions.h"
#include "player/cli/Commands.h"
#include "player/cli/OptionTable.h"

namespace krl::player {

namespace {

/// An option whose text `read` understands or not; `take` gets what it read.
template <class Read, class Take>
void addRead(CLI::App& app, const char* name, const char* type, const char* meaning, const Read& read,
             const Take& take) {
    app.add_option_function<std::string>(
           name, [take, read](const std::string& text) { take(*read(text)); }, meaning)
        ->type_name(type)
        ->check(CLI::Validator(
            [read, type](const std::string& text) -> std::string {
                return read(text) ? "" : std::string("expected ") + type + ", got " + text;
            },
            ""));
}

void addSizing(CLI::App& app, const char* name, Sizing sizing, const char* meaning, Delivery& delivery) {
    addRead(app, name, "WxH", meaning, DeliverySize::read, [&delivery, sizing](const DeliverySize& size) {
        if (delivery.size) throw UsageError("--resize, --fit and --fill exclude one another");
        delivery.size = size;
        delivery.sizing = sizing;
    });
}

}  // namespace

void addDeliveryOptions(CLI::App& app, ApplyOptions& options) {
    Delivery& delivery = options.delivery;
    app.add_option("--rotate", delivery.degrees,
                   "After the calls, turn pictures clockwise; --crop and --resize come after that")
        ->type_name("DEGREES")
        ->check(CLI::Range(-360.0, 360.0).description(""));
    addRead(app, "--crop", "WxH[+X+Y]", "Cut pictures to W by H pixels or percent, at X, Y or in the middle",
            DeliveryCrop::read, [&delivery](const DeliveryCrop& crop) { delivery.crop = crop; });
    addSizing(app, "--resize", Sizing::Exact,
              "Resize pictures to W by H pixels, or 50%; W or xH alone keeps the proportions", delivery);
    addSizing(app, "--fit", Sizing::Fit, "Resize pictures to fit within W by H pixels", delivery);
    addSizing(app, "--fill", Sizing::Fill,
              "Resize pictures to fill W by H pixels, and cut off what is too much", delivery);
    settable(app.add_flag("--strip", options.strip, "Write no metadata but the colour profile"));
    app.add_flag_callback(
        "--keep-metadata", [&options] { options.strip = false; }, "Write all metadata, the default");
    settable(
        app.add_option("--profile", options.profile,
                       "Convert colours to srgb or to the colour profile in a file, or keep them (default)")
            ->type_name("PROFILE"));
    settable(app.add_option("--compression", options.compression,
                            "PNG: 0 to 9; TIFF: none, packbits, lzw, deflate or zstd; WebP, AVIF, HEIC and "
                            "JPEG XL: lossless")
                 ->type_name("HOW"));
    settable(addChoice(app, "--chroma", options.chroma, "420|444",
                       "Colours of JPEG, AVIF and HEIC at half or full resolution (default: a JPEG's own)"));
    settable(app.add_option("--depth", options.depth,
                            "Bits of a sample in PNG and TIFF, 8 or 16 (default 8); effects compute with 8")
                 ->type_name("N")
                 ->check(CLI::IsMember({8, 16}).description("")));
}

}  // namespace krl::player
