#include "player/lingo/ScriptError.h"

#include <algorithm>
#include <utility>

namespace krl::player {

namespace {

std::string oneLine(const std::string& file, Place place, const std::string& message) {
    std::string text = file;
    for (int number : {place.line, place.column})
        if (place.line > 0) text += (text.empty() ? "" : ":") + std::to_string(number);
    return text.empty() ? message : text + ": " + message;
}

constexpr size_t kLongestExcerpt = 160;

/// The next position where a UTF-8 character begins.
size_t wholeLetter(const std::string& text, size_t place) {
    while (place < text.size() && (static_cast<unsigned char>(text[place]) & 0xC0) == 0x80) ++place;
    return place;
}

}  // namespace

ScriptError::ScriptError(std::string file, Place place, std::string message, std::string sourceLine)
    : std::runtime_error(oneLine(file, place, message)),
      file_(std::move(file)),
      place_(place),
      message_(std::move(message)),
      sourceLine_(std::move(sourceLine)) {}

std::string ScriptError::excerpt() const {
    if (place_.line == 0) return "";
    const auto column = static_cast<size_t>(std::max(place_.column, 1)) - 1;
    // Of a very long line, show only the part around the column.
    const size_t first = column > kLongestExcerpt / 2 && sourceLine_.size() > kLongestExcerpt
                             ? wholeLetter(sourceLine_, column - kLongestExcerpt / 2)
                             : 0;
    const size_t last = sourceLine_.size() - first > kLongestExcerpt
                            ? wholeLetter(sourceLine_, first + kLongestExcerpt)
                            : sourceLine_.size();
    const std::string shown = sourceLine_.substr(first, last - first);
    const std::string before = first > 0 ? "..." : "", after = last < sourceLine_.size() ? "..." : "";
    // Keep tabs, so that the caret is under its letter for any tab width.
    std::string caret(before.size(), ' ');
    for (size_t i = 0; i < column - first; ++i) caret += i < shown.size() && shown[i] == '\t' ? '\t' : ' ';
    return before + shown + after + '\n' + caret + '^';
}

}  // namespace krl::player
