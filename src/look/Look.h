#pragma once

#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "catalogue/Arguments.h"
#include "catalogue/DirectCall.h"
#include "catalogue/Notation.h"

/// Looks: chains of calls with a title and parameters, kept as text.
///
///     krlimage look 1
///
///     title: Warm evening
///     description: Low sun, with soft dark corners.
///     parameter soft: 8% from 2% to 30% "how softly the corners darken"
///
///     colourTemperature(4800.0)
///     vignette(blur: $soft, mix: 0.6)    -- less at noon
///
/// `$before` is the picture that the look is applied to, for calls that take a second one.
namespace krl {

/// Says what is wrong with a look, and in which line.
class LookError : public std::runtime_error {
public:
    /// `line` counts from 1; 0 for what is in no line.
    LookError(int32_t line, const std::string& message)
        : std::runtime_error(line > 0 ? "line " + std::to_string(line) + ": " + message : message),
          line_(line) {}
    int32_t line() const { return line_; }
    /// Where a call ran and failed: its own message, in the words that scripts get.
    const std::string& scriptError() const { return scriptError_; }
    /// Why it failed, as in `CallResult`.
    CallCode code() const { return code_; }
    LookError&& causedBy(const CallResult& result) &&;

private:
    int32_t line_;
    std::string scriptError_;
    CallCode code_ = kCallOk;
};

/// A value that a look leaves open. Texts are in script notation, where a length may be in percent.
struct LookParameter {
    std::string name;      ///< without its `$`
    std::string standard;  ///< the value in the look's text
    std::string value;     ///< the value that calls take now
    std::string from, to;  ///< a sensible range, or empty
    std::string meaning;
    /// The first argument that the parameter is the value of, or null.
    const Argument* argument = nullptr;
};

/// One call of a look as its text.
struct LookStep {
    std::string text;
    int32_t line = 0;  ///< 0 for a call that no file holds
};

/// The picture of a name, BGRA without padding; no pixels if there is none.
using PictureFinder = std::function<Picture(const std::string& name)>;

class Look {
public:
    /// The version of the text that is read and written.
    static constexpr int32_t kVersion = 1;

    /// Throws `LookError` unless every line is understood and every call can be made.
    static Look read(std::string_view text);
    Look() = default;

    const std::string& title() const { return title_; }
    const std::string& description() const { return description_; }
    const std::vector<LookParameter>& parameters() const { return parameters_; }
    const std::vector<LookStep>& steps() const { return steps_; }
    /// The names of pictures that the calls take, each once.
    std::vector<std::string> pictureNames() const;

    /// Reads what follows the word `parameter` in a look: `soft: 8% from 2% to 30% "how softly"`. Throws
    /// `LookError`.
    static LookParameter readParameter(std::string_view text);

    // To write a look. Each throws `LookError` and leaves the look as it is.
    void setTitle(const std::string& title);
    void setDescription(const std::string& description);
    void addParameter(LookParameter parameter);
    void addCall(const std::string& text, int32_t line = 0);

    /// Gives a parameter another value, as a text in script notation; the `#` of a symbol may be left out.
    /// Throws `LookError` if there is no such parameter or a call does not take the value.
    void set(std::string_view name, std::string_view value);

    /// The look as text that `read` understands, with the standard values.
    std::string write() const;

    /// Makes the calls in turn on `picture`, which is BGRA without padding; one that makes a new picture puts
    /// it in the place of `picture`. `bands` is as in `chooseBands`. Throws `LookError`.
    void apply(ImageEngine& engine, Picture& picture, int32_t bands, const PictureFinder& find = {}) const;
    /// The same from one picture into another of its size, in any order; `to` is without padding, and has the
    /// place of `from` or shares no memory with it. Returns the outcome: `to`, or a picture that a call has
    /// made. Pictures of names are BGRA and share no memory with `to`, unless it is `from`.
    Picture apply(ImageEngine& engine, const Picture& from, const Picture& to, int32_t bands,
                  const PictureFinder& find = {}) const;

private:
    friend class LookReader;

    static void requireOneLine(const std::string& what, std::string_view text, int32_t line = 0);
    LookParameter* parameterNamed(std::string_view name);
    CallNotation notationOf(const LookStep& step, int32_t width, int32_t height,
                            const std::function<void(const Argument*, std::string_view)>& used = {}) const;
    bool takesBefore() const;
    void check(const LookStep& step) const;
    void linkParameters(const LookStep& step);

    std::string title_, description_;
    std::vector<LookParameter> parameters_;
    std::vector<LookStep> steps_;
};

/// A look that comes with the program.
struct ShippedLook {
    const char* name;  ///< such as `noir`
    const char* text;
};
/// In the order of their names.
const std::vector<ShippedLook>& shippedLooks();

}  // namespace krl
