#include "Scenes.h"

/// A woman's head and shoulders, before two grounds.
namespace krl::paint {

namespace {

constexpr double kFaceX = 480, kFaceY = 268;

/// Distance-like measure of an ellipse: below 1 inside.
double ellipse(double x, double y, double cx, double cy, double rx, double ry) {
    return std::hypot((x - cx) / rx, (y - cy) / ry);
}

/// What lights her: a key from the left, and what comes back from the ground behind.
struct Lighting {
    Light key, fill, spill;
    double edge;  ///< how far the ground's light reaches over her edges
};

Light skin(double nx, double ny, const Lighting& lighting) {
    const double facing = unit(0.62 - 0.62 * nx - 0.34 * ny);
    const Light base = mix(light(0x8d4f3c), light(0xf2c5a2), smooth(0.02, 0.95, facing));
    return mix(base * lighting.fill, base * lighting.key, 0.35 + 0.65 * facing);
}

/// Row of the shoulder at a place between her middle (0) and her arm (1).
double shoulderRow(double drop) { return 458 + 80 * drop * drop + 90 * std::pow(smooth(0.6, 1.15, drop), 2); }

Dab torso(Dab below, double x, double y, const Lighting& lighting) {
    const double drop = std::fabs(x - kFaceX) / 270;
    const double shoulder = shoulderRow(drop);
    const double cover = smooth(shoulder - 1.2, shoulder + 1.2, y);
    if (cover <= 0) return below;
    const double fold = fractal(x / 70 + y / 260, y / 190, 211, 4);
    const double weave = 0.05 * noise(x / 1.3, y / 1.3, 213);
    const double facing = unit(0.55 - 0.42 * (x - kFaceX) / 260 + 0.55 * fold);
    Light coat =
        mix(light(0x151c2b), light(0x4a5f86), facing + weave) * mix(lighting.fill, lighting.key, facing);
    // The open collar and its scarf.
    const double neckline = std::fabs(x - kFaceX) - (74 - 0.42 * (y - 440));
    const double stripe = 0.5 + 0.5 * std::sin((x * 0.6 + y) / 9 + 3 * fold);
    const Light scarf = mix(light(0x8e2433), light(0xd9806a), facing) * mix(0.82, 1.08, stripe);
    coat = mix(scarf, coat, smooth(-2, 2, neckline));
    coat = mix(coat, coat * 0.35, smooth(8, 0, std::fabs(neckline)) * 0.6);
    return over(below, coat, cover);
}

Dab neck(Dab below, double x, double y, const Lighting& lighting) {
    const double half = 47 + 16 * smooth(400, 470, y) * (y - 400) / 70;
    const double cover =
        smooth(half + 1, half - 1, std::fabs(x - kFaceX)) * smooth(340, 344, y) * smooth(492, 470, y);
    const Light tone = skin((x - kFaceX) / half * 0.8, 0.1, lighting);
    return over(below, mix(tone, tone * light(0x9a6a5c), smooth(450, 372, y) * 0.75), cover);
}

/// Brows, eyes, nose and mouth, on the face's own light.
Light features(Light face, double x, double y, const Lighting& lighting) {
    const double side = x < kFaceX ? -1 : 1, u = std::fabs(x - kFaceX);
    const auto darken = [&](Light tone, double amount) { face = mix(face, tone * lighting.key, amount); };
    darken(light(0xd98274), 0.30 * std::exp(-std::pow(ellipse(u, y, 52, 318, 34, 24), 2)));
    darken(light(0x7c4636), 0.55 * std::exp(-std::pow(ellipse(u, y, 37, 256, 29, 15), 2)));
    const double browY = 237 + 0.006 * (u - 42) * (u - 42);
    darken(light(0x2a1712), 0.85 * smooth(4.6, 2.0, std::fabs(y - browY) + 0.055 * std::max(0.0, u - 40)) *
                                smooth(14, 19, u) * smooth(69, 60, u));
    const double lid = 262 - 10 * std::sqrt(unit(1 - std::pow((u - 38) / 24, 2)));
    const double lower = 262 + 7 * std::sqrt(unit(1 - std::pow((u - 38) / 24, 2)));
    const double eye = smooth(24.5, 23, std::fabs(u - 38)) * smooth(lid - 0.8, lid + 0.8, y) *
                       smooth(lower + 0.8, lower - 0.8, y);
    const double iris = std::hypot(x - (kFaceX + side * 38 - 1.5), y - 261);
    Light ball = mix(light(0xf1e9e2), light(0xb9a79c), unit((262 - y) / 14 + 0.3));
    ball = mix(ball, mix(light(0x2d5f58), light(0x6fa58e), unit(iris / 9 + 0.2 * noise(x, y, 231))),
               smooth(10, 9, iris));
    ball = mix(ball, light(0x070809), smooth(4.6, 3.8, iris));
    ball = mix(ball, light(0xffffff), smooth(2.8, 1.8, std::hypot(x - (kFaceX + side * 38 - 5), y - 257)));
    face = mix(face, ball * lighting.key, eye);
    darken(light(0x1a0f0d), smooth(3.4, 1.4, std::fabs(y - lid + 0.8)) * smooth(27, 23, std::fabs(u - 38.5)));
    darken(light(0x8a4f3e),
           0.35 * smooth(2.2, 0.6, std::fabs(y - lower)) * smooth(25, 21, std::fabs(u - 38)));
    // Nose: the shadowed flank, the tip's light, the nostrils.
    darken(light(0x90553f), 0.45 * smooth(0, 9, x - kFaceX) * smooth(19, 8, x - kFaceX) *
                                smooth(246, 300, y) * smooth(322, 312, y));
    face = mix(face, light(0xfff0e0) * lighting.key,
               0.38 * std::exp(-std::pow(ellipse(x, y, kFaceX - 3, 302, 7, 9), 2)));
    face = mix(face, light(0xfff0e0) * lighting.key,
               0.16 * smooth(5, 1, std::fabs(x - kFaceX + 3)) * smooth(246, 262, y) * smooth(300, 288, y));
    darken(light(0x5a2a22), 0.75 * smooth(1.15, 0.75, ellipse(u, y, 11, 319, 6, 3)));
    darken(light(0x8a5040), 0.35 * smooth(3.5, 0.8, std::fabs(y - 325)) * smooth(16, 8, u));
    // Mouth.
    const double bow = 352 - 5.5 * std::exp(-std::pow((u - 9) / 10, 2)) + 0.0042 * u * u;
    const double parting = 359.5 - 0.0016 * u * u, under = 372 - 0.011 * u * u;
    const double lips = smooth(32, 29, u) * smooth(bow - 1, bow + 1, y) * smooth(under + 1, under - 1, y);
    const Light lip = mix(light(0x9c3c44), light(0xd77a74), smooth(parting - 1, parting + 9, y));
    face = mix(face, lip * lighting.key, lips);
    face = mix(face, light(0xffd9cf) * lighting.key,
               lips * 0.45 * std::exp(-std::pow(ellipse(x, y, kFaceX - 6, 366, 11, 3), 2)));
    darken(light(0x571d22), 0.9 * smooth(1.9, 0.6, std::fabs(y - parting)) * smooth(32, 27, u));
    darken(light(0x8d5240), 0.32 * std::exp(-std::pow(ellipse(x, y, kFaceX, 383, 20, 5), 2)));
    return face;
}

Dab face(Dab below, double x, double y, const Lighting& lighting) {
    const double jaw = 96 - 20 * smooth(290, 425, y);
    const double d = ellipse(x, y, kFaceX, kFaceY, jaw, y < kFaceY ? 132 : 146);
    const double cover = smooth(1.012, 0.988, d);
    if (cover <= 0) return below;
    const double nx = (x - kFaceX) / jaw, ny = (y - kFaceY) / 150;
    Light tone = skin(nx, ny, lighting);
    tone = mix(tone, tone * light(0x8f5a4a), smooth(0.72, 1.02, d) * mix(0.22, 0.6, smooth(-0.5, 0.6, nx)));
    tone = tone * (1 + 0.02 * noise(x / 1.7, y / 1.7, 221));
    return over(below, features(tone, x, y, lighting), cover);
}

/// The hair's colour where a strand runs, from its place across and along.
Light hairLight(double x, double y, const Lighting& lighting) {
    const double bend = x + 26 * std::sin(y / 120) + 10 * fractal(x / 90, y / 90, 241, 3);
    const double strand = 0.5 * noise(bend / 2.1, y / 160, 243) + 0.35 * noise(bend / 6.5, y / 120, 245);
    const double shine =
        std::exp(-std::pow((ellipse(x, y, kFaceX - 20, kFaceY, 118, 128) - 0.86) / 0.13, 2)) *
        smooth(230, 130, y);
    Light tone = mix(light(0x1d0f0b), light(0x7a4526), unit(0.42 + strand - 0.25 * (x - kFaceX) / 140));
    tone = mix(tone, light(0xe2a468), unit(shine * (0.55 + 0.9 * strand)));
    return tone * mix(lighting.fill, lighting.key, 0.6 - 0.4 * (x - kFaceX) / 150);
}

Dab hairBehind(Dab below, double x, double y, const Lighting& lighting) {
    const double wave =
        10 * std::sin(y / 38 + (x > kFaceX ? 1.3 : 0)) + 7 * noise(y / 21, x > kFaceX ? 3.5 : 9.5, 251);
    const double half = 126 + wave + 34 * smooth(260, 440, y) - 46 * smooth(470, 560, y);
    const double crown = ellipse(x, y, kFaceX, 246, 128, 142);
    const double long_ = smooth(half + 2.5, half - 2.5, std::fabs(x - kFaceX)) * smooth(240, 250, y) *
                         smooth(545 + 24 * noise(x / 6, 1, 253), 520 + 24 * noise(x / 6, 1, 253), y);
    const double cover = std::max(smooth(1.02, 0.985, crown + 0.016 * noise(x / 3, y / 9, 255)), long_);
    return over(below, hairLight(x, y, lighting) * 0.72, cover);
}

Dab hairBefore(Dab below, double x, double y, const Lighting& lighting) {
    // Parted left of the middle: two curtains that sweep away from the parting.
    const double crown = ellipse(x, y, kFaceX, 246, 126, 140);
    const double part = kFaceX - 34;
    const double sweep =
        x < part ? 128 + 0.040 * std::pow(part - x, 1.94) * 0.9 : 128 + 0.0165 * std::pow(x - part, 1.94);
    const double edge = sweep + 5 * noise(x / 9, 0.6, 261) + 2.5 * noise(x / 2.3, 2.6, 263);
    const double fringe = smooth(1.02, 0.985, crown) * smooth(edge + 3, edge - 3, y);
    const double u = std::fabs(x - kFaceX);
    const double lock = 92 - 10 * smooth(220, 300, y) + 6 * std::sin(y / 30 + (x > kFaceX ? 2 : 0));
    const double sides =
        smooth(lock - 3, lock + 3, u) * smooth(138, 132, u) * smooth(196, 230, y) * smooth(470, 380, y);
    return over(below, hairLight(x, y, lighting), std::max(fringe, sides));
}

/// Single hairs that stray beyond the outline.
Dab wisps(Dab below, double x, double y, const Lighting& lighting) {
    Dab dab = below;
    for (int i = 0; i < 46; ++i) {
        const double start = -2.9 + 5.8 * (i + 0.5) / 46 + 0.05 * lattice(i, 1, 271);
        const double reach = 26 + 30 * std::fabs(lattice(i, 2, 271)), curl = 0.35 * lattice(i, 3, 271);
        const double dx = x - kFaceX, dy = y - 250;
        const double angle = std::atan2(dx, -dy), out = std::hypot(dx / 1.0, dy / 1.1) - 112;
        if (out < 0 || out > reach) continue;
        const double along = out / reach, bent = angle - start - curl * along * along;
        const double width = 0.55 * (1 - 0.7 * along);
        const double off = std::fabs(bent) * (out + 112);
        dab = over(dab, hairLight(x, y, lighting) * 1.15,
                   0.85 * (1 - along) * smooth(width + 0.9, width * 0.4, off));
    }
    return dab;
}

/// The figure over `ground`; its light spills over her outline.
Dab figure(Light ground, double x, double y, const Lighting& lighting) {
    Dab dab{ground, 0};
    dab = wisps(dab, x, y, lighting);
    dab = hairBehind(dab, x, y, lighting);
    dab = torso(dab, x, y, lighting);
    dab = neck(dab, x, y, lighting);
    dab = face(dab, x, y, lighting);
    dab = hairBefore(dab, x, y, lighting);
    return dab;
}

/// How near a point inside her is to her outline, 0 to 1: what the ground's light falls on.
double rim(double x, double y, double reach) {
    const double head = ellipse(x, y, kFaceX, 262, 128, 150), drop = std::fabs(x - kFaceX) / 270;
    const double shoulder = y - shoulderRow(drop);
    if (y > 470) return std::exp(-std::max(0.0, shoulder) / reach) * smooth(0.15, 0.5, drop);
    const double out = std::hypot(x - kFaceX, std::min(0.0, y - 250));  // her face and neck are inside
    return smooth(1 - 2 * reach / 130, 1.05, head) * smooth(86, 124, out);
}

player::Bitmap renderFigure(const Lighting& lighting, const std::function<Light(double, double)>& ground) {
    return render(960, 640, 3, [&](double x, double y) {
        const Light behind = ground(x, y);
        Dab dab = figure(behind, x, y, lighting);
        const double reached = rim(x, y, lighting.edge) * 0.34;
        const Light lit = dab.colour + lighting.spill * (reached * (0.35 + 0.65 * dab.colour.g));
        return Dab{mix(behind, lit, dab.cover), 1};
    });
}

}  // namespace

player::Bitmap greenscreen() {
    const Lighting studio{{1.04, 1.0, 0.95}, {0.58, 0.62, 0.62}, {0.02, 0.55, 0.10}, 11};
    return renderFigure(studio, [](double x, double y) {
        const double lit =
            1.06 - 0.34 * ellipse(x, y, 430, 250, 620, 470) + 0.02 * fractal(x / 220, y / 220, 281, 3);
        const double crease = 0.03 * smooth(5, 0, std::fabs(y - 150 - 0.06 * x + 9 * std::sin(x / 150)));
        return light(0x2fb457) * (lit - crease);
    });
}

player::Bitmap portrait() {
    const Lighting evening{{1.08, 0.98, 0.86}, {0.42, 0.46, 0.58}, {0.75, 0.48, 0.22}, 20};
    return renderFigure(evening, [](double x, double y) {
        Light room = mix(light(0x2a2f3e), light(0x6a4a3a),
                         smooth(0, 960, x) * 0.8 + 0.2 * fractal(x / 300, y / 300, 291, 3));
        room = room * mix(1.1, 0.55, y / 640);
        for (int i = 0; i < 26; ++i) {  // lamps of a street, out of focus
            const double cx = 480 + 560 * lattice(i, 1, 293), cy = 190 + 230 * lattice(i, 2, 293);
            const double radius = 16 + 24 * std::fabs(lattice(i, 3, 293)),
                         d = std::hypot(x - cx, y - cy) / radius;
            const Light lamp =
                mix(light(0xffb45a), light(i % 4 == 0 ? 0x7fb8ff : 0xff7a4a), std::fabs(lattice(i, 4, 293)));
            room = room + lamp * (0.34 * smooth(1.04, 0.96, d) * (0.72 + 0.28 * smooth(0.6, 1.0, d)) *
                                  (0.5 + 0.5 * std::fabs(lattice(i, 5, 293))));
        }
        return room;
    });
}

}  // namespace krl::paint
