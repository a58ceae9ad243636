#include "player/host/Objects.h"

#include <functional>
#include <utility>

namespace krl::player {

namespace {

bool beginsChar(char byte) { return (byte & 0xC0) != 0x80; }

/// A hash for keys that can be told apart by it; 0 for the others.
uint64_t hashOf(const Value& key) {
    const uint64_t kind = (static_cast<uint64_t>(key.kind()) + 1) << 56;
    switch (key.kind()) {
        case Kind::Symbol:
            return kind | static_cast<uint32_t>(key.symbol());
        case Kind::Integer:
            return kind | static_cast<uint32_t>(key.integer());
        case Kind::String:
            return kind ^ (std::hash<std::string>()(key.as<StringObject>()->text) >> 8);
        default:
            return 0;
    }
}

}  // namespace

void StringObject::append(std::string_view more) { text.append(more); }

/// Counts the characters of what was appended since the last time. Continuation bytes at the very beginning
/// belong to a first character of their own.
void StringObject::surveyRest() const {
    for (size_t place = surveyed_; place < text.size(); ++place) {
        if (!beginsChar(text[place]) && place > 0) {
            if (index_) continue;
            index_ = std::make_unique<std::vector<size_t>>();
            for (size_t begin = 0; begin < length_; begin += kStep) index_->push_back(begin);
            continue;
        }
        if (index_ && length_ % kStep == 0) index_->push_back(place);
        ++length_;
    }
    surveyed_ = text.size();
}

size_t StringObject::length() const {
    survey();
    return length_;
}

size_t StringObject::beginOfChar(size_t number) const {
    survey();
    if (number >= length_) return text.size();
    if (!index_) return number;
    size_t place = (*index_)[number / kStep];
    for (size_t left = number % kStep; left > 0; --left) do
            ++place;
        while (place < text.size() && !beginsChar(text[place]));
    return place;
}

/// The first entry of each hash among those that were there at the last look-up.
struct PropertyListObject::Index {
    struct Slot {
        uint64_t hash = 0;  ///< 0 in a free slot
        size_t entry = 0;
    };

    /// The slot of a hash, or the free one where it belongs.
    Slot& slotOf(uint64_t hash) {
        const size_t mask = slots.size() - 1;
        auto place = static_cast<size_t>(hash * 0x9E3779B97F4A7C15u >> 32) & mask;
        while (slots[place].hash != 0 && slots[place].hash != hash) place = (place + 1) & mask;
        return slots[place];
    }
    void add(uint64_t hash, size_t entry) {
        if (hash == 0) return;
        if ((used + 1) * 2 > slots.size()) {
            const std::vector<Slot> old = std::exchange(slots, std::vector<Slot>(slots.size() * 2));
            for (const Slot& slot : old)
                if (slot.hash != 0) slotOf(slot.hash) = slot;
        }
        Slot& slot = slotOf(hash);
        if (slot.hash != 0) return;
        slot = {hash, entry};
        ++used;
    }

    std::vector<Slot> slots = std::vector<Slot>(64);  ///< a power of two, at most half of them used
    size_t used = 0;
    size_t entries = 0;
    bool symbols = false, strings = false;
};

void PropertyListObject::IndexDeleter::operator()(Index* index) const { delete index; }

const PropertyListObject::Entry* PropertyListObject::guess(const Value& key, bool& certain) const {
    constexpr size_t kFew = 12;
    certain = false;
    const uint64_t wanted = entries.size() > kFew ? hashOf(key) : 0;
    if (wanted == 0) return nullptr;
    if (!index_ || index_->entries > entries.size()) index_.reset(new Index);
    for (; index_->entries < entries.size(); ++index_->entries) {
        const Value& known = entries[index_->entries].key;
        index_->symbols |= known.is(Kind::Symbol);
        index_->strings |= known.is(Kind::String);
        index_->add(hashOf(known), index_->entries);
    }
    if (const Index::Slot& found = index_->slotOf(wanted); found.hash != 0) return &entries[found.entry];
    // Without an entry of its own, a name finds the symbol or string of that name.
    const bool named = key.is(Kind::Symbol) || key.is(Kind::String);
    certain = !named || !(key.is(Kind::Symbol) ? index_->strings : index_->symbols);
    return nullptr;
}

}  // namespace krl::player
