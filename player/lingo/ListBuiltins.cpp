#include <algorithm>

#include "player/host/Compare.h"
#include "player/host/HostError.h"
#include "player/lingo/Arithmetic.h"
#include "player/lingo/Chunks.h"
#include "player/lingo/Elements.h"
#include "player/lingo/ImageTools.h"

/// Linear and property lists.
namespace krl::player {

namespace {

PropertyHolder* holderIn(const Value& value) {
    if (PropertyHolder* instance = value.as<InstanceObject>()) return instance;
    return value.as<ScriptObject>();
}

[[noreturn]] void noProperty(const Runtime& runtime, const Value& key) {
    throw HostError("the list has no property " + shownText(runtime.style(), key));
}

/// The kind of chunk that a symbol such as #word names.
ChunkKind chunkNamed(const Runtime& runtime, const Arguments& arguments, size_t index) {
    static constexpr const char* names[] = {"char", "word", "item", "line"};
    const std::string& wanted = runtime.symbols.spelling(arguments.symbol(index));
    for (int i = 0; i < 4; ++i)
        if (sameText(wanted, names[i])) return static_cast<ChunkKind>(i);
    arguments.mismatch(index, "#char, #word, #item or #line");
}

/// The value of the property that argument 1 names.
Value inner(Runtime& runtime, const Arguments& arguments) {
    return runtime.propertyNamed(arguments[0], arguments[1]);
}

/// Of a list; of the chars of a string; of the chunks of a kind; of the list in a property.
Value count(Runtime& runtime, const Arguments& arguments) {
    if (const auto* text = arguments[0].as<StringObject>()) {
        const ChunkKind kind = arguments.has(1) ? chunkNamed(runtime, arguments, 1) : ChunkKind::Char;
        return Value::integer(countIn(*text, kind, runtime.settings.itemDelimiter));
    }
    if (arguments.has(1)) {
        const Value list = inner(runtime, arguments);
        return count(runtime, Arguments("count", {&list, 1}));
    }
    if (const PropertyHolder* holder = holderIn(arguments[0]))
        return Value::integer(static_cast<int32_t>(holder->properties.size()));
    return Value::integer(static_cast<int32_t>(countOf(arguments[0])));
}

Value makeList(Runtime& runtime, const Arguments& arguments) {
    Value made = runtime.heap.make<ListObject>();
    auto& list = *made.as<ListObject>();
    list.items.assign(arguments.from(0).begin(), arguments.from(0).end());
    runtime.heap.recount(list);
    return made;
}

/// `propList(#a, 1, #b, 2)`
Value makePropertyList(Runtime& runtime, const Arguments& arguments) {
    if (arguments.count() % 2 != 0)
        throw HostError("propList: expected a value for each property, not " +
                        std::to_string(arguments.count()) + " arguments");
    Value made = runtime.heap.make<PropertyListObject>();
    auto& list = *made.as<PropertyListObject>();
    for (size_t i = 0; i < arguments.count(); i += 2)
        list.entries.push_back({arguments[i], arguments[i + 1]});
    runtime.heap.recount(list);
    return made;
}

Value add(Runtime& runtime, const Arguments& arguments) {
    auto& list = arguments.object<ListObject>(0);
    makeRoom(runtime, list.items, list.items.size() + 1);
    const auto place =
        list.sorted ? sortedPlace(runtime, list.items, arguments[1], itself) : list.items.end();
    list.items.insert(place, arguments[1]);
    runtime.heap.recount(list);
    return Value();
}

Value append(Runtime& runtime, const Arguments& arguments) {
    auto& list = arguments.object<ListObject>(0);
    makeRoom(runtime, list.items, list.items.size() + 1);
    list.items.push_back(arguments[1]);
    runtime.heap.recount(list);
    return Value();
}

Value addAt(Runtime& runtime, const Arguments& arguments) {
    auto& list = arguments.object<ListObject>(0);
    const size_t place = placeToWrite(arguments[1], "addAt");
    lengthen(runtime, list, place);
    makeRoom(runtime, list.items, list.items.size() + 1);
    list.items.insert(list.items.begin() + static_cast<ptrdiff_t>(place), arguments[2]);
    runtime.heap.recount(list);
    return Value();
}

Value addProp(Runtime& runtime, const Arguments& arguments) {
    auto& list = arguments.object<PropertyListObject>(0);
    const auto place =
        list.sorted ? sortedPlace(runtime, list.entries, arguments[1], keyOf) : list.entries.end();
    insertEntry(runtime, list, place, arguments[1], arguments[2]);
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
    if (holderIn(arguments[0])) return inner(runtime, arguments);
    if (arguments[0].is(Kind::List)) return getAt(runtime, Arguments("getaProp", arguments.from(0).first(2)));
    const Entry* entry = entryUnder(runtime, arguments.object<PropertyListObject>(0), arguments[1]);
    return entry ? entry->value : arguments[2];
}

/// `getProp(text, #word, 2)`, also with the last of several.
Value chunkOf(Runtime& runtime, const Arguments& arguments) {
    const std::string& whole = arguments.text(0);
    const ChunkKind kind = chunkNamed(runtime, arguments, 1);
    const int32_t first = arguments.integer(2), last = arguments.has(3) ? arguments.integer(3) : first;
    const char delimiter = runtime.settings.itemDelimiter;
    const auto [from, to] = rangeOf(whole, kind, first, last, delimiter);
    return runtime.text(std::string(findChunk(whole, kind, from, to, delimiter).of(whole)));
}

Value getProp(Runtime& runtime, const Arguments& arguments) {
    if (arguments[0].is(Kind::String)) return chunkOf(runtime, arguments);
    if (arguments.has(2)) return elementOf(runtime, inner(runtime, arguments), arguments[2]);
    if (holderIn(arguments[0])) return inner(runtime, arguments);
    if (arguments[0].is(Kind::List)) return getAt(runtime, arguments);
    const Entry* entry = entryUnder(runtime, arguments.object<PropertyListObject>(0), arguments[1]);
    if (!entry) noProperty(runtime, arguments[1]);
    return entry->value;
}

/// In an object, or in the list under a property.
bool setInside(Runtime& runtime, const Arguments& arguments) {
    if (arguments.count() == 4)
        setElement(runtime, inner(runtime, arguments), arguments[2], arguments[3]);
    else if (holderIn(arguments[0]))
        runtime.setPropertyNamed(arguments[0], arguments[1], arguments[2]);
    else
        return false;
    return true;
}

Value setaProp(Runtime& runtime, const Arguments& arguments) {
    if (setInside(runtime, arguments)) return Value();
    if (arguments[0].is(Kind::List)) return setAt(runtime, arguments);
    setEntry(runtime, arguments.object<PropertyListObject>(0), arguments[1], arguments[2]);
    return Value();
}

Value setProp(Runtime& runtime, const Arguments& arguments) {
    if (setInside(runtime, arguments)) return Value();
    if (arguments[0].is(Kind::List)) return setAt(runtime, arguments);
    Entry* entry = entryUnder(runtime, arguments.object<PropertyListObject>(0), arguments[1]);
    if (!entry) noProperty(runtime, arguments[1]);
    entry->value = arguments[2];
    return Value();
}

Value getPropAt(Runtime&, const Arguments& arguments) {
    if (const PropertyHolder* holder = holderIn(arguments[0])) {
        const auto& names = holder->script.syntax->properties;
        return Value::symbol(names[placeIn(names.size(), arguments.integer(1), "getPropAt")]);
    }
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

Value deleteAt(Runtime&, const Arguments& arguments) {
    const size_t place = placeIn(countOf(arguments[0]), arguments.integer(1), "deleteAt");
    if (auto* properties = arguments[0].as<PropertyListObject>())
        eraseEntry(*properties, place);
    else
        eraseItem(arguments.object<ListObject>(0), place);
    return Value();
}

Value deleteProp(Runtime& runtime, const Arguments& arguments) {
    if (arguments[0].is(Kind::List)) return deleteAt(runtime, arguments);
    auto& list = arguments.object<PropertyListObject>(0);
    const Entry* entry = entryUnder(runtime, list, arguments[1]);
    if (entry) eraseEntry(list, static_cast<size_t>(entry - list.entries.data()));
    return Value::truth(entry != nullptr);
}

Value deleteOne(Runtime& runtime, const Arguments& arguments) {
    const size_t place = placeOf(runtime, arguments[0], arguments[1]);
    if (place == 0) return Value::truth(false);
    if (auto* properties = arguments[0].as<PropertyListObject>())
        eraseEntry(*properties, place - 1);
    else
        eraseItem(arguments.object<ListObject>(0), place - 1);
    return Value::truth(true);
}

Value deleteAll(Runtime&, const Arguments& arguments) {
    if (auto* properties = arguments[0].as<PropertyListObject>()) {
        properties->reordered();
        std::exchange(properties->entries, {});
    } else {
        std::exchange(arguments.object<ListObject>(0).items, {});
    }
    return Value();
}

Value sort(Runtime& runtime, const Arguments& arguments) {
    const auto before = [&](const Value& a, const Value& b) { return compare(runtime.symbols, a, b) < 0; };
    if (auto* properties = arguments[0].as<PropertyListObject>()) {
        std::stable_sort(properties->entries.begin(), properties->entries.end(),
                         [&](const Entry& a, const Entry& b) { return before(a.key, b.key); });
        properties->reordered();
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
    if (const auto* vector = value.as<VectorObject>()) return runtime.heap.make<VectorObject>(vector->parts);
    if (const auto* matrix = value.as<TransformObject>())
        return runtime.heap.make<TransformObject>(matrix->matrix);
    if (const auto* bytes = value.as<ByteArrayObject>())
        return runtime.heap.make<ByteArrayObject>(bytes->content);
    if (const auto* date = value.as<DateObject>())
        return runtime.heap.make<DateObject>(date->year, date->month, date->day, date->seconds);
    return value;
}

Value duplicate(Runtime& runtime, const Arguments& arguments) {
    if (const auto* image = arguments[0].as<ImageObject>()) return duplicateImage(runtime, *image);
    if (arguments[0].is(Kind::Member)) return duplicateMember(runtime, arguments[0], arguments[1]);
    if (arguments.has(1)) arguments.mismatch(0, "a member");
    return copyOf(runtime, arguments[0]);
}

constexpr Builtin kBuiltins[] = {
    {"count", 1, 2, count},
    {"list", 0, kAnyNumber, makeList},
    {"propList", 0, kAnyNumber, makePropertyList},
    {"add", 2, 2, add},
    {"append", 2, 2, append},
    {"addAt", 3, 3, addAt},
    {"addProp", 3, 3, addProp},
    {"getAt", 2, 2, getAt},
    {"setAt", 3, 3, setAt},
    {"getaProp", 2, 3, getaProp},
    {"getProp", 2, 4, getProp},
    {"getPropRef", 2, 4, getProp},
    {"setaProp", 3, 4, setaProp},
    {"setProp", 3, 4, setProp},
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
    {"duplicate", 1, 2, duplicate},
};

}  // namespace

std::span<const Builtin> listBuiltins() { return kBuiltins; }

}  // namespace krl::player
