#include "player/lingo/ScriptError.h"

#include <utility>

namespace krl::player {

namespace {

std::string oneLine(const std::string& file, Place place, const std::string& message) {
    std::string text = file;
    for (int number : {place.line, place.column})
        if (place.line > 0) text += (text.empty() ? "" : ":") + std::to_string(number);
    return text.empty() ? message : text + ": " + message;
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
    // Tabs stay tabs, so that the caret stands under its letter however wide they are shown.
    std::string caret;
    for (size_t i = 0; i + 1 < static_cast<size_t>(place_.column); ++i)
        caret += i < sourceLine_.size() && sourceLine_[i] == '\t' ? '\t' : ' ';
    return sourceLine_ + '\n' + caret + '^';
}

}  // namespace krl::player
