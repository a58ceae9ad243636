#include "player/cli/BatchParts.h"

#include <algorithm>
#include <utility>

#include "player/cli/ApplyOptions.h"
#include "player/cli/Sequence.h"

namespace krl::player {

BatchParts::BatchParts(std::vector<std::filesystem::path> named, const ApplyOptions& options)
    : options_(options), named_(std::move(named)), shard_(shardOf(options)) {
    if (!options.watch.empty()) watch_ = std::make_unique<FolderWatch>(options);
    if (options.inputList.empty()) return;
    const auto isStream = [](const std::filesystem::path& input) { return isStandardStream(input); };
    if (isStream(options.inputList) && std::any_of(named_.begin(), named_.end(), isStream))
        throw UsageError("standard input is either a picture or, with --from -, a list");
    if (shard_ && Sequence::named(options.output))
        throw UsageError(
            "numbered outputs count the pictures of a list in one run, and --shard makes several");
    list_ = std::make_unique<InputList>(options.inputList, options.endsWithZero ? '\0' : '\n');
}

std::optional<BatchPart> BatchParts::next() {
    if (watch_) return watch_->next();
    BatchPart part;
    const bool isFirst = std::exchange(isFirst_, false);
    if (isFirst) part.named = named_;
    while (list_ && part.listed.size() < kPartNames) {
        const std::optional<std::string> name = list_->next();
        if (!name) break;
        if (!shard_ || shard_->holds(outputName(*name, options_))) part.listed.emplace_back(*name);
    }
    part.isOneOfSeveral = !isFirst || part.listed.size() == kPartNames;
    if (!isFirst && part.listed.empty()) return std::nullopt;
    if (part.isOneOfSeveral) requireOutputsOfTheirOwn();
    return part;
}

/// Outputs are compared within a part. Those of different parts must differ because their inputs do.
void BatchParts::requireOutputsOfTheirOwn() const {
    const std::string size = "a list of " + std::to_string(kPartNames) + " names or more ";
    if (options_.inPlace && options_.output.empty()) return;
    if (options_.root.empty())
        throw UsageError(size + "needs --root DIR, which keeps the place of its pictures below DIR in OUT");
    if (Sequence::named(options_.output))
        throw UsageError(size + "needs a folder as output, since numbers are counted within a part");
    const std::string& pattern = options_.nameTemplate;
    if (!pattern.empty() && pattern.find("{folder}") == std::string::npos)
        throw UsageError(size + "needs {folder} in --name");
}

InputList::Place BatchParts::place() const {
    if (watch_) return {0, watch_->seen()};
    return list_ ? list_->place() : InputList::Place();
}

void BatchParts::continueAt(const InputList::Place& place) {
    isFirst_ = false;
    if (list_) list_->continueAt(place);
    if (watch_) watch_->continueAfter(place.unread);
}

}  // namespace krl::player
