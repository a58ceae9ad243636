#include "player/lingo/Inks.h"

#include <algorithm>

#include "catalogue/NearestName.h"
#include "core/Numbers.h"
#include "player/host/HostError.h"
#include "player/host/SymbolTable.h"
#include "player/lingo/Arithmetic.h"

namespace krl::player {

namespace {

struct Named {
    const char* name;
    Ink ink;
};

constexpr Named kInks[] = {
    {"copy", Ink::Copy},
    {"transparent", Ink::Transparent},
    {"reverse", Ink::Reverse},
    {"ghost", Ink::Ghost},
    {"notCopy", Ink::NotCopy},
    {"notTransparent", Ink::NotTransparent},
    {"notReverse", Ink::NotReverse},
    {"notGhost", Ink::NotGhost},
    {"matte", Ink::Matte},
    {"mask", Ink::Mask},
    {"blend", Ink::Blend},
    {"addPin", Ink::AddPin},
    {"add", Ink::Add},
    {"subtractPin", Ink::SubtractPin},
    {"backgroundTransparent", Ink::BackgroundTransparent},
    {"lightest", Ink::Lightest},
    {"subtract", Ink::Subtract},
    {"darkest", Ink::Darkest},
    {"lighten", Ink::Lighten},
    {"darken", Ink::Darken},
};

bool sameColour(const Pixel& a, const Pixel& b) {
    return a.blue == b.blue && a.green == b.green && a.red == b.red;
}

/// Whether the ink leaves out what has the background's colour.
bool leavesOutBackground(Ink ink) {
    return ink == Ink::Transparent || ink == Ink::NotTransparent || ink == Ink::BackgroundTransparent;
}

bool isInverted(Ink ink) {
    return ink == Ink::NotCopy || ink == Ink::NotTransparent || ink == Ink::NotReverse ||
           ink == Ink::NotGhost;
}

/// One channel: source `s`, target `d`, and the channel of the two colours.
int32_t channelOf(Ink ink, int32_t s, int32_t d, int32_t front, int32_t back) {
    switch (ink) {
        case Ink::Reverse:
        case Ink::NotReverse:
            return 255 - (s ^ d);
        case Ink::Ghost:
        case Ink::NotGhost:
            return d | (255 - s);
        case Ink::AddPin:
            return std::min(d + s, 255);
        case Ink::Add:
            return (d + s) & 255;
        case Ink::SubtractPin:
            return std::max(d - s, 0);
        case Ink::Subtract:
            return (d - s) & 255;
        case Ink::Lightest:
            return std::max(d, s);
        case Ink::Darkest:
            return std::min(d, s);
        case Ink::Lighten:
            return clampByte(255 - (255 - s) * back / 255 + front);
        case Ink::Darken:
            return clampByte(s * back / 255 + front);
        default:
            return s;
    }
}

/// Black becomes `front`, white `back`.
int32_t tinted(int32_t level, int32_t front, int32_t back) {
    return (front * (255 - level) + back * level + 127) / 255;
}

}  // namespace

Ink inkOf(const Runtime& runtime, const Value& value) {
    const std::string wanted = value.is(Kind::Symbol) ? runtime.symbols.spelling(value.symbol()) : "";
    const int32_t number = value.isInteger()       ? value.integer()
                           : value.is(Kind::Float) ? rounded(value.number())
                                                   : -1;
    std::vector<std::string> names;
    for (const Named& entry : kInks) {
        const bool named = !wanted.empty() && sameText(wanted, entry.name);
        if (named || static_cast<int32_t>(entry.ink) == number) return entry.ink;
        names.emplace_back(entry.name);
    }
    throw HostError("copyPixels: there is no ink " + shownText(runtime.style(), value) +
                    didYouMean(wanted, names));
}

bool inked(Ink ink, const InkColours& colours, const Pixel& source, const Pixel& below, Pixel& result) {
    if (leavesOutBackground(ink) && sameColour(source, colours.back)) return false;
    const bool filter = ink == Ink::Lighten || ink == Ink::Darken;
    for (size_t channel = 0; channel < 3; ++channel) {
        int32_t level = isInverted(ink) ? 255 - source[channel] : source[channel];
        const int32_t white = leavesOutBackground(ink) ? 255 : colours.back[channel];
        if (colours.tinted && !filter) level = tinted(level, colours.front[channel], white);
        result[channel] = static_cast<uint8_t>(
            channelOf(ink, level, below[channel], colours.front[channel], colours.back[channel]));
    }
    result.alpha = source.alpha;
    return true;
}

}  // namespace krl::player
