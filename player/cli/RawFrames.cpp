#include "player/cli/RawFrames.h"

#include <algorithm>
#include <thread>

namespace krl::player {

namespace {

/// Options that are for picture files.
const char* optionForFiles(const ApplyOptions& options) {
    const std::pair<bool, const char*> all[] = {{options.json, "--json"},
                                                {options.timings, "--timings"},
                                                {!options.format.empty(), "--format"},
                                                {!options.nameTemplate.empty(), "--name"},
                                                {!options.inputList.empty(), "--from"},
                                                {options.recursive, "--recursive"},
                                                {options.inPlace, "--in-place"},
                                                {options.skipExisting, "--skip-existing"},
                                                {options.newer, "--newer"},
                                                {options.dryRun, "--dry-run"},
                                                {options.plan, "--plan"},
                                                {!options.shard.empty(), "--shard"},
                                                {options.keepsLedger(), "--ledger and --resume"}};
    const auto* found =
        std::find_if(std::begin(all), std::end(all), [](const auto& one) { return one.first; });
    return found != std::end(all) ? found->second : nullptr;
}

}  // namespace

SessionOptions sessionForFrames(const ApplyOptions& options, const SessionOptions& settings) {
    SessionOptions made = settings;
    const bool isOnAll = options.jobs == 0 || options.jobs >= std::thread::hardware_concurrency();
    const bool isFree = made.threads == ThreadChoice::AsScripted && made.xtraFile.empty();
    if (isOnAll && isFree) made.threads = ThreadChoice::One;
    return made;
}

int applyToFrames(const ApplyOptions& options, const std::vector<std::filesystem::path>& inputs,
                  const std::function<FrameWorker()>& makeWorker) {
    if (inputs != std::vector<std::filesystem::path>{"-"} || options.output != "-")
        throw UsageError("--raw works in a pipe: use - as the input and -o -");
    if (const char* option = optionForFiles(options))
        throw UsageError(std::string("--raw writes frames, not files: leave out ") + option);
    pipeFrames(rawFormatOf(options.raw), options.jobs, makeWorker);
    return 0;
}

}  // namespace krl::player
