#pragma once

#include <stdexcept>
#include <string>

namespace krl::player {

/// A position in a script, both numbers from 1; line 0 if there is none.
struct Place {
    int line = 0;
    int column = 0;
};

/// Any error that ends a script: a syntax error, an unknown name, a value of the wrong type, an
/// inaccessible file, an exceeded limit. `what()` is one line:
/// `grade.ls:3:9: expected "then" after the condition`.
class ScriptError : public std::runtime_error {
public:
    explicit ScriptError(const std::string& message) : ScriptError("", {}, message, "") {}
    ScriptError(std::string file, Place place, std::string message, std::string sourceLine);

    const std::string& file() const { return file_; }
    Place place() const { return place_; }
    /// The message without the position.
    const std::string& message() const { return message_; }
    /// The source line with a caret under the column, or empty.
    std::string excerpt() const;

private:
    std::string file_;
    Place place_;
    std::string message_;
    std::string sourceLine_;
};

}  // namespace krl::player
