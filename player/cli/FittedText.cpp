#include "player/cli/FittedText.h"

#include <algorithm>
#include <sstream>

namespace krl::player {

namespace {

constexpr size_t kLeastColumn = 20;

bool isCommand(const std::string& line) { return line.find("krlimage apply in.png") != std::string::npos; }

/// Where the last column begins that leaves room for words: after two blanks or more.
size_t lastColumn(const std::string& line, size_t width) {
    size_t column = 0;
    for (size_t i = 2; i + kLeastColumn <= width && i < line.size(); ++i)
        if (line[i] != ' ' && line[i - 1] == ' ' && line[i - 2] == ' ') column = i;
    return column;
}

}  // namespace

std::string fittedText(const std::string& text, int width) {
    if (width <= 0) return text;
    const auto most = static_cast<size_t>(width);
    std::istringstream lines(text);
    std::string fitted;
    for (std::string line; std::getline(lines, line);) {
        const size_t column = lastColumn(line, most);
        while (line.size() > most && !isCommand(line)) {
            const size_t end = line.rfind(' ', most);
            if (end == std::string::npos || end <= column) break;
            fitted += line.substr(0, line.find_last_not_of(' ', end) + 1) + '\n';
            line = std::string(column, ' ') + line.substr(end + 1);
        }
        fitted += line + '\n';
    }
    return fitted;
}

}  // namespace krl::player
