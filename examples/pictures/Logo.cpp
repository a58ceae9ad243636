#include <numbers>

#include "Scenes.h"

/// A sign of a setting sun over waves, in a ring of rays, with a soft shadow of light around it.
namespace krl::paint {

namespace {

constexpr double kCentreX = 480, kCentreY = 320, kRadius = 190;

Dab sign(double x, double y) {
    const double dx = x - kCentreX, dy = y - kCentreY, d = std::hypot(dx, dy);
    Dab dab{light(0xffa033), 0.75 * std::exp(-std::max(0.0, d - kRadius) / 42) * smooth(310, 230, d)};
    const double turn = std::atan2(dy, dx) / (2 * std::numbers::pi) * 24;
    const double tooth = std::fabs(turn - std::round(turn)) * 2;
    dab = over(dab, mix(light(0xf26b1d), light(0xffc23c), unit((kCentreY - y) / 300 + 0.5)),
               smooth(1.5, -1.5, d - (kRadius + 34 * (1 - tooth) - 6)) * smooth(-1, 1, d - kRadius + 4));
    dab = over(dab, light(0x12294a), smooth(1, -1, d - kRadius));
    dab = over(dab, light(0xfff3d6), smooth(1, -1, std::fabs(d - kRadius + 9) - 2.4));
    const double sun = std::hypot(dx, dy + 4);
    dab = over(dab, mix(light(0xff5a2a), light(0xffd75a), unit((kCentreY - y) / 150 + 0.55)),
               smooth(1, -1, sun - 104) * smooth(1, -1, y - kCentreY - 34));
    for (int i = 0; i < 4; ++i) {
        const double level = kCentreY + 44 + i * 24;
        const double wave = level + 7 * std::sin(dx / (17 + i) + i * 1.7);
        const double half = std::sqrt(std::max(0.0, 164.0 * 164 - (level - kCentreY) * (level - kCentreY)));
        dab = over(
            dab, mix(light(0x6fc3d9), light(0x2c6f9e), i / 3.0),
            smooth(1, -1, std::fabs(y - wave) - (5.2 - 0.6 * i)) * smooth(half, half - 18, std::fabs(dx)));
    }
    return dab;
}

}  // namespace

player::Bitmap logo() { return render(960, 640, 4, sign); }

}  // namespace krl::paint
