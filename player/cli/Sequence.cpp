#include "player/cli/Sequence.h"

#include <algorithm>

#include "player/cli/Commands.h"

namespace krl::player {

namespace fs = std::filesystem;

namespace {

/// More are no number of a frame.
constexpr size_t kMostDigits = 12;

bool isDigit(char letter) { return letter >= '0' && letter <= '9'; }

/// `7`, or `9 to 12`.
std::string span(int64_t first, int64_t last) {
    return std::to_string(first) + (last > first ? " to " + std::to_string(last) : "");
}

/// As a literal of a script, which has no quotation mark in it.
std::string quoted(const std::string& text) {
    std::string made = "\"";
    for (const char letter : text) made += letter == '"' ? "\" & QUOTE & \"" : std::string(1, letter);
    return made + '"';
}

/// The numbers that are missing between the first and the last; empty if none is.
std::string gapsIn(const std::vector<int64_t>& numbers) {
    std::string gaps;
    for (size_t i = 1; i < numbers.size(); ++i)
        if (numbers[i] > numbers[i - 1] + 1)
            gaps += (gaps.empty() ? "" : ", ") + span(numbers[i - 1] + 1, numbers[i] - 1);
    return gaps;
}

}  // namespace

std::optional<Sequence> Sequence::named(const fs::path& name) {
    const std::string file = name.filename().string();
    const size_t start = file.find('%');
    if (start == std::string::npos) return std::nullopt;
    size_t end = start + 1;
    while (end < file.size() && isDigit(file[end])) ++end;
    const std::string width = file.substr(start + 1, end - start - 1);
    const bool isNumber = end < file.size() && file[end] == 'd' && width.size() <= 3 &&
                          (width.empty() || (width[0] == '0' && width.size() > 1));
    std::error_code unreadable;
    if (!isNumber || fs::exists(name, unreadable)) return std::nullopt;
    Sequence sequence;
    sequence.folder_ = name.parent_path();
    sequence.before_ = file.substr(0, start);
    sequence.after_ = file.substr(end + 1);
    sequence.digits_ = width.empty() ? 1 : std::min<size_t>(std::max(std::stoi(width), 1), kMostDigits);
    return sequence;
}

fs::path Sequence::file(int64_t number) const {
    std::string digits = std::to_string(number);
    if (digits.size() < digits_) digits.insert(0, digits_ - digits.size(), '0');
    return folder_ / (before_ + digits + after_);
}

std::string Sequence::expression() const {
    return quoted((folder_ / before_).string()) + " & digits(number, " + std::to_string(digits_) + ") & " +
           quoted(after_);
}

std::optional<int64_t> Sequence::numberIn(const std::string& name) const {
    if (name.size() <= before_.size() + after_.size() || !name.starts_with(before_) ||
        !name.ends_with(after_))
        return std::nullopt;
    const std::string digits = name.substr(before_.size(), name.size() - before_.size() - after_.size());
    if (digits.size() > kMostDigits || !std::all_of(digits.begin(), digits.end(), isDigit))
        return std::nullopt;
    const int64_t number = std::stoll(digits);
    if (file(number).filename() != name) return std::nullopt;
    return number;
}

std::vector<int64_t> Sequence::numbers() const {
    std::vector<int64_t> found;
    std::error_code unreadable;
    for (const auto& entry : fs::directory_iterator(folder_.empty() ? "." : folder_, unreadable))
        if (const auto number = numberIn(entry.path().filename().string())) found.push_back(*number);
    const std::string pattern = (folder_ / (before_ + "N" + after_)).string();
    if (found.empty()) throw CommandError("there are no frames " + pattern + " with a number for N");
    std::sort(found.begin(), found.end());
    if (const std::string gaps = gapsIn(found); !gaps.empty())
        throw CommandError("the sequence " + pattern + " from " + span(found.front(), found.back()) +
                           " has gaps: " + gaps);
    return found;
}

}  // namespace krl::player
