#include "common/Titles.h"

#include <cctype>

namespace krl::bindings {

namespace {

bool isCapital(char letter) { return std::isupper(static_cast<unsigned char>(letter)); }
bool isSmall(char letter) { return std::islower(static_cast<unsigned char>(letter)); }
char small(char letter) { return static_cast<char>(std::tolower(static_cast<unsigned char>(letter))); }
char capital(char letter) { return static_cast<char>(std::toupper(static_cast<unsigned char>(letter))); }

}  // namespace

std::string titleOf(const char* name) {
    std::string title;
    for (const char* c = name; *c; ++c) {
        const bool isWordStart = c > name && isCapital(*c) && isSmall(c[-1]);
        if (isWordStart || *c == '_') title += ' ';
        if (*c == '_') continue;
        const bool isInitials = isCapital(*c) && isCapital(c[1]);
        title += isWordStart && !isInitials ? small(*c) : *c;
    }
    title[0] = capital(title[0]);
    return title;
}

}  // namespace krl::bindings
