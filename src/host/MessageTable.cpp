#include "host/MessageTable.h"

#include <algorithm>

#include "host/MessageTableText.h"

namespace krl::host {

namespace {

/// The word for an argument in a signature.
const char* kindWord(ArgumentKind kind) {
    switch (kind) {
        case ArgumentKind::Integer:
            return "integer";
        case ArgumentKind::Real:
            return "float";
        case ArgumentKind::Symbol:
            return "symbol";
        case ArgumentKind::Colour:
            return "color";
        case ArgumentKind::Point:
            return "point";
        case ArgumentKind::ColourList:
            return "list";
        case ArgumentKind::SecondImage:
        case ArgumentKind::Value:
            return "any";
    }
    return "any";
}

std::string lineFor(const Method& method) {
    std::string line = std::string(method.name()) + " object me";
    for (const Argument& argument : method.arguments())
        line += std::string(", ") + kindWord(argument.kind) + ' ' + argument.name;
    return line + " -- \n";
}

std::string_view nameIn(std::string_view line) { return line.substr(0, line.find(' ')); }

}  // namespace

MessageTable::MessageTable(const Catalogue& catalogue) : head_(kMessageTableHead), body_(kMessageTableBody) {
    const std::vector<const Method*> all = catalogue.methods();
    for (std::string_view rest = body_; !rest.empty();) {
        const std::string_view line = rest.substr(0, rest.find('\n') + 1);
        const auto named = [&](const Method* method) { return nameIn(line) == method->name(); };
        const auto found = std::find_if(all.begin(), all.end(), named);
        methods_.push_back(found == all.end() ? nullptr : *found);
        rest.remove_prefix(line.size());
    }
    for (const Method* method : all) {
        if (std::find(methods_.begin(), methods_.end(), method) != methods_.end()) continue;
        body_ += lineFor(*method);
        methods_.push_back(method);
    }
}

std::string_view MessageTable::line(int32_t selector) const {
    std::string_view rest = selector == 0 ? head_.substr(head_.find('\n') + 1) : std::string_view(body_);
    for (int32_t passed = 1; passed < selector; ++passed) rest.remove_prefix(rest.find('\n') + 1);
    return rest.substr(0, rest.find('\n'));
}

const MessageTable& messageTable() {
    static const MessageTable table(catalogue());
    return table;
}

const MessageTable* messageTableOrNull() noexcept {
    try {
        return &messageTable();
    } catch (...) {
        return nullptr;
    }
}

}  // namespace krl::host
