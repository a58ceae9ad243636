#pragma once

#include <filesystem>
#include <fstream>
#include <mutex>
#include <string>
#include <vector>

#include "player/cli/ApplyOptions.h"
#include "player/cli/ApplyProgress.h"
#include "player/cli/Commands.h"

namespace krl::player {

/// Prints lines of `krlimage: note: `.
void showNotes(const std::vector<std::string>& notes, const Terminal& terminal);

/// Exit code of a batch that ended before all its pictures were tried.
inline constexpr int kStoppedEarly = 3;

/// Prints the results of a batch: lines for programs and timings while it goes on, the rest part by part.
class ApplyReport {
public:
    ApplyReport(const ApplyOptions& options, const Terminal& terminal)
        : json_(options.json),
          timings_(options.timings),
          isWatching_(!options.watch.empty()),
          terminal_(terminal) {}

    /// Opens the list of failures, and goes on with that of a program that crashed. Throws `CommandError`.
    void listFailures(const ApplyOptions& options, bool isContinued);
    /// Whether there is something to print for each picture as it is settled.
    bool printsLines() const { return json_ || timings_ || isWatching_; }
    /// Prints that, and lists a failure, unless that was done before. Can be called from any thread.
    void settled(ApplyProgress& progress, size_t item);
    /// Prints the results of a part. If memory runs out meanwhile, it still reports how many pictures were
    /// written.
    void add(ApplyProgress& progress);
    /// Prints how many pictures of all parts are done, and returns the exit code.
    int finish(const BatchTotals& totals);

private:
    void printLines(ApplyProgress& progress, size_t item);
    void show(const PictureReport& report) const;

    const bool json_, timings_, isWatching_;
    const Terminal& terminal_;
    std::filesystem::path failuresFile_;
    std::ofstream failures_;
    char afterName_ = '\n';
    std::mutex guard_;
    bool ranOut_ = false;  ///< of memory
};

}  // namespace krl::player
