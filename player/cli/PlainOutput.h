#pragma once

#include <ostream>
#include <streambuf>

namespace krl::player {

/// A stream to another one that shows control characters as text, `^[` for escape: file names and scripts of
/// others may hold what a terminal takes for commands. Line ends and tabs pass.
class PlainOutput : public std::ostream {
public:
    explicit PlainOutput(std::ostream& target);

private:
    friend std::ostream& unfiltered(std::ostream& stream);

    class Buffer : public std::streambuf {
    public:
        explicit Buffer(std::ostream& behind) : target(behind) {}
        std::ostream& target;

    private:
        int_type overflow(int_type letter) override;
        std::streamsize xsputn(const char* text, std::streamsize count) override;
        int sync() override;

        bool isLead_ = false;  ///< whether the last byte begins a control character of two bytes
    };

    Buffer buffer_;
};

/// What is behind a `PlainOutput`, for control sequences of the program's own; any other stream itself.
std::ostream& unfiltered(std::ostream& stream);

}  // namespace krl::player
