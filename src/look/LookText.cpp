#include <algorithm>
#include <cctype>

#include "catalogue/Letters.h"
#include "look/Look.h"

namespace krl {

namespace {

constexpr const char* kBlanks = " \t";
constexpr std::string_view kSignature = "krlimage look";

std::string_view trimmed(std::string_view text) {
    const size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kBlanks) + 1 - first);
}

bool isWordLetter(char letter) { return std::isalnum(static_cast<unsigned char>(letter)) || letter == '_'; }

size_t wordLength(std::string_view text) {
    return static_cast<size_t>(std::find_if_not(text.begin(), text.end(), isWordLetter) - text.begin());
}

/// Where `stop(place)` first holds outside quotation marks and brackets.
template <class Stop>
size_t findOutside(std::string_view text, Stop&& stop) {
    int depth = 0;
    bool isQuoted = false;
    for (size_t i = 0; i < text.size(); ++i) {
        if (!isQuoted && depth <= 0 && stop(i)) return i;
        if (text[i] == '"') isQuoted = !isQuoted;
        if (isQuoted) continue;
        if (text[i] == '(' || text[i] == '[') ++depth;
        if (text[i] == ')' || text[i] == ']') --depth;
    }
    return text.size();
}

bool isControl(char letter) {
    return (static_cast<unsigned char>(letter) < ' ' && letter != '\t') || letter == 0x7F;
}

/// Whether a text in script notation is one value.
bool isValue(const std::string& text, const NotationScope& scope) {
    try {
        const CallNotation notation = readCallNotation("value(" + text + ")", scope);
        return notation.arguments.size() == 1 && notation.arguments.front().name.empty();
    } catch (const NotationError&) {
        return false;
    }
}

std::string_view withoutComment(std::string_view text) {
    bool isQuoted = false;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '"') isQuoted = !isQuoted;
        if (!isQuoted && text.substr(i, 2) == "--") return trimmed(text.substr(0, i));
    }
    return text;
}

/// Takes the part of `text` up to the word `word`, or all of it.
std::string_view takeUpTo(std::string_view& text, std::string_view word) {
    const size_t end = findOutside(text, [&](size_t i) {
        const bool begins = i > 0 && !isWordLetter(text[i - 1]) && text.substr(i, word.size()) == word;
        return begins && (i + word.size() == text.size() || !isWordLetter(text[i + word.size()]));
    });
    const std::string_view part = trimmed(text.substr(0, end));
    text = end < text.size() ? trimmed(text.substr(end + word.size())) : std::string_view();
    return part;
}

}  // namespace

/// Takes a look's text line by line.
class LookReader {
public:
    Look read(std::string_view text) {
        for (size_t start = 0; start <= text.size();) {
            const size_t end = std::min(text.find('\n', start), text.size());
            ++line_;
            readLine(text.substr(start, end - start));
            start = end + 1;
        }
        if (!hasVersion_) fail("expected \"krlimage look " + std::to_string(Look::kVersion) + '"');
        if (look_.title().empty()) fail("the look has no title");
        if (look_.steps().empty()) fail("the look has no call");
        return std::move(look_);
    }

private:
    [[noreturn]] void fail(const std::string& message) const { throw LookError(line_, message); }

    void readLine(std::string_view line) {
        if (line.ends_with('\r')) line.remove_suffix(1);
        if (line_ == 1 && line.starts_with("\xEF\xBB\xBF")) line.remove_prefix(3);
        line = trimmed(line);
        if (line.empty() || line.starts_with("--")) return;
        for (const unsigned char letter : line)
            if (isControl(letter)) fail("unexpected control character, code " + std::to_string(letter));
        if (!hasVersion_) return readVersion(withoutComment(line));
        const std::string_view word = line.substr(0, wordLength(line));
        const std::string_view rest = trimmed(line.substr(word.size()));
        if (word == "parameter" && !rest.starts_with('(')) return readParameter(withoutComment(rest));
        if (rest.starts_with(':')) return readEntry(word, trimmed(rest.substr(1)));
        look_.addCall(std::string(withoutComment(line)), line_);
    }

    void readVersion(std::string_view line) {
        if (!line.starts_with(kSignature))
            fail("expected \"krlimage look " + std::to_string(Look::kVersion) + '"');
        const std::string_view version = trimmed(line.substr(kSignature.size()));
        if (version != std::to_string(Look::kVersion))
            fail("the look is of version " + std::string(version) + ", this program reads version " +
                 std::to_string(Look::kVersion));
        hasVersion_ = true;
    }

    void readEntry(std::string_view word, std::string_view text) {
        if (word == "title") {
            if (!look_.title().empty()) fail("the title is given twice");
            look_.setTitle(std::string(text));
        } else if (word == "description") {
            const std::string& before = look_.description();
            look_.setDescription(before + (before.empty() ? "" : " ") + std::string(text));
        } else {
            fail("unknown entry " + std::string(word) + ": expected title, description, parameter or a call");
        }
    }

    void readParameter(std::string_view text) {
        try {
            look_.addParameter(Look::readParameter(text));
        } catch (const LookError& error) {
            fail(error.what());
        }
    }

    Look look_;
    int32_t line_ = 0;
    bool hasVersion_ = false;
};

void Look::requireOneLine(const std::string& what, std::string_view text, int32_t line) {
    if (std::any_of(text.begin(), text.end(), isControl))
        throw LookError(line, what + " is one line without control characters");
}

Look Look::read(std::string_view text) { return LookReader().read(text); }

LookParameter Look::readParameter(std::string_view text) {
    LookParameter parameter;
    text = trimmed(text);
    const size_t length = wordLength(text);
    parameter.name = text.substr(0, length);
    text = trimmed(text.substr(length));
    if (parameter.name.empty() || !text.starts_with(':'))
        throw LookError(0, "expected parameter NAME: VALUE [from A to B] [\"MEANING\"]");
    text = trimmed(text.substr(1));
    const size_t quote = findOutside(text, [&](size_t i) { return text[i] == '"'; });
    if (text.ends_with('"') && quote + 1 < text.size()) {
        parameter.meaning = text.substr(quote + 1, text.size() - quote - 2);
        text = trimmed(text.substr(0, quote));
    }
    parameter.standard = takeUpTo(text, "from");
    parameter.from = takeUpTo(text, "to");
    parameter.to = text;
    return parameter;
}

void Look::setTitle(const std::string& title) {
    requireOneLine("a title", title);
    title_ = trimmed(title);
}

void Look::setDescription(const std::string& description) {
    requireOneLine("a description", description);
    description_ = trimmed(description);
}

void Look::addCall(const std::string& text, int32_t line) {
    requireOneLine("a call", text, line);
    const LookStep step{std::string(withoutComment(trimmed(text))), line};
    check(step);
    linkParameters(step);
    steps_.push_back(step);
}

void Look::addParameter(LookParameter parameter) {
    for (std::string* text : {&parameter.standard, &parameter.from, &parameter.to})
        *text = std::string(trimmed(*text));
    const std::string& name = parameter.name;
    const bool isName = wordLength(name) == name.size() && !name.empty() &&
                        std::isalpha(static_cast<unsigned char>(name.front()));
    if (!isName) throw LookError(0, "a parameter's name is made of letters, digits and _, got " + name);
    if (sameLetters(name, "before")) throw LookError(0, "$before is the picture before the look");
    if (parameterNamed(name)) throw LookError(0, "the parameter " + name + " is given twice");
    requireOneLine(name + ": a meaning", parameter.meaning);
    if (parameter.meaning.find('"') != std::string::npos)
        throw LookError(0, name + ": a meaning has no quotation marks");
    if (parameter.from.empty() != parameter.to.empty()) throw LookError(0, name + ": expected from A to B");
    NotationScope scope;
    scope.width = scope.height = 1000;
    scope.percent = [](std::string_view, std::string_view, size_t) { return PercentKind::Real; };
    if (parameter.standard.empty()) throw LookError(0, name + ": expected a value, got none");
    for (const std::string* text : {&parameter.standard, &parameter.from, &parameter.to}) {
        if (text->empty()) continue;
        requireOneLine(name + ": a value", *text);
        if (!isValue(*text, scope)) throw LookError(0, name + ": expected a value, got " + *text);
    }
    parameter.value = parameter.standard;
    parameter.argument = nullptr;
    parameters_.push_back(std::move(parameter));
}

std::string Look::write() const {
    std::string text = std::string(kSignature) + ' ' + std::to_string(kVersion) + "\n\n";
    text += "title: " + title_ + '\n';
    if (!description_.empty()) text += "description: " + description_ + '\n';
    for (const LookParameter& parameter : parameters_) {
        text += "parameter " + parameter.name + ": " + parameter.standard;
        if (!parameter.from.empty()) text += " from " + parameter.from + " to " + parameter.to;
        if (!parameter.meaning.empty()) text += " \"" + parameter.meaning + '"';
        text += '\n';
    }
    text += '\n';
    for (const LookStep& step : steps_) text += step.text + '\n';
    return text;
}

}  // namespace krl
