#include "effects/key/SpillSuppression.h"

#include "core/Bands.h"
#include "core/ByteArithmetic.h"
#include "core/PixelWord.h"
#include "core/VectorLevels.h"

namespace krl {

namespace {

/// Where in a pixel's word the channels stand. The key is limited by the mean of `other` and
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

KRL_VECTOR_LEVELS void suppressSpan(Pixel* first, ptrdiff_t count, SpillRoles roles, int32_t strength) {
    const int32_t kept = 255 - strength;
    for (ptrdiff_t i = 0; i < count; ++i) {
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

Status spillSupression(ImageEngine& engine, KeyColour spillColour, bool extended, int32_t transparency) {
    const SpillRoles roles(spillColour, extended);
    const int32_t strength = clampByte(transparency);
    return forEachSpan(
        engine, [&](Pixel* first, Pixel* last) { suppressSpan(first, last - first, roles, strength); });
}

}  // namespace krl
