#include "catalogue/Catalogue.h"
#include "core/Bands.h"
#include "core/ByteArithmetic.h"
#include "core/PixelWord.h"
#include "core/VectorLevels.h"
#include "effects/key/KeyChannels.h"
#include "effects/key/KeyChoices.h"

namespace krl {

namespace {

/// Where in a pixel's word the channels are. The key is limited by the mean of `other` and
/// `partner`; where it is and `other` exceeds `partner`, the follower goes to the mean as well. In the
/// plain rule `other` is its own partner, so the mean is itself and nothing follows.
struct SpillRoles {
    uint32_t key, follower, other, partner;

    SpillRoles(KeyColour colour, bool extended) : key(uint32_t(channelNumber(colour)) * 8) {
        follower = colour == KeyColour::Red ? 8 : 16;
        other = 24 - key - follower;
        partner = extended ? follower : other;
    }
};

KRL_VECTOR_LEVELS void suppressSpan(Pixel* first, size_t count, SpillRoles roles, int32_t strength) {
    const int32_t kept = 255 - strength;
    for (size_t i = 0; i < count; ++i) {
        const uint32_t word = wordOf(first[i]);
        const int32_t key = byteAt(word, roles.key), follower = byteAt(word, roles.follower);
        const int32_t other = byteAt(word, roles.other), partner = byteAt(word, roles.partner);
        const int32_t limit = (other + partner) >> 1;
        const int32_t limited = key > limit ? limit : key;
        const int32_t drawn = other > partner ? limit : follower;
        const int32_t followed = key > limit ? drawn : follower;

        const int32_t newKey = dividedBy255(key * kept) + dividedBy255(limited * strength);
        const int32_t newFollower = dividedBy255(follower * kept) + dividedBy255(followed * strength);
        const int32_t newOther = dividedBy255(other * kept) + dividedBy255(other * strength);
        storeWord(first[i], (word & 0xFF000000) | uint32_t(newKey) << roles.key |
                                uint32_t(newFollower) << roles.follower | uint32_t(newOther) << roles.other);
    }
}

}  // namespace

/// Takes the backing's cast out of the colours: the key channel is limited by another, or by the mean of the
/// other two in the `extended` rule, and `transparency` of 255 of the correction is taken.
Status spillSupression(ImageEngine& engine, KeyColour spillColour, bool extended, int32_t transparency) {
    const SpillRoles roles(spillColour, extended);
    const int32_t strength = clampByte(transparency);
    return forEachSpan(engine, [&](Pixel* first, Pixel* last) {
        suppressSpan(first, static_cast<size_t>(last - first), roles, strength);
    });
}

void describeSpillSupression(Catalogue& catalogue) {
    catalogue.add("krlImageSpillSupression", spillSupression)
        .summary("Takes the backing's tint out of a keyed picture.")
        .words("despill, green edge, spill suppression, fringe, green screen")
        .symbol("spillColour", backings(), refused("Spill Suppression invalid input colour (Image)"),
                "colour of the backing")
        .symbol("type", {{"extended", true}, {"plain", false}}, otherwise(false),
                "extended limits by the mean of the other two colours, any other symbol by one of them")
        .integer("transparency",
                 {.from = 0, .to = 255, .example = 255, .least = 0, .most = 255, .neutral = 0},
                 "strength, 255 being full")
        .inputFailure("Spill Suppression input failure (Image)")
        .worksPerPixel()
        .failed("Failed Spill Suppression function (Image)");
}

}  // namespace krl
