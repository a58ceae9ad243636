#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace krl::player {

/// Files that are numbered frames: `frames/shot_%04d.png`, where `%04d` is a number of four digits or more
/// and
/// `%d` one without zeros before it.
class Sequence {
public:
    /// The sequence of a name; nothing for a name without a number, and for that of a file that exists.
    static std::optional<Sequence> named(const std::filesystem::path& name);

    std::filesystem::path file(int64_t number) const;
    /// The same as an expression of a script in which `number` is a variable, and `digits` a handler that
    /// writes a number with so many digits.
    std::string expression() const;
    /// The numbers of the files that there are, ascending. Throws `CommandError` for none, and for gaps.
    std::vector<int64_t> numbers() const;

private:
    /// The number in the name of a file of this sequence.
    std::optional<int64_t> numberIn(const std::string& name) const;

    std::filesystem::path folder_;
    std::string before_, after_;  ///< the number, in the file's name
    size_t digits_ = 1;
};

}  // namespace krl::player
