#include "host/MethodRegistry.h"

#include <algorithm>
#include <cctype>

#include "host/MessageTable.h"

namespace krl::host {

namespace {

std::vector<Method> collectMethods() {
    MethodList list;
    addEngineMethods(list);
    addToneMethods(list);
    addColourMethods(list);
    addHueMethods(list);
    addFilmMethods(list);
    addBlurMethods(list);
    addPathBlurMethods(list);
    addEdgeMethods(list);
    addStyliseMethods(list);
    addWarpMethods(list);
    addCompositeMethods(list);
    addGlowMethods(list);
    addKeyMethods(list);
    addDifferenceKeyMethods(list);
    addAlphaMethods(list);
    addGradientMethods(list);
    addFlareMethods(list);
    addBezierMethods(list);
    addFieldMethods(list);
    addInertMethods(list);
    return list.take();
}

bool sameLetters(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](unsigned char x, unsigned char y) { return std::tolower(x) == std::tolower(y); });
}

std::string_view lineName(int32_t selector) {
    int32_t bytes = 0;
    const std::string_view line(messageTableLine(selector, &bytes));
    return line.substr(0, line.find(' '));
}

}  // namespace

const std::vector<const Method*>& methods() {
    static const std::vector<Method> collected = collectMethods();
    static const std::vector<const Method*> inOrder = [] {
        std::vector<const Method*> ordered(kMethodCount, nullptr);
        for (int32_t selector = 1; selector <= kMethodCount; ++selector)
            for (const Method& entry : collected)
                if (lineName(selector) == entry.name()) ordered[static_cast<size_t>(selector - 1)] = &entry;
        return ordered;
    }();
    return inOrder;
}

const Method* findMethod(std::string_view name) {
    constexpr std::string_view prefix = "krlImage";
    for (const Method* entry : methods()) {
        if (!entry) continue;
        const std::string_view full = entry->name();
        if (sameLetters(name, full) || sameLetters(name, full.substr(prefix.size()))) return entry;
    }
    return nullptr;
}

int32_t selectorOf(const Method& method) {
    const auto& all = methods();
    return static_cast<int32_t>(std::find(all.begin(), all.end(), &method) - all.begin()) + 1;
}

std::string signatureOf(const Method& method) {
    int32_t bytes = 0;
    const char* line = messageTableLine(selectorOf(method), &bytes);
    const std::string_view text = std::string_view(line, static_cast<size_t>(bytes));
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
