#include <algorithm>

#include "player/host/Compare.h"
#include "player/host/HostError.h"
#include "player/lingo/Arithmetic.h"
#include "player/lingo/Chunks.h"
#include "player/lingo/ImageTools.h"

/// Linear and property lists.
namespace krl::player {

namespace {

using Entry = PropertyListObject::Entry;

size_t countOf(const Value& value) {
    if (const auto* list = value.as<ListObject>()) return list->items.size();
    if (const auto* properties = value.as<PropertyListObject>()) return properties->entries.size();
    if (value.is(Kind::Point)) return PointObject::kCount;
    return value.is(Kind::Rect) ? RectObject::kCount : 0;
}

/// Converts an index from 1 to an offset; throws if it is out of range.
size_t placeIn(size_t count, int32_t index, const char* function) {
    if (index >= 1 && static_cast<size_t>(index) <= count) return static_cast<size_t>(index - 1);
    throw HostError(std::string(function) + ": expected an index from 1 to " + std::to_string(count) +
                    ", not " + std::to_string(index));
}

int32_t numberOf(const Value& index) {
    if (!index.isNumber())
        throw HostError("expected a number between the brackets, not " + kindName(index.kind()));
    return index.isInteger() ? index.integer() : rounded(index.number());
}

[[noreturn]] void noProperty(const Runtime& runtime, const Value& key) {
    throw HostError("the list has no property " + shownText(runtime.style(), key));
}

Entry* entryUnder(Runtime& runtime, PropertyListObject& list, const Value& key) {
    return const_cast<Entry*>(findEntry(runtime.symbols, list, key));
}

/// The position for `wanted` in a sorted sequence: before the first greater element.
template <class Sequence, class Key>
auto sortedPlace(const Runtime& runtime, Sequence& sequence, const Value& wanted, Key key) {
    return std::find_if(sequence.begin(), sequence.end(),
                        [&](const auto& item) { return compare(runtime.symbols, key(item), wanted) > 0; });
}
const Value& itself(const Value& item) { return item; }
const Value& keyOf(const Entry& entry) { return entry.key; }

Value count(Runtime&, const Arguments& arguments) {
    if (const auto* text = arguments[0].as<StringObject>())
        return Value::integer(countChunks(text->text, ChunkKind::Char, ','));
    return Value::integer(static_cast<int32_t>(countOf(arguments[0])));
}

Value makeList(Runtime& runtime, const Arguments& arguments) {
    Value made = runtime.heap.make<ListObject>();
    auto& list = *made.as<ListObject>();
    list.items.assign(arguments.from(0).begin(), arguments.from(0).end());
    runtime.heap.recount(list);
    return made;
}

Value add(Runtime& runtime, const Arguments& arguments) {
    auto& list = arguments.object<ListObject>(0);
    const auto place =
        list.sorted ? sortedPlace(runtime, list.items, arguments[1], itself) : list.items.end();
    list.items.insert(place, arguments[1]);
    runtime.heap.recount(list);
    return Value();
}

Value append(Runtime& runtime, const Arguments& arguments) {
    auto& list = arguments.object<ListObject>(0);
    list.items.push_back(arguments[1]);
    runtime.heap.recount(list);
    return Value();
}

/// Pads a list with zeros so that `place` exists.
void lengthen(Runtime& runtime, ListObject& list, size_t place) {
    if (place <= list.items.size()) return;
    runtime.heap.mustHold((place - list.items.size()) * sizeof(Value));
    list.items.resize(place, Value::integer(0));
    runtime.heap.recount(list);
}

size_t placeToWrite(const Value& index, const char* function) {
    const int32_t number = numberOf(index);
    if (number < 1)
        throw HostError(std::string(function) + ": expected an index of at least 1, not " +
                        std::to_string(number));
    return static_cast<size_t>(number - 1);
}

Value addAt(Runtime& runtime, const Arguments& arguments) {
    auto& list = arguments.object<ListObject>(0);
    const size_t place = placeToWrite(arguments[1], "addAt");
    lengthen(runtime, list, place);
    list.items.insert(list.items.begin() + static_cast<ptrdiff_t>(place), arguments[2]);
    runtime.heap.recount(list);
    return Value();
}

Value addProp(Runtime& runtime, const Arguments& arguments) {
    auto& list = arguments.object<PropertyListObject>(0);
    const auto place =
        list.sorted ? sortedPlace(runtime, list.entries, arguments[1], keyOf) : list.entries.end();
    list.entries.insert(place, {arguments[1], arguments[2]});
    runtime.heap.recount(list);
    return Value();
}

Value getAt(Runtime& runtime, const Arguments& arguments) {
    if (!arguments[1].isNumber()) arguments.mismatch(1, "an index");
    return elementOf(runtime, arguments[0], Value::integer(arguments.integer(1)));
}

Value setAt(Runtime& runtime, const Arguments& arguments) {
    setElement(runtime, arguments[0], Value::integer(arguments.integer(1)), arguments[2]);
    return Value();
}

/// The value of a property, or at an index of a linear list; VOID if there is none.
Value getaProp(Runtime& runtime, const Arguments& arguments) {
    if (arguments[0].is(Kind::List)) return getAt(runtime, arguments);
    const Entry* entry = entryUnder(runtime, arguments.object<PropertyListObject>(0), arguments[1]);
    return entry ? entry->value : Value();
}

Value getProp(Runtime& runtime, const Arguments& arguments) {
    if (arguments[0].is(Kind::List)) return getAt(runtime, arguments);
    const Entry* entry = entryUnder(runtime, arguments.object<PropertyListObject>(0), arguments[1]);
    if (!entry) noProperty(runtime, arguments[1]);
    return entry->value;
}

Value setaProp(Runtime& runtime, const Arguments& arguments) {
    if (arguments[0].is(Kind::List)) return setAt(runtime, arguments);
    setEntry(runtime, arguments.object<PropertyListObject>(0), arguments[1], arguments[2]);
    return Value();
}

Value setProp(Runtime& runtime, const Arguments& arguments) {
    if (arguments[0].is(Kind::List)) return setAt(runtime, arguments);
    Entry* entry = entryUnder(runtime, arguments.object<PropertyListObject>(0), arguments[1]);
    if (!entry) noProperty(runtime, arguments[1]);
    entry->value = arguments[2];
    return Value();
}

Value getPropAt(Runtime&, const Arguments& arguments) {
    const auto& list = arguments.object<PropertyListObject>(0);
    return list.entries[placeIn(list.entries.size(), arguments.integer(1), "getPropAt")].key;
}

Value getLast(Runtime&, const Arguments& arguments) {
    if (const auto* properties = arguments[0].as<PropertyListObject>())
        return properties->entries.empty() ? Value() : properties->entries.back().value;
    const auto& list = arguments.object<ListObject>(0);
    return list.items.empty() ? Value() : list.items.back();
}

/// The index of a value, from 1; 0 if it is not in the list.
size_t placeOf(const Runtime& runtime, const Value& list, const Value& wanted) {
    const auto same = [&](const Value& value) { return equal(runtime.symbols, value, wanted); };
    if (const auto* properties = list.as<PropertyListObject>()) {
        const auto& entries = properties->entries;
        const auto found =
            std::find_if(entries.begin(), entries.end(), [&](const Entry& e) { return same(e.value); });
        return found == entries.end() ? 0 : static_cast<size_t>(found - entries.begin()) + 1;
    }
    const auto* linear = list.as<ListObject>();
    if (!linear) throw HostError("expected a list to search, not " + kindName(list.kind()));
    const auto found = std::find_if(linear->items.begin(), linear->items.end(), same);
    return found == linear->items.end() ? 0 : static_cast<size_t>(found - linear->items.begin()) + 1;
}

Value getPos(Runtime& runtime, const Arguments& arguments) {
    return Value::integer(static_cast<int32_t>(placeOf(runtime, arguments[0], arguments[1])));
}

/// In a property list, the property that has the value.
Value getOne(Runtime& runtime, const Arguments& arguments) {
    const size_t place = placeOf(runtime, arguments[0], arguments[1]);
    const auto* properties = arguments[0].as<PropertyListObject>();
    if (properties && place > 0) return properties->entries[place - 1].key;
    return Value::integer(static_cast<int32_t>(place));
}

Value findPos(Runtime& runtime, const Arguments& arguments) {
    if (arguments[0].is(Kind::List)) return getPos(runtime, arguments);
    auto& list = arguments.object<PropertyListObject>(0);
    const Entry* entry = entryUnder(runtime, list, arguments[1]);
    return entry ? Value::integer(static_cast<int32_t>(entry - list.entries.data()) + 1) : Value();
}

/// The position of the value in a sorted list, or where it would be inserted.
Value findPosNear(Runtime& runtime, const Arguments& arguments) {
    const auto reached = [&](const auto& sequence, auto key) {
        const auto found = std::find_if(sequence.begin(), sequence.end(), [&](const auto& item) {
            return compare(runtime.symbols, key(item), arguments[1]) >= 0;
        });
        return Value::integer(static_cast<int32_t>(found - sequence.begin()) + 1);
    };
    if (const auto* properties = arguments[0].as<PropertyListObject>())
        return reached(properties->entries, keyOf);
    return reached(arguments.object<ListObject>(0).items, itself);
}

template <class Sequence>
void eraseAt(Sequence& sequence, size_t place) {
    // Moved out first: its destructor may access this list.
    const auto gone = std::move(sequence[place]);
    sequence.erase(sequence.begin() + static_cast<ptrdiff_t>(place));
}

Value deleteAt(Runtime&, const Arguments& arguments) {
    const size_t place = placeIn(countOf(arguments[0]), arguments.integer(1), "deleteAt");
    if (auto* properties = arguments[0].as<PropertyListObject>())
        eraseAt(properties->entries, place);
    else
        eraseAt(arguments.object<ListObject>(0).items, place);
    return Value();
}

Value deleteProp(Runtime& runtime, const Arguments& arguments) {
    if (arguments[0].is(Kind::List)) return deleteAt(runtime, arguments);
    auto& list = arguments.object<PropertyListObject>(0);
    const Entry* entry = entryUnder(runtime, list, arguments[1]);
    if (entry) eraseAt(list.entries, static_cast<size_t>(entry - list.entries.data()));
    return Value::truth(entry != nullptr);
}

Value deleteOne(Runtime& runtime, const Arguments& arguments) {
    const size_t place = placeOf(runtime, arguments[0], arguments[1]);
    if (place == 0) return Value::truth(false);
    if (auto* properties = arguments[0].as<PropertyListObject>())
        eraseAt(properties->entries, place - 1);
    else
        eraseAt(arguments.object<ListObject>(0).items, place - 1);
    return Value::truth(true);
}

Value deleteAll(Runtime&, const Arguments& arguments) {
    if (auto* properties = arguments[0].as<PropertyListObject>())
        std::exchange(properties->entries, {});
    else
        std::exchange(arguments.object<ListObject>(0).items, {});
    return Value();
}

Value sort(Runtime& runtime, const Arguments& arguments) {
    const auto before = [&](const Value& a, const Value& b) { return compare(runtime.symbols, a, b) < 0; };
    if (auto* properties = arguments[0].as<PropertyListObject>()) {
        std::stable_sort(properties->entries.begin(), properties->entries.end(),
                         [&](const Entry& a, const Entry& b) { return before(a.key, b.key); });
        properties->sorted = true;
        return Value();
    }
    auto& list = arguments.object<ListObject>(0);
    std::stable_sort(list.items.begin(), list.items.end(), before);
    list.sorted = true;
    return Value();
}

/// A deep copy of lists; images and other objects in them are shared.
Value copyOf(Runtime& runtime, const Value& value, int depth = 0) {
    if (depth > kDeepestNesting) throw HostError("duplicate: the list is nested too deeply");
    if (const auto* list = value.as<ListObject>()) {
        Value made = runtime.heap.make<ListObject>();
        auto& copy = *made.as<ListObject>();
        copy.items.reserve(list->items.size());
        for (const Value& item : list->items) copy.items.push_back(copyOf(runtime, item, depth + 1));
        copy.sorted = list->sorted;
        runtime.heap.recount(copy);
        return made;
    }
    if (const auto* list = value.as<PropertyListObject>()) {
        Value made = runtime.heap.make<PropertyListObject>();
        auto& copy = *made.as<PropertyListObject>();
        copy.entries.reserve(list->entries.size());
        for (const Entry& entry : list->entries)
            copy.entries.push_back({entry.key, copyOf(runtime, entry.value, depth + 1)});
        copy.sorted = list->sorted;
        runtime.heap.recount(copy);
        return made;
    }
    if (const auto* point = value.as<PointObject>()) return runtime.heap.make<PointObject>(point->values);
    if (const auto* rect = value.as<RectObject>()) return runtime.heap.make<RectObject>(rect->values);
    return value;
}

Value duplicate(Runtime& runtime, const Arguments& arguments) {
    if (const auto* image = arguments[0].as<ImageObject>()) return duplicateImage(runtime, *image);
    return copyOf(runtime, arguments[0]);
}

constexpr Builtin kBuiltins[] = {
    {"count", 1, 1, count},
    {"list", 0, kAnyNumber, makeList},
    {"add", 2, 2, add},
    {"append", 2, 2, append},
    {"addAt", 3, 3, addAt},
    {"addProp", 3, 3, addProp},
    {"getAt", 2, 2, getAt},
    {"setAt", 3, 3, setAt},
    {"getaProp", 2, 2, getaProp},
    {"getProp", 2, 2, getProp},
    {"setaProp", 3, 3, setaProp},
    {"setProp", 3, 3, setProp},
    {"getPropAt", 2, 2, getPropAt},
    {"getLast", 1, 1, getLast},
    {"getPos", 2, 2, getPos},
    {"getOne", 2, 2, getOne},
    {"findPos", 2, 2, findPos},
    {"findPosNear", 2, 2, findPosNear},
    {"deleteAt", 2, 2, deleteAt},
    {"deleteProp", 2, 2, deleteProp},
    {"deleteOne", 2, 2, deleteOne},
    {"deleteAll", 1, 1, deleteAll},
    {"sort", 1, 1, sort},
    {"duplicate", 1, 1, duplicate},
};

}  // namespace

std::span<const Builtin> listBuiltins() { return kBuiltins; }

Value elementOf(Runtime& runtime, const Value& object, const Value& index) {
    if (const auto* properties = object.as<PropertyListObject>()) {
        if (index.isInteger())
            return properties->entries[placeIn(countOf(object), index.integer(), "list")].value;
        const Entry* entry = findEntry(runtime.symbols, *properties, index);
        return entry ? entry->value : Value();
    }
    const int32_t number = numberOf(index);
    if (const auto* list = object.as<ListObject>())
        return list->items[placeIn(list->items.size(), number, "list")];
    if (const auto* point = object.as<PointObject>()) return point->values[placeIn(2, number, "point")];
    if (const auto* rect = object.as<RectObject>()) return rect->values[placeIn(4, number, "rect")];
    throw HostError("expected a list before the brackets, not " + kindName(object.kind()));
}

void deleteElement(Runtime& runtime, const Value& object, const Value& index) {
    const bool byKey = object.is(Kind::PropertyList) && !index.isNumber();
    const std::array<Value, 2> arguments = {object, index};
    (byKey ? deleteProp : deleteAt)(runtime, Arguments("delete", arguments));
}

void setEntry(Runtime& runtime, PropertyListObject& list, const Value& key, const Value& value) {
    if (Entry* entry = entryUnder(runtime, list, key)) {
        const Value gone = std::exchange(entry->value, value);
        return;
    }
    const auto place = list.sorted ? sortedPlace(runtime, list.entries, key, keyOf) : list.entries.end();
    list.entries.insert(place, {key, value});
    runtime.heap.recount(list);
}

namespace {

const Value& coordinate(const Value& value) {
    if (!value.isNumber())
        throw HostError("expected a number for a coordinate, not " + kindName(value.kind()));
    return value;
}

}  // namespace

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
    } else {
        throw HostError("expected a list before the brackets, not " + kindName(object.kind()));
    }
}

}  // namespace krl::player
