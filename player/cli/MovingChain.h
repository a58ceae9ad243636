#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "player/cli/ChainCall.h"
#include "player/lingo/Session.h"

/// Calls with arguments that move: expressions of the script language with `frame`, `frames`, `t`, `seconds`,
/// `width`, `height`, `ease` and `key`.
namespace krl::player {

/// A frame of a film, or a picture of a batch.
struct FrameFacts {
    size_t frame = 0;   ///< from 0
    size_t frames = 0;  ///< 0 where it is unknown
    double fps = 0;     ///< frames in a second; 0 where it is unknown
    int32_t width = 0, height = 0;
};

/// A call as written, with each argument's name and expression.
class MovingCall {
public:
    /// Throws `UsageError` where `ease`, `key` or `digits` has too few values or too many.
    explicit MovingCall(const std::string& text);

    /// Whether an argument moves; the others are as they are for every frame.
    bool moves() const { return !names_.empty(); }
    /// The names of the frame's facts that its arguments use.
    const std::set<std::string>& names() const { return names_; }
    /// The expressions that move, as handlers `PREFIX1`, `PREFIX2` and so on.
    std::string handlers(const std::string& prefix) const;
    /// The call at a frame for which `session` knows these handlers. Throws `ScriptError`.
    std::string at(Session& session, const std::string& prefix) const;
    /// The call for a script that loops over frames: like `still`, with the expressions that move.
    std::string lingo(const ChainCall& still, int32_t width, int32_t height) const;
    const std::string& text() const { return text_; }

private:
    struct Part {
        std::string name, expression;
        bool moves = false;
        /// The file's name in `image(...)`; empty for anything else.
        std::string file;
    };
    /// The expression as it gives what the argument takes.
    std::string converted(const Part& part) const;
    std::optional<size_t> placeOf(const Part& part) const;

    std::string text_, method_;
    std::vector<Part> parts_;
    std::set<std::string> names_;
};

/// The calls of a chain as they are at each frame. Belongs to one thread.
class MovingChain {
public:
    MovingChain(const std::vector<MovingCall>& calls, const SessionOptions& options);

    /// Throws `ScriptError` with the frame's number.
    const std::vector<ChainCall>& at(const FrameFacts& facts);

private:
    ChainCall callAt(size_t index);

    const std::vector<MovingCall>& calls_;
    Session session_;
    std::vector<ChainCall> chain_;
};

/// Whether a call has an argument that moves.
bool moves(const std::vector<MovingCall>& calls);

/// Throws `UsageError` for calls that use a fact which is 0 in `known`, with the option that gives it.
void requireFacts(const std::vector<MovingCall>& calls, const FrameFacts& known);

/// The calls as they are read, with nothing evaluated; where some move, at the first of `known.frames`
/// frames.
std::vector<ChainCall> firstChain(const std::vector<MovingCall>& calls, const FrameFacts& known,
                                  const SessionOptions& options);

/// The handlers `ease`, `key`, `digits` and `krlAtFrame`, which sets what the expressions use.
const char* frameHandlers();

}  // namespace krl::player
