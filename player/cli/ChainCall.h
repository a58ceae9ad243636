#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "catalogue/Method.h"
#include "catalogue/Value.h"
#include "look/Extent.h"
#include "look/Placement.h"
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
    /// Its arguments alone.
    std::vector<std::string> lingoArguments(int32_t width, int32_t height) const;

    /// Evaluates the given arguments. Throws `ScriptError` for an expression that has no value, and
    /// `CommandError` for an argument of the wrong type. What is as in `before`, an evaluated call of the
    /// same method, keeps its value.
    void evaluate(Session& session, const ChainCall* before = nullptr);
    /// The value of a given argument, after `evaluate`; VOID for an omitted one and for percentages, whose
    /// value depends on the picture.
    const krl::Value& given(size_t index) const;
    /// The values of all arguments, after `evaluate`.
    std::vector<krl::Value> arguments(int32_t width, int32_t height) const;

    /// Whether the call says where or how much: `mix`, `mask`, `region` and `feather`.
    bool hasExtent() const { return hasExtent_; }
    /// Whether it says where a second picture goes: `place`, `scale` and `fit`.
    bool hasPlacement() const { return hasPlacement_; }
    /// Where and how much, after `evaluate`. Throws `CommandError`.
    Extent extent(int32_t width, int32_t height) const;

private:
    void take(const WrittenCall& call);
    CallNotation notation(int32_t width, int32_t height) const;
    std::optional<Placement> placement(int32_t width, int32_t height) const;
    /// The arguments of a relative call in signature order, as they are for a picture of this size; nothing
    /// for omitted arguments.
    std::vector<krl::Value> relativeValues(int32_t width, int32_t height) const;

    std::string written_;
    /// Whether the call has percentages, or says where and how much. It consists of literals then.
    bool isRelative_ = false;
    bool hasExtent_ = false, hasPlacement_ = false;
    std::map<std::string, krl::Picture> masks_;  ///< by their names in the call
    const Method* method_;
    /// Lingo expressions in signature order; empty for omitted arguments.
    std::vector<std::string> given_;
    std::vector<krl::Value> values_;  ///< of the given arguments
};

/// The size of picture for which calls are checked before one is read.
inline constexpr int32_t kUsualWidth = 960, kUsualHeight = 640;

/// Whether a word of the command line is a call: a method's name, or a name with parentheses that is
/// not a picture's.
bool looksLikeCall(const std::string& word);

}  // namespace krl::player
