#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "catalogue/Method.h"

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

    /// What is wrong with the arguments as far as can be seen from their texts, a line each.
    std::vector<std::string> complaints() const;

private:
    std::string written_;
    const Method* method_;
    /// Lingo texts in signature order; empty for what was left out.
    std::vector<std::string> given_;
};

/// Whether a word of the command line is meant as a call: a method's name, or a name with brackets
/// that is not a picture's.
bool looksLikeCall(const std::string& word);

}  // namespace krl::player
