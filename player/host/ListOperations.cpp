#include "player/host/Compare.h"
#include "player/host/EmbeddedHost.h"
#include "player/host/Objects.h"

/// The plug-in's list operations. An element is returned with a reference, a property key without.
namespace krl::player {

using namespace host;

namespace {

/// The list behind `value`, or null.
template <class ListType>
ListType* listOf(HostInterface* self, const ScriptValue* value) {
    if (kindOf(*value) != ListType::kKind) return nullptr;
    return static_cast<ListType*>(hostOf(self).heap.find(*value));
}

HostStatus refused(HostInterface* self, const ScriptValue* value) {
    const bool list = kindOf(*value) == Kind::List || kindOf(*value) == Kind::PropertyList;
    return list && !hostOf(self).heap.find(*value) ? kStaleValue : kWrongKind;
}

/// Adds the list's own reference to a value; false for a stale handle.
bool share(HostInterface* self, const ScriptValue& words, Value& shared) {
    shared = Value::sharing(hostOf(self).heap, words);
    return !onHeap(words) || !shared.isVoid();
}

HostStatus give(const Value& value, ScriptValue* out) {
    *out = Value(value).release();
    return kHostOk;
}

template <class ListType>
HostStatus makeList(HostInterface* self, ScriptValue* list) {
    return guardedAnswer(self, [&] {
        *list = hostOf(self).heap.make<ListType>().release();
        return kHostOk;
    });
}

HostStatus KRL_HOST_CALL newList(HostInterface* self, ScriptValue* list) {
    return makeList<ListObject>(self, list);
}

HostStatus KRL_HOST_CALL newPropertyList(HostInterface* self, ScriptValue* list) {
    return makeList<PropertyListObject>(self, list);
}

HostStatus KRL_HOST_CALL appendToList(HostInterface* self, const ScriptValue* list,
                                      const ScriptValue* value) {
    return guardedAnswer(self, [&]() -> HostStatus {
        auto* linear = listOf<ListObject>(self, list);
        if (!linear) return refused(self, list);
        Value shared;
        if (!share(self, *value, shared)) return kStaleValue;
        linear->items.push_back(std::move(shared));
        hostOf(self).heap.recount(*linear);
        return kHostOk;
    });
}

HostStatus KRL_HOST_CALL appendProperty(HostInterface* self, const ScriptValue* list, const ScriptValue* key,
                                        const ScriptValue* value) {
    return guardedAnswer(self, [&]() -> HostStatus {
        auto* properties = listOf<PropertyListObject>(self, list);
        if (!properties) return refused(self, list);
        PropertyListObject::Entry entry;
        if (!share(self, *key, entry.key) || !share(self, *value, entry.value)) return kStaleValue;
        properties->entries.push_back(std::move(entry));
        hostOf(self).heap.recount(*properties);
        return kHostOk;
    });
}

int32_t KRL_HOST_CALL countElements(HostInterface* self, const ScriptValue* list) {
    if (const auto* linear = listOf<ListObject>(self, list))
        return static_cast<int32_t>(linear->items.size());
    if (const auto* properties = listOf<PropertyListObject>(self, list))
        return static_cast<int32_t>(properties->entries.size());
    return -1;
}

HostStatus KRL_HOST_CALL elementByIndex(HostInterface* self, const ScriptValue* list, int32_t index,
                                        ScriptValue* element) {
    *element = {};
    const int32_t count = countElements(self, list);
    if (count < 0) return refused(self, list);
    if (index < 1 || index > count) return kNoSuchElement;
    const auto place = static_cast<size_t>(index - 1);
    if (const auto* linear = listOf<ListObject>(self, list)) return give(linear->items[place], element);
    return give(listOf<PropertyListObject>(self, list)->entries[place].value, element);
}

HostStatus KRL_HOST_CALL elementByKey(HostInterface* self, const ScriptValue* list, const ScriptValue* key,
                                      ScriptValue* element) {
    return guardedAnswer(self, [&]() -> HostStatus {
        *element = {};
        const auto* properties = listOf<PropertyListObject>(self, list);
        if (!properties) return refused(self, list);
        Value wanted;
        if (!share(self, *key, wanted)) return kStaleValue;
        const auto* entry = findEntry(hostOf(self).symbols, *properties, wanted);
        return entry ? give(entry->value, element) : kNoSuchElement;
    });
}

HostStatus KRL_HOST_CALL propertyByIndex(HostInterface* self, const ScriptValue* list, int32_t index,
                                         ScriptValue* key) {
    *key = {};
    const auto* properties = listOf<PropertyListObject>(self, list);
    if (!properties) return refused(self, list);
    if (index < 1 || static_cast<size_t>(index) > properties->entries.size()) return kNoSuchElement;
    *key = properties->entries[static_cast<size_t>(index - 1)].key.words();
    return kHostOk;
}

}  // namespace

void fillListOperations(Service& service) {
    service.set<lists::NewList>(newList)
        .set<lists::AppendToList>(appendToList)
        .set<lists::CountElements>(countElements)
        .set<lists::GetElementByIndex>(elementByIndex)
        .set<lists::NewPropertyList>(newPropertyList)
        .set<lists::AppendProperty>(appendProperty)
        .set<lists::GetElementByKey>(elementByKey)
        .set<lists::GetPropertyByIndex>(propertyByIndex);
}

}  // namespace krl::player
