#include "catalogue/Catalogue.h"
#include "effects/colour/MixLanes.h"
#include "krlimage/colour.h"

namespace krl {

namespace {

using Lanes = int32_t (ColourLanes::*)[kBatchPixels];

/// Where each channel comes from.
struct ChannelSources {
    Lanes red, green, blue;
};

ChannelSources channelSources(ChannelOrder order) {
    constexpr Lanes red = &ColourLanes::red, green = &ColourLanes::green, blue = &ColourLanes::blue;
    switch (order) {
        case ChannelOrder::RBG:
            return {red, blue, green};
        case ChannelOrder::GBR:
            return {green, blue, red};
        case ChannelOrder::GRB:
            return {green, red, blue};
        case ChannelOrder::BRG:
            return {blue, red, green};
        case ChannelOrder::BGR:
            return {blue, green, red};
        case ChannelOrder::RGB:
            break;
    }
    return {red, green, blue};
}

}  // namespace

/// Mixes each channel with the one that takes its place, by opacity of 256. Any opacity is allowed.
Status rgbChannelSwap(ImageEngine& engine, ChannelOrder channel, int32_t opacity) {
    if (channel == ChannelOrder::RGB) return engine.imageStatus();
    const ChannelSources sources = channelSources(channel);
    return forEachLaneBatch(engine, [=](ColourLanes& colours) {
        const ColourLanes before = colours;
        mixLanes(colours.red, before.*sources.red, opacity);
        mixLanes(colours.green, before.*sources.green, opacity);
        mixLanes(colours.blue, before.*sources.blue, opacity);
    });
}

void describeRgbChannelSwap(Catalogue& catalogue) {
    catalogue.add("krlImageRGBChannelSwap", rgbChannelSwap)
        .summary("Exchanges the three colours with one another.")
        .words("swap, channels, infrared, exchange")
        .symbol("channel",
                {{"RGBtoRGB", ChannelOrder::RGB},
                 {"RGBtoRBG", ChannelOrder::RBG},
                 {"RGBtoGBR", ChannelOrder::GBR},
                 {"RGBtoGRB", ChannelOrder::GRB},
                 {"RGBtoBRG", ChannelOrder::BRG},
                 {"RGBtoBGR", ChannelOrder::BGR}},
                refused("RGB Channel Swap invalid channel input (Image)"),
                "which channels replace red, green and blue, in this order")
        .showing("RGBtoBGR")
        .integer("opacity", {.from = 0, .to = 256, .example = 256, .neutral = 0},
                 "share of the result, of 256; 0 changes nothing")
        .inputFailure("RGB Channel Swap input failure (Image)")
        .worksPerPixel()
        .failed("Failed RGB Channel Swap function (Image)");
}

}  // namespace krl
