#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "catalogue/Method.h"
#include "catalogue/Value.h"
#include "player/lingo/Session.h"

namespace krl::player {

/// A call of the command line, with every argument in its place: those that were given by name put
/// where they belong, those that were left out taken from the method's example.
class ChainCall {
public:
    /// Throws `ScriptError` or `CommandError` for a call that cannot be read, an unknown method or
    /// argument, and one that is given twice or needed and missing.
    explicit ChainCall(std::string_view text);

    const Method& method() const { return *method_; }
    const std::string& written() const { return written_; }

    /// The call as the plug-in is to have it: `krlImageBrightness(40, #RGB)`. The size serves the
    /// places that were left out, which are parts of the picture.
    std::string lingo(int32_t width, int32_t height) const;

    /// Works out what was given. Throws `ScriptError` for an expression that has no value, and
    /// `CommandError` for an argument of the wrong kind.
    void evaluate(Session& session);
    /// The values of all arguments, once they are worked out.
    std::vector<krl::Value> arguments(int32_t width, int32_t height) const;

private:
    std::string written_;
    const Method* method_;
    /// Lingo texts in signature order; empty for what was left out.
    std::vector<std::string> given_;
    std::vector<krl::Value> values_;  ///< of what was given
};

/// Whether a word of the command line is meant as a call: a method's name, or a name with brackets
/// that is not a picture's.
bool looksLikeCall(const std::string& word);

}  // namespace krl::player
