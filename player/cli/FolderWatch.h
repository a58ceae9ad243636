#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "player/cli/ApplyOptions.h"
#include "player/cli/Batch.h"

namespace krl::player {

/// Finds pictures that appear in a folder, or change there.
class FolderWatch {
public:
    /// Throws `UsageError` if `options` would put outputs where they are found again.
    explicit FolderWatch(const ApplyOptions& options);

    /// Waits for pictures that are whole: their files have not changed from one look to the next. Leaves out
    /// a picture that would overwrite the result of another.
    BatchPart next();

    /// What was found so far, and how to leave that out after a crash.
    std::string seen() const;
    void continueAfter(const std::string& seen);

private:
    /// Size and time of writing.
    using State = std::pair<uint64_t, int64_t>;

    std::map<std::string, State> look() const;
    template <class Entries>
    void add(const Entries& entries, std::map<std::string, State>& found) const;

    bool hasOutputOfItsOwn(const std::string& input, std::vector<std::string>& notes);

    const ApplyOptions& options_;
    std::map<std::string, State> seen_, last_;
    std::map<std::string, std::string> inputs_;  ///< of each output
};

}  // namespace krl::player
