#include "player/lingo/Elements.h"

#include "player/host/HostError.h"
#include "player/lingo/Arithmetic.h"
#include "player/lingo/Chunks.h"

namespace krl::player {

namespace {

int32_t numberOf(const Value& index) {
    if (!index.isNumber())
        throw HostError("expected a number between the brackets, not " + kindName(index.kind()));
    return index.isInteger() ? index.integer() : rounded(index.number());
}

const Value& coordinate(const Value& value) {
    if (!value.isNumber())
        throw HostError("expected a number for a coordinate, not " + kindName(value.kind()));
    return value;
}

/// A negative number is the last character; beyond the text there is an empty one.
Value character(Runtime& runtime, const StringObject& text, int32_t number) {
    const auto [first, last] = rangeOf(text.text, ChunkKind::Char, number, number, ',');
    return runtime.text(std::string(findIn(text, ChunkKind::Char, first, last, ',').of(text.text)));
}

[[noreturn]] void refuse(const char* expected, const Value& object, const std::string& instead) {
    const std::string hint = object.is(Kind::String) ? ": " + instead + " changes a text" : "";
    throw HostError(std::string(expected) + ", not " + kindName(object.kind()) + hint);
}

template <class Sequence>
void eraseAt(Sequence& sequence, size_t place) {
    // Moved out first: its destructor may access this list.
    const auto gone = std::move(sequence[place]);
    sequence.erase(sequence.begin() + static_cast<ptrdiff_t>(place));
}

}  // namespace

size_t countOf(const Value& value) {
    if (const auto* list = value.as<ListObject>()) return list->items.size();
    if (const auto* properties = value.as<PropertyListObject>()) return properties->entries.size();
    if (value.is(Kind::Point)) return PointObject::kCount;
    if (const auto* bytes = value.as<ByteArrayObject>()) return bytes->content.size();
    return value.is(Kind::Rect) ? RectObject::kCount : 0;
}

size_t placeIn(size_t count, int32_t index, const char* function) {
    if (index >= 1 && static_cast<size_t>(index) <= count) return static_cast<size_t>(index - 1);
    throw HostError(std::string(function) + ": expected an index from 1 to " + std::to_string(count) +
                    ", not " + std::to_string(index));
}

size_t placeToWrite(const Value& index, const char* function) {
    const int32_t number = numberOf(index);
    if (number < 1)
        throw HostError(std::string(function) + ": expected an index of at least 1, not " +
                        std::to_string(number));
    return static_cast<size_t>(number - 1);
}

void lengthen(Runtime& runtime, ListObject& list, size_t count) {
    if (count <= list.items.size()) return;
    makeRoom(runtime, list.items, count);
    list.items.resize(count, Value::integer(0));
    runtime.heap.recount(list);
}

Entry* entryUnder(const Runtime& runtime, PropertyListObject& list, const Value& key) {
    return const_cast<Entry*>(findEntry(runtime.symbols, list, key));
}

void insertEntry(Runtime& runtime, PropertyListObject& list, std::vector<Entry>::iterator place,
                 const Value& key, const Value& value) {
    if (place != list.entries.end()) list.reordered();
    const auto index = place - list.entries.begin();
    makeRoom(runtime, list.entries, list.entries.size() + 1);
    list.entries.insert(list.entries.begin() + index, {key, value});
    runtime.heap.recount(list);
}

void eraseEntry(PropertyListObject& list, size_t place) {
    list.reordered();
    eraseAt(list.entries, place);
}

void eraseItem(ListObject& list, size_t place) { eraseAt(list.items, place); }

Value elementOf(Runtime& runtime, const Value& object, const Value& index) {
    if (const auto* properties = object.as<PropertyListObject>()) {
        if (index.isInteger())
            return properties->entries[placeIn(countOf(object), index.integer(), "list")].value;
        const Entry* entry = findEntry(runtime.symbols, *properties, index);
        return entry ? entry->value : Value();
    }
    const int32_t number = numberOf(index);
    if (const auto* text = object.as<StringObject>()) return character(runtime, *text, number);
    if (const auto* list = object.as<ListObject>())
        return list->items[placeIn(list->items.size(), number, "list")];
    if (const auto* point = object.as<PointObject>())
        return point->values[placeIn(PointObject::kCount, number, "point")];
    if (const auto* rect = object.as<RectObject>())
        return rect->values[placeIn(RectObject::kCount, number, "rect")];
    if (const auto* vector = object.as<VectorObject>())
        return runtime.heap.number(vector->parts[placeIn(vector->parts.size(), number, "vector")]);
    if (const auto* bytes = object.as<ByteArrayObject>())
        return Value::integer(bytes->content[placeIn(bytes->content.size(), number, "byteArray")]);
    throw HostError("expected a list before the brackets, not " + kindName(object.kind()));
}

void setElement(Runtime& runtime, const Value& object, const Value& index, const Value& value) {
    if (auto* properties = object.as<PropertyListObject>()) {
        if (!index.isInteger()) return setEntry(runtime, *properties, index, value);
        properties->entries[placeIn(countOf(object), index.integer(), "list")].value = value;
    } else if (auto* list = object.as<ListObject>()) {
        const size_t place = placeToWrite(index, "list");
        lengthen(runtime, *list, place + 1);
        list->items[place] = value;
    } else if (auto* point = object.as<PointObject>()) {
        point->values[placeIn(PointObject::kCount, numberOf(index), "point")] = coordinate(value);
    } else if (auto* rect = object.as<RectObject>()) {
        rect->values[placeIn(RectObject::kCount, numberOf(index), "rect")] = coordinate(value);
    } else if (auto* vector = object.as<VectorObject>()) {
        vector->parts[placeIn(vector->parts.size(), numberOf(index), "vector")] = coordinate(value).number();
    } else if (auto* bytes = object.as<ByteArrayObject>()) {
        const size_t place = placeIn(bytes->content.size(), numberOf(index), "byteArray");
        bytes->content[place] = static_cast<uint8_t>(numberOf(value));
    } else {
        refuse("expected a list before the brackets", object, "put ... into char n of");
    }
}

void setEntry(Runtime& runtime, PropertyListObject& list, const Value& key, const Value& value) {
    if (Entry* entry = entryUnder(runtime, list, key)) {
        const Value gone = std::exchange(entry->value, value);
        return;
    }
    const auto place = list.sorted ? sortedPlace(runtime, list.entries, key, keyOf) : list.entries.end();
    insertEntry(runtime, list, place, key, value);
}

void deleteElement(Runtime& runtime, const Value& object, const Value& index) {
    auto* list = object.as<ListObject>();
    auto* properties = object.as<PropertyListObject>();
    if (properties && !index.isNumber()) {
        if (const Entry* entry = entryUnder(runtime, *properties, index))
            eraseEntry(*properties, static_cast<size_t>(entry - properties->entries.data()));
        return;
    }
    if (!list && !properties) refuse("expected a list to delete from", object, "delete char n of");
    const size_t place = placeIn(countOf(object), numberOf(index), "delete");
    if (properties)
        eraseEntry(*properties, place);
    else
        eraseItem(*list, place);
}

}  // namespace krl::player
