#include "host/MethodRegistry.h"

#include <algorithm>

#include "host/MessageTable.h"

namespace krl::host {

const std::vector<const Method*>& methods() { return messageTable().methods(); }

const Method* findMethod(std::string_view name) { return catalogue().find(name); }

int32_t selectorOf(const Method& method) {
    const auto& all = methods();
    return static_cast<int32_t>(std::find(all.begin(), all.end(), &method) - all.begin()) + 1;
}

std::string signatureOf(const Method& method) {
    const std::string_view text = messageTable().line(selectorOf(method));
    std::string signature;
    for (const char letter : text.substr(0, text.rfind("--"))) {
        const bool blank = letter == ' ' || letter == '\t';
        if (!blank)
            signature += letter;
        else if (!signature.empty() && signature.back() != ' ')
            signature += ' ';
    }
    while (!signature.empty() && signature.back() == ' ') signature.pop_back();
    return signature;
}

}  // namespace krl::host
