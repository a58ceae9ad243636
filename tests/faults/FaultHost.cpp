#include "faults/FaultHost.h"

#include <cstdio>
#include <cstring>
#include <utility>
#include <variant>

namespace krl::test {

using namespace host;

namespace {

void destroy(GuardedPicture* picture) {
    if (!picture) return;
    picture->~GuardedPicture();
    std::free(picture);
}

}  // namespace

void PrintTo(const HostString& text, std::ostream* out) { *out << '"' << text.c_str() << '"'; }

FaultHost::FaultHost() {
    constexpr const char* names[] = {"provider",    "memory", "values",     "colours", "lists",
                                     "images",      "utils",  "source",     "player",  "playerSub",
                                     "application", "cache",  "dictionary", "other"};
    size_t next = 0;
    for (Service* service : services()) {
        service->door.operations = service->operations.data();
        service->host = this;
        service->name = names[next++];
    }
    fillServiceOperations();
    fillValueOperations();
    fillListAndImageOperations();
}

FaultHost::~FaultHost() {
    for (Node& node : nodes_) destroy(node.picture);
}

std::array<FaultHost::Service*, 14> FaultHost::services() {
    return {&provider,     &memory, &valueService, &colours,     &lists, &images,     &utils,
            &playerSource, &player, &playerSub,    &application, &cache, &dictionary, &other};
}

int64_t FaultHost::references() const {
    int64_t all = 0;
    for (const Service* service : const_cast<FaultHost*>(this)->services()) all += service->references;
    return all;
}

void FaultHost::failOperation(int64_t number, bool garbage) {
    untilFailure_ = number;
    garbage_ = garbage;
    failed_ = nullptr;
}

const char* FaultHost::endFailing() {
    untilFailure_ = 0;
    return std::exchange(failed_, nullptr);
}

HostStatus FaultHost::enter(const char* operation, const char* words) {
    HostString line(operation);
    if (*words) line.append(" ").append(words);
    trace.push_back(std::move(line));
    if (untilFailure_ == 0 || --untilFailure_ != 0) return kHostOk;
    failed_ = operation;
    return kRefused;
}

void FaultHost::complain(const char* what, std::string_view about) {
    HostString line(what);
    line.append(" ").append(about.data(), about.size());
    complaints.push_back(std::move(line));
}

FaultHost::Node* FaultHost::find(const ScriptValue& value) {
    const auto index = static_cast<size_t>(value.words[0]) - 1;
    const auto kind = static_cast<HostKind>(value.words[1]);
    if (kind == HostKind::Void || kind == HostKind::Integer) return nullptr;
    if (index >= nodes_.size() || nodes_[index].kind != kind || nodes_[index].references == 0) {
        complain("used a value that has gone or never was");
        return nullptr;
    }
    return &nodes_[index];
}

FaultHost::Node* FaultHost::find(const ScriptValue& value, HostKind kind) {
    Node* node = find(value);
    return node && node->kind == kind ? node : nullptr;
}

ScriptValue FaultHost::add(Node&& node) {
    node.references = 1;
    ++values_;
    const HostKind kind = node.kind;
    nodes_.push_back(std::move(node));
    return {{static_cast<int32_t>(nodes_.size()), static_cast<int32_t>(kind)}};
}

void FaultHost::retain(const ScriptValue& value) {
    Node* node = find(value);
    if (!node) return;
    ++node->references;
    ++values_;
}

void FaultHost::release(const ScriptValue& value) {
    Node* node = find(value);
    if (!node) return;
    --values_;
    if (--node->references > 0) return;
    if (node->picture && node->picture->locks > 0) complain("let go of a picture that is locked");
    if (node->picture && !node->picture->guardsAreIntact()) complain("wrote before a picture");
    destroy(std::exchange(node->picture, nullptr));
    for (const ScriptValue& item : std::exchange(node->items, {})) release(item);
    for (const ScriptValue& key : std::exchange(node->keys, {})) release(key);
    node->text = HostString();
}

SymbolId FaultHost::intern(const char* name) {
    for (size_t i = 0; i < symbols_.size(); ++i)
        if (symbols_[i] == name) return static_cast<SymbolId>(i);
    symbols_.push_back(name);
    return static_cast<SymbolId>(symbols_.size() - 1);
}

ScriptValue FaultHost::symbolValue(SymbolId symbol) {
    return add({.kind = HostKind::Symbol, .integer = symbol});
}

ScriptValue FaultHost::picture(int32_t width, int32_t height, PictureForm form, uint32_t seed) {
    Node node{.kind = HostKind::Picture};
    node.picture =
        new (HostAllocator<GuardedPicture>().allocate(1)) GuardedPicture(width, height, form, seed);
    return add(std::move(node));
}

ScriptValue FaultHost::make(const Value& plain) {
    if (const auto* whole = plain.as<int32_t>()) return {{*whole, static_cast<int32_t>(HostKind::Integer)}};
    if (const auto* real = plain.as<double>()) return add({.kind = HostKind::Real, .real = *real});
    if (const auto* symbol = plain.as<Symbol>()) return symbolValue(intern(symbol->name.c_str()));
    if (const auto* text = plain.as<std::string>())
        return add({.kind = HostKind::Text, .text = text->c_str()});
    if (const auto* point = plain.as<Point>()) return add({.kind = HostKind::Point, .point = *point});
    if (const auto* colour = plain.as<Colour>())
        return add({.kind = HostKind::Colour, .colour = {colour->red(), colour->green(), colour->blue()}});
    if (const auto* wanted = plain.as<PictureReference>()) return picture(wanted->width, wanted->height);
    Node list{.kind = HostKind::List};
    if (const auto* items = plain.as<ListValue>())
        for (const Value& item : *items) list.items.push_back(make(item));
    if (const auto* entries = plain.as<PropertyListValue>()) {
        list.kind = HostKind::PropertyList;
        for (const auto& [key, value] : *entries) {
            list.keys.push_back(make(key));
            list.items.push_back(make(value));
        }
    }
    return plain.kind() == ValueKind::Void ? ScriptValue{} : add(std::move(list));
}

GuardedPicture* FaultHost::pictureOf(const ScriptValue& value) {
    Node* node = find(value, HostKind::Picture);
    return node ? node->picture : nullptr;
}

void FaultHost::restorePictures() {
    for (Node& node : nodes_)
        if (node.picture) node.picture->restore();
}

bool FaultHost::picturesAreIntact() const {
    for (const Node& node : nodes_)
        if (node.picture && !node.picture->guardsAreIntact()) return false;
    return true;
}

void FaultHost::forceUnlock(const ScriptValue& value) {
    if (GuardedPicture* image = pictureOf(value)) locks_ -= std::exchange(image->locks, 0);
}

HostKind FaultHost::kindOf(const ScriptValue& value) const { return static_cast<HostKind>(value.words[1]); }

ScriptValue FaultHost::entry(const ScriptValue& list, const char* key) const {
    if (kindOf(list) != HostKind::PropertyList) return {};
    const Node& node = nodes_[static_cast<size_t>(list.words[0]) - 1];
    for (size_t i = 0; i < node.keys.size(); ++i) {
        if (kindOf(node.keys[i]) != HostKind::Symbol) continue;
        const Node& symbol = nodes_[static_cast<size_t>(node.keys[i].words[0]) - 1];
        if (symbols_[static_cast<size_t>(symbol.integer)] == key) return node.items[i];
    }
    return {};
}

HostString FaultHost::describe(const ScriptValue& value) const {
    HostString text;
    describe(value, text);
    return text;
}

void FaultHost::describe(const ScriptValue& value, HostString& out) const {
    char buffer[96] = "VOID";
    if (kindOf(value) == HostKind::Integer) std::snprintf(buffer, sizeof(buffer), "%d", value.words[0]);
    if (kindOf(value) == HostKind::Void || kindOf(value) == HostKind::Integer) {
        out += buffer;
        return;
    }
    const Node& node = nodes_[static_cast<size_t>(value.words[0]) - 1];
    buffer[0] = '\0';
    switch (node.kind) {
        case HostKind::Symbol:
            out.append("#").append(symbols_[static_cast<size_t>(node.integer)]);
            break;
        case HostKind::Text:
            out += node.text;
            break;
        case HostKind::Real:
            std::snprintf(buffer, sizeof(buffer), "%.17g", node.real);
            break;
        case HostKind::Colour:
            std::snprintf(buffer, sizeof(buffer), "rgb(%d, %d, %d)", node.colour.red, node.colour.green,
                          node.colour.blue);
            break;
        case HostKind::Picture:
            std::snprintf(buffer, sizeof(buffer), "image(%d, %d, %016llx)", node.picture->info().width,
                          node.picture->info().height, static_cast<unsigned long long>(node.picture->hash()));
            break;
        default:
            out += '[';
            for (size_t i = 0; i < node.items.size(); ++i) {
                if (i > 0) out += ", ";
                if (i < node.keys.size()) {
                    describe(node.keys[i], out);
                    out += ": ";
                }
                describe(node.items[i], out);
            }
            out += ']';
    }
    out += buffer;
}

}  // namespace krl::test
