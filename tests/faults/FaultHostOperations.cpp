#include <cstdio>
#include <cstring>

#include "faults/FaultHost.h"
#include "host/Identifiers.h"

/// The operations that the plug-in calls, service by service.
namespace krl::test {

using namespace host;

namespace {

constexpr HostStatus kWrongKind = 1;
constexpr uint32_t kNewPictureSeed = 1000;

template <class Answer>
HostStatus refused(FaultHost& host, HostStatus status, Answer* out) {
    if (host.writesGarbage()) std::memset(static_cast<void*>(out), 0x5A, sizeof(*out));
    return status;
}

bool isInteger(const ScriptValue& value) { return value.words[1] == static_cast<int32_t>(HostKind::Integer); }

}  // namespace

/// Access to the nodes, for the operations below.
struct FaultHostOperations {
    using Node = FaultHost::Node;

    /// Enters `operation` and finds the node of a kind; what it answers without one.
    static HostStatus open(FaultHost& host, const char* operation, const ScriptValue* value, HostKind kind,
                           Node*& node) {
        if (HostStatus status = host.enter(operation)) return status;
        node = host.find(*value, kind);
        return node ? kHostOk : kWrongKind;
    }

    // values
    static HostStatus KRL_HOST_CALL internSymbol(HostInterface* self, const char* name, SymbolId* out) {
        FaultHost& host = FaultHost::of(self);
        if (HostStatus status = host.enter("internSymbol", name)) return refused(host, status, out);
        *out = host.intern(name);
        return kHostOk;
    }
    /// A value is gone even if this reports a failure.
    static HostStatus KRL_HOST_CALL releaseValue(HostInterface* self, ScriptValue* value) {
        const HostStatus status = FaultHost::of(self).enter("releaseValue");
        FaultHost::of(self).release(*value);
        return status;
    }
    static HostStatus KRL_HOST_CALL valueToInteger(HostInterface* self, const ScriptValue* value,
                                                   int32_t* out) {
        FaultHost& host = FaultHost::of(self);
        if (HostStatus status = host.enter("valueToInteger")) return refused(host, status, out);
        if (!isInteger(*value)) return kWrongKind;
        *out = value->words[0];
        return kHostOk;
    }
    static HostStatus KRL_HOST_CALL valueToFloat(HostInterface* self, const ScriptValue* value, double* out) {
        FaultHost& host = FaultHost::of(self);
        if (HostStatus status = host.enter("valueToFloat")) return refused(host, status, out);
        if (isInteger(*value)) {
            *out = value->words[0];
            return kHostOk;
        }
        const Node* node = host.find(*value, HostKind::Real);
        if (!node) return kWrongKind;
        *out = node->real;
        return kHostOk;
    }
    static HostStatus KRL_HOST_CALL valueToSymbol(HostInterface* self, const ScriptValue* value,
                                                  SymbolId* out) {
        Node* node = nullptr;
        if (HostStatus status = open(FaultHost::of(self), "valueToSymbol", value, HostKind::Symbol, node))
            return refused(FaultHost::of(self), status, out);
        *out = node->integer;
        return kHostOk;
    }
    static HostStatus KRL_HOST_CALL valueToPoint(HostInterface* self, const ScriptValue* value, Point* out) {
        Node* node = nullptr;
        if (HostStatus status = open(FaultHost::of(self), "valueToPoint", value, HostKind::Point, node))
            return refused(FaultHost::of(self), status, out);
        *out = node->point;
        return kHostOk;
    }
    static HostStatus KRL_HOST_CALL valueToColor(HostInterface* self, const ScriptValue* value,
                                                 ColourRecord* out) {
        Node* node = nullptr;
        if (HostStatus status = open(FaultHost::of(self), "valueToColor", value, HostKind::Colour, node))
            return refused(FaultHost::of(self), status, out);
        *out = node->colour;
        return kHostOk;
    }
    /// A new value for the plug-in.
    static HostStatus give(HostInterface* self, const char* operation, Node&& node, ScriptValue* out) {
        FaultHost& host = FaultHost::of(self);
        if (HostStatus status = host.enter(operation)) return refused(host, status, out);
        *out = host.add(std::move(node));
        return kHostOk;
    }
    static HostStatus KRL_HOST_CALL integerToValue(HostInterface* self, int32_t number, ScriptValue* out) {
        FaultHost& host = FaultHost::of(self);
        if (HostStatus status = host.enter("integerToValue")) return refused(host, status, out);
        *out = {{number, static_cast<int32_t>(HostKind::Integer)}};
        return kHostOk;
    }
    static HostStatus KRL_HOST_CALL symbolToValue(HostInterface* self, SymbolId symbol, ScriptValue* out) {
        FaultHost& host = FaultHost::of(self);
        if (HostStatus status = host.enter("symbolToValue")) return refused(host, status, out);
        if (symbol < 0 || static_cast<size_t>(symbol) >= host.symbols_.size()) return kWrongKind;
        *out = host.symbolValue(symbol);
        return kHostOk;
    }
    static HostStatus KRL_HOST_CALL floatToValue(HostInterface* self, double number, ScriptValue* out) {
        return give(self, "floatToValue", {.kind = HostKind::Real, .real = number}, out);
    }
    static HostStatus KRL_HOST_CALL stringToValue(HostInterface* self, const char* text, ScriptValue* out) {
        return give(self, "stringToValue", {.kind = HostKind::Text, .text = text}, out);
    }
    static HostStatus KRL_HOST_CALL colorToValue(HostInterface* self, const ColourRecord* colour,
                                                 ScriptValue* out) {
        return give(self, "colorToValue", {.kind = HostKind::Colour, .colour = *colour}, out);
    }

    // lists
    static HostStatus KRL_HOST_CALL newList(HostInterface* self, ScriptValue* out) {
        return give(self, "newList", {.kind = HostKind::List}, out);
    }
    static HostStatus KRL_HOST_CALL newPropertyList(HostInterface* self, ScriptValue* out) {
        return give(self, "newPropertyList", {.kind = HostKind::PropertyList}, out);
    }
    static HostStatus KRL_HOST_CALL appendToList(HostInterface* self, const ScriptValue* list,
                                                 const ScriptValue* value) {
        Node* node = nullptr;
        if (HostStatus status = open(FaultHost::of(self), "appendToList", list, HostKind::List, node))
            return status;
        FaultHost::of(self).retain(*value);
        node->items.push_back(*value);
        return kHostOk;
    }
    static HostStatus KRL_HOST_CALL appendProperty(HostInterface* self, const ScriptValue* list,
                                                   const ScriptValue* key, const ScriptValue* value) {
        FaultHost& host = FaultHost::of(self);
        Node* node = nullptr;
        if (HostStatus status = open(host, "appendProperty", list, HostKind::PropertyList, node))
            return status;
        host.retain(*key);
        host.retain(*value);
        node->keys.push_back(*key);
        node->items.push_back(*value);
        return kHostOk;
    }
    static Node* listOf(FaultHost& host, const ScriptValue& value) {
        Node* node = host.find(value);
        return node && (node->kind == HostKind::List || node->kind == HostKind::PropertyList) ? node
                                                                                              : nullptr;
    }
    static int32_t KRL_HOST_CALL countElements(HostInterface* self, const ScriptValue* list) {
        FaultHost& host = FaultHost::of(self);
        if (host.enter("countElements") != kHostOk) return -1;
        const Node* node = listOf(host, *list);
        return node ? static_cast<int32_t>(node->items.size()) : -1;
    }
    /// Entry `index` of `entries`.
    static HostStatus at(FaultHost& host, const char* operation, const ScriptValue* list, int32_t index,
                         HostVector<ScriptValue> Node::*entries, ScriptValue* out) {
        if (HostStatus status = host.enter(operation)) return refused(host, status, out);
        const Node* node = listOf(host, *list);
        if (!node || index < 1 || static_cast<size_t>(index) > (node->*entries).size()) return kWrongKind;
        *out = (node->*entries)[static_cast<size_t>(index) - 1];
        return kHostOk;
    }
    static HostStatus KRL_HOST_CALL getElementByIndex(HostInterface* self, const ScriptValue* list,
                                                      int32_t index, ScriptValue* out) {
        FaultHost& host = FaultHost::of(self);
        if (HostStatus status = at(host, "getElementByIndex", list, index, &Node::items, out)) return status;
        host.retain(*out);
        return kHostOk;
    }
    static HostStatus KRL_HOST_CALL getPropertyByIndex(HostInterface* self, const ScriptValue* list,
                                                       int32_t index, ScriptValue* out) {
        return at(FaultHost::of(self), "getPropertyByIndex", list, index, &Node::keys, out);
    }
    static HostStatus KRL_HOST_CALL getElementByKey(HostInterface* self, const ScriptValue* list,
                                                    const ScriptValue* key, ScriptValue* out) {
        FaultHost& host = FaultHost::of(self);
        if (HostStatus status = host.enter("getElementByKey")) return refused(host, status, out);
        const Node* symbol = host.find(*key, HostKind::Symbol);
        const Node* node = host.find(*list, HostKind::PropertyList);
        if (!symbol || !node) return kWrongKind;
        for (size_t i = 0; i < node->keys.size(); ++i) {
            const Node* own = host.find(node->keys[i], HostKind::Symbol);
            if (!own || own->integer != symbol->integer) continue;
            *out = node->items[i];
            host.retain(*out);
            return kHostOk;
        }
        return kWrongKind;
    }

    // images
    static HostStatus KRL_HOST_CALL createImage(HostInterface* self, int32_t width, int32_t height, int32_t,
                                                int32_t, int32_t, ScriptValue* out) {
        FaultHost& host = FaultHost::of(self);
        if (HostStatus status = host.enter("createImage")) return refused(host, status, out);
        if (width < 1 || height < 1) return kWrongKind;
        *out = host.picture(width, height, host.newPictures, kNewPictureSeed);
        return kHostOk;
    }
    static HostStatus KRL_HOST_CALL lockImage(HostInterface* self, const ScriptValue* value, ImageLock* out) {
        FaultHost& host = FaultHost::of(self);
        Node* node = nullptr;
        if (HostStatus status = open(host, "lockImage", value, HostKind::Picture, node))
            return refused(host, status, out);
        if (host.refusesSecondLocks && node->picture->locks > 0) return FaultHost::kRefused;
        ++node->picture->locks;
        ++host.locks_;
        *out = {host.locksWithoutPixels ? nullptr : node->picture->pixels(), nullptr};
        return kHostOk;
    }
    /// A lock is gone even if this reports a failure.
    static HostStatus KRL_HOST_CALL unlockImage(HostInterface* self, const ScriptValue* value) {
        FaultHost& host = FaultHost::of(self);
        const HostStatus status = host.enter("unlockImage");
        Node* node = host.find(*value, HostKind::Picture);
        if (!node || node->picture->locks == 0) {
            host.complain("unlocked what is not locked");
            return kWrongKind;
        }
        --node->picture->locks;
        --host.locks_;
        return status;
    }
    static HostStatus KRL_HOST_CALL queryImage(HostInterface* self, const ScriptValue* value,
                                               ImageInfo* out) {
        FaultHost& host = FaultHost::of(self);
        Node* node = nullptr;
        if (HostStatus status = open(host, "queryImage", value, HostKind::Picture, node)) {
            if (status == FaultHost::kRefused && host.writesGarbage()) *out = {1000, 1000, 4000, 32, 0, 0};
            return status;
        }
        *out = node->picture->info();
        return kHostOk;
    }

    // the rest
    static HostStatus KRL_HOST_CALL_VARIADIC printMessage(HostInterface* self, const char*, ...) {
        return FaultHost::of(self).enter("printMessage");
    }
    static HostStatus giveInterface(const char* operation, FaultHost::Service* given, FaultHost& host,
                                    HostInterface** out) {
        *out = nullptr;
        if (HostStatus status = host.enter(operation)) return status;
        if (!given) return kHostOk;
        ++given->references;
        *out = &given->door;
        return kHostOk;
    }
    static HostStatus KRL_HOST_CALL getPlayer(HostInterface* self, HostInterface** out) {
        FaultHost& host = FaultHost::of(self);
        return giveInterface("getPlayer", host.givesNullPlayer ? nullptr : &host.player, host, out);
    }
    static HostStatus KRL_HOST_CALL getSub(HostInterface* self, HostInterface** out) {
        FaultHost& host = FaultHost::of(self);
        return giveInterface("getSub", host.givesNullSub ? nullptr : &host.playerSub, host, out);
    }
    static HostStatus KRL_HOST_CALL getItem(HostInterface* self, int32_t, HostInterface** out) {
        *out = nullptr;
        return FaultHost::of(self).enter("getItem");
    }
    static uint32_t KRL_HOST_CALL addReference(HostInterface* self) {
        return static_cast<uint32_t>(++reinterpret_cast<FaultHost::Service*>(self)->references);
    }
    static uint32_t KRL_HOST_CALL release(HostInterface* self) {
        auto* service = reinterpret_cast<FaultHost::Service*>(self);
        if (service->references == 0)
            service->host->complain("released an interface too often:", service->name);
        return static_cast<uint32_t>(--service->references);
    }
    static HostStatus KRL_HOST_CALL queryInterface(HostInterface* self, const Identifier* id, void** out) {
        FaultHost& host = FaultHost::of(self);
        *out = nullptr;
        if (HostStatus status = host.enter("queryInterface")) return status;
        for (const Identifier& lacking : host.missing)
            if (lacking == *id) return kHostNoInterface;
        const std::pair<Identifier, FaultHost::Service*> known[] = {
            {ids::kValues, &host.valueService}, {ids::kColours, &host.colours},
            {ids::kLists, &host.lists},         {ids::kImages, &host.images},
            {ids::kUtils, &host.utils},         {ids::kPlayerSource, &host.playerSource},
            {ids::kAppInfo, &host.application}};
        FaultHost::Service* found = &host.other;
        for (const auto& [identifier, service] : known)
            if (identifier == *id) found = service;
        ++found->references;
        *out = &found->door;
        return kHostOk;
    }
    static HostStatus KRL_HOST_CALL createInstance(HostInterface* self, const Identifier*,
                                                   const Identifier* id, void** out) {
        return queryInterface(self, id, out);
    }
    static void* KRL_HOST_CALL allocate(HostInterface* self, uint32_t bytes) {
        FaultHost& host = FaultHost::of(self);
        if (host.enter("allocate") != kHostOk || host.blocksLeft == 0) return nullptr;
        if (host.blocksLeft > 0) --host.blocksLeft;
        ++host.blocks_;
        return std::malloc(bytes);
    }
    static void KRL_HOST_CALL freeBlock(HostInterface* self, void* block) {
        --FaultHost::of(self).blocks_;
        std::free(block);
    }
    static HostStatus KRL_HOST_CALL applicationItem(HostInterface* self, int32_t item, char* buffer,
                                                    int32_t bufferBytes) {
        if (HostStatus status = FaultHost::of(self).enter("getApplicationItem")) return status;
        std::snprintf(buffer, static_cast<size_t>(bufferBytes), "%s", item == 5 ? "Director" : "10.1");
        return kHostOk;
    }
    static HostStatus KRL_HOST_CALL addEntry(HostInterface* self, HostInterface*, const Identifier*,
                                             const Identifier*, HostInterface** out) {
        FaultHost& host = FaultHost::of(self);
        *out = nullptr;
        if (HostStatus status = host.enter("addEntry")) return status;
        if (!host.givesNullDictionary) *out = &host.dictionary.door;
        return kHostOk;
    }
    static HostStatus KRL_HOST_CALL putEntry(HostInterface* self, int32_t, const void*, int32_t,
                                             const char* key) {
        return FaultHost::of(self).enter("putEntry", key);
    }
};

void FaultHost::fillValueOperations() {
    using Does = FaultHostOperations;
    set<host::values::InternSymbol>(valueService, Does::internSymbol);
    set<host::values::ReleaseValue>(valueService, Does::releaseValue);
    set<host::values::ValueToInteger>(valueService, Does::valueToInteger);
    set<host::values::ValueToSymbol>(valueService, Does::valueToSymbol);
    set<host::values::ValueToFloat>(valueService, Does::valueToFloat);
    set<host::values::ValueToPoint>(valueService, Does::valueToPoint);
    set<host::values::IntegerToValue>(valueService, Does::integerToValue);
    set<host::values::SymbolToValue>(valueService, Does::symbolToValue);
    set<host::values::FloatToValue>(valueService, Does::floatToValue);
    set<host::values::StringToValue>(valueService, Does::stringToValue);
    set<host::colours::ValueToColor>(colours, Does::valueToColor);
    set<host::colours::ColorToValue>(colours, Does::colorToValue);
}

void FaultHost::fillListAndImageOperations() {
    using Does = FaultHostOperations;
    set<host::lists::NewList>(lists, Does::newList);
    set<host::lists::AppendToList>(lists, Does::appendToList);
    set<host::lists::CountElements>(lists, Does::countElements);
    set<host::lists::GetElementByIndex>(lists, Does::getElementByIndex);
    set<host::lists::NewPropertyList>(lists, Does::newPropertyList);
    set<host::lists::AppendProperty>(lists, Does::appendProperty);
    set<host::lists::GetElementByKey>(lists, Does::getElementByKey);
    set<host::lists::GetPropertyByIndex>(lists, Does::getPropertyByIndex);
    set<host::images::CreateImage>(images, Does::createImage);
    set<host::images::LockImage>(images, Does::lockImage);
    set<host::images::UnlockImage>(images, Does::unlockImage);
    set<host::images::QueryImage>(images, Does::queryImage);
}

void FaultHost::fillServiceOperations() {
    using Does = FaultHostOperations;
    for (Service* service : services()) {
        set<host::unknown::QueryInterface>(*service, Does::queryInterface);
        set<host::unknown::AddRef>(*service, Does::addReference);
        set<host::unknown::Release>(*service, Does::release);
    }
    set<host::callback::CreateInstance>(provider, Does::createInstance);
    set<host::allocator::Allocate>(memory, Does::allocate);
    set<host::allocator::Free>(memory, Does::freeBlock);
    set<host::utils::PrintMessage>(utils, Does::printMessage);
    set<host::players::GetPlayer>(playerSource, Does::getPlayer);
    set<host::players::GetSub>(player, Does::getSub);
    set<host::players::GetItem>(player, Does::getItem);
    set<host::registry::GetApplicationItem>(application, Does::applicationItem);
    set<host::registry::AddEntry>(cache, Does::addEntry);
    set<host::registry::PutEntry>(dictionary, Does::putEntry);
}

}  // namespace krl::test
