#pragma once

/// Ends the program when a command takes longer than it may.
namespace krl::player {

/// Exit code of a program that its time limit ended, the one that `timeout` uses.
inline constexpr int kTimedOut = 124;

/// While this object lives, the program has `seconds` left; 0 means no limit. When they are over it removes
/// half-written files, prints one line on standard error and ends with `kTimedOut`, whatever it is doing.
class TimeLimit {
public:
    /// `live` says whether a progress bar may be standing on standard error.
    TimeLimit(double seconds, bool live);
    ~TimeLimit();
    TimeLimit(const TimeLimit&) = delete;
    TimeLimit& operator=(const TimeLimit&) = delete;
};

}  // namespace krl::player
