#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "catalogue/Method.h"
#include "catalogue/Value.h"
#include "player/lingo/Session.h"

namespace krl::player {

/// A call from the command line with its arguments in signature order: named ones are put in position,
/// omitted ones default to the method's example.
class ChainCall {
public:
    /// Throws `ScriptError` or `CommandError` for a call that cannot be parsed, an unknown method or
    /// argument, and an argument that is given twice or missing without a default.
    explicit ChainCall(std::string_view text);

    const Method& method() const { return *method_; }
    const std::string& written() const { return written_; }

    /// The call as the plug-in expects it: `krlImageBrightness(40, #RGB)`. The size of the picture determines
    /// the defaults of omitted points.
    std::string lingo(int32_t width, int32_t height) const;

    /// Evaluates the given arguments. Throws `ScriptError` for an expression that has no value, and
    /// `CommandError` for an argument of the wrong type.
    void evaluate(Session& session);
    /// The values of all arguments, after `evaluate`.
    std::vector<krl::Value> arguments(int32_t width, int32_t height) const;

private:
    std::string written_;
    const Method* method_;
    /// Lingo expressions in signature order; empty for omitted arguments.
    std::vector<std::string> given_;
    std::vector<krl::Value> values_;  ///< of the given arguments
};

/// Whether a word of the command line is a call: a method's name, or a name with parentheses that is
/// not a picture's.
bool looksLikeCall(const std::string& word);

}  // namespace krl::player
