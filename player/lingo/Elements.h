#pragma once

#include <algorithm>

#include "player/host/Compare.h"
#include "player/lingo/Runtime.h"

/// How functions reach, add and remove the elements of lists.
namespace krl::player {

using Entry = PropertyListObject::Entry;

/// The number of elements of a list, point or rect; 0 for anything else.
size_t countOf(const Value& value);
/// Converts an index from 1 to an offset; throws if it is out of range.
size_t placeIn(size_t count, int32_t index, const char* function);
/// Converts an index that may be beyond the end.
size_t placeToWrite(const Value& index, const char* function);
/// Reserves room for the elements of a list, within the limits of memory.
template <class Element>
void makeRoom(Runtime& runtime, std::vector<Element>& elements, size_t count) {
    if (count <= elements.capacity()) return;
    const uint64_t bytes =
        runtime.heap.grown("list", elements.capacity() * sizeof(Element), count * sizeof(Element));
    elements.reserve(static_cast<size_t>(bytes / sizeof(Element)));
}

/// Pads a list with zeros so that it has `count` elements.
void lengthen(Runtime& runtime, ListObject& list, size_t count);

/// The entry under `key`, or null.
Entry* entryUnder(const Runtime& runtime, PropertyListObject& list, const Value& key);
void insertEntry(Runtime& runtime, PropertyListObject& list, std::vector<Entry>::iterator place,
                 const Value& key, const Value& value);
void eraseEntry(PropertyListObject& list, size_t place);
void eraseItem(ListObject& list, size_t place);

inline const Value& itself(const Value& item) { return item; }
inline const Value& keyOf(const Entry& entry) { return entry.key; }

/// The position for `wanted` in a sorted sequence: before the first greater element.
template <class Sequence, class Key>
auto sortedPlace(const Runtime& runtime, Sequence& sequence, const Value& wanted, Key key) {
    return std::find_if(sequence.begin(), sequence.end(),
                        [&](const auto& item) { return compare(runtime.symbols, key(item), wanted) > 0; });
}

}  // namespace krl::player
