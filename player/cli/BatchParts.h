#pragma once

#include <memory>
#include <optional>

#include "player/cli/Batch.h"
#include "player/cli/FolderWatch.h"
#include "player/cli/InputList.h"
#include "player/cli/Shard.h"

namespace krl::player {

/// The inputs of a batch in parts of some thousand. The first part has all that the command line names, and
/// every part the names that follow in the list of `--from`. With `--watch`, each part has the pictures that
/// have appeared, and there is no last one.
class BatchParts {
public:
    /// Throws `CommandError` for a list that cannot be read.
    BatchParts(std::vector<std::filesystem::path> named, const ApplyOptions& options);

    /// The next part, or nothing at the end. Throws `UsageError` for a long list whose pictures might share
    /// outputs.
    std::optional<BatchPart> next();

    /// Where the next part begins.
    InputList::Place place() const;
    /// Leaves out the parts before `place`: the program that this one replaces has worked on them.
    void continueAt(const InputList::Place& place);

    /// Names in a part of a list.
    static constexpr size_t kPartNames = 4096;

private:
    void requireOutputsOfTheirOwn() const;

    const ApplyOptions& options_;
    std::vector<std::filesystem::path> named_;
    std::optional<Shard> shard_;
    std::unique_ptr<InputList> list_;
    std::unique_ptr<FolderWatch> watch_;
    bool isFirst_ = true;
};

}  // namespace krl::player
