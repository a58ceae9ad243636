#include "catalogue/Catalogue.h"
#include "effects/colour/BlackBody.h"
#include "kernels/curve/ByteCurve.h"
#include "krlimage/colour.h"

namespace krl {

/// Multiplies each colour by its part in the light of a black body. Any temperature is allowed.
Status colourTemperature(ImageEngine& engine, float tempShift) {
    const LightColour light = blackBodyColour(tempShift);
    // Truncated before it is limited: a product beyond all integers turns black, not white.
    const auto lit = [](double by) {
        return byteCurve([=](int32_t i) { return clampByte(truncate(i * by)); });
    };
    return applyCurves(engine, {lit(light.blue), lit(light.green), lit(light.red)});
}

void describeColourTemperature(Catalogue& catalogue) {
    catalogue.add("krlImageColourTemperature", colourTemperature)
        .summary("Lights the picture with the glow of a hot body, from candle to sky.")
        .words("color temperature, kelvin, warm, cool, cold, white balance, candle, daylight")
        .real("tempShift", {.from = 1500, .to = 12000, .example = 4500},
              "temperature in kelvin; low is warm, about 4900 is neutral, high is cold")
        .inputFailure("Colour Temperature input failure (Image)")
        .worksPerPixel()
        .failed("Failed Colour Temperature function (Image)");
}

}  // namespace krl
