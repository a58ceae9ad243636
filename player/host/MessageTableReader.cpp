#include "player/host/MessageTableReader.h"

#include <utility>

#include "player/host/HostError.h"

namespace krl::player {

namespace {

bool blank(char letter) { return letter == ' ' || letter == '\t' || letter == '\r'; }

/// Removes the first word of `text` and returns it.
std::string_view takeWord(std::string_view& text) {
    while (!text.empty() && blank(text.front())) text.remove_prefix(1);
    size_t length = 0;
    while (length < text.size() && !blank(text[length])) ++length;
    const std::string_view word = text.substr(0, length);
    text.remove_prefix(length);
    return word;
}

/// Removes the text up to and including `mark` and returns the part before it.
std::string_view takeUntil(std::string_view& text, std::string_view mark) {
    const size_t end = text.find(mark);
    const std::string_view part = text.substr(0, end);
    text = end == std::string_view::npos ? std::string_view() : text.substr(end + mark.size());
    return part;
}

MethodSignature readLine(std::string_view line) {
    std::string_view told = takeUntil(line, "--");
    MethodSignature method;
    method.name = takeWord(told);
    for (bool first = true; !told.empty(); first = false) {
        std::string_view part = takeUntil(told, ",");
        const std::string_view kind = takeWord(part);
        const bool itself = first && kind == "object";
        if (!itself && !kind.empty()) ++method.arguments;
    }
    return method;
}

}  // namespace

MessageTable::MessageTable(std::string text) : text_(std::move(text)), unread_(text_) {
    std::string_view heading = takeUntil(unread_, "\n");
    if (takeWord(heading) == "xtra") xtraName_ = takeWord(heading);
    if (xtraName_.empty()) throw HostError("the xtra's message table does not begin with its name");
}

const std::vector<MethodSignature>& MessageTable::methods() const {
    while (!unread_.empty()) {
        const MethodSignature& method = methods_.emplace_back(readLine(takeUntil(unread_, "\n")));
        selectors_.emplace(method.name, static_cast<int32_t>(methods_.size() - 1));
    }
    return methods_;
}

int32_t MessageTable::selector(std::string_view name) const {
    methods();
    const auto found = selectors_.find(name);
    return found == selectors_.end() ? -1 : found->second;
}

}  // namespace krl::player
