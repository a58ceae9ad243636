#pragma once

#include <string>
#include <vector>

#include "player/cli/ApplyProgress.h"
#include "player/cli/Commands.h"

namespace krl::player {

/// Prints lines of `krlimage: note: `.
void showNotes(const std::vector<std::string>& notes, const Terminal& terminal);

/// Exit code of a batch that ended before all its pictures were tried.
inline constexpr int kStoppedEarly = 3;

/// Prints the results of a batch, part by part.
class ApplyReport {
public:
    ApplyReport(bool json, const Terminal& terminal) : json_(json), terminal_(terminal) {}

    /// Prints the results of a part. If memory runs out meanwhile, it still reports how many pictures were
    /// written.
    void add(const std::vector<BatchItem>& items, const std::vector<PictureReport>& reports);
    /// Prints how many pictures of all parts are done, and returns the exit code.
    int finish(const BatchTotals& totals);

private:
    void show(const BatchItem& item, const PictureReport& report);

    const bool json_;
    const Terminal& terminal_;
    bool isFirst_ = true;
    bool ranOut_ = false;  ///< of memory
};

}  // namespace krl::player
