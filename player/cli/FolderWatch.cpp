#include "player/cli/FolderWatch.h"

#include <algorithm>
#include <chrono>
#include <nlohmann/json.hpp>
#include <thread>

#include "player/cli/Commands.h"
#include "player/pictures/PictureFiles.h"

namespace krl::player {

namespace fs = std::filesystem;

namespace {

constexpr std::chrono::milliseconds kBetweenLooks{400};

bool isInside(const fs::path& path, const fs::path& folder) {
    std::error_code failed;
    const fs::path whole = fs::weakly_canonical(path, failed), outer = fs::weakly_canonical(folder, failed);
    return std::mismatch(outer.begin(), outer.end(), whole.begin(), whole.end()).first == outer.end();
}

bool isSame(const fs::path& a, const fs::path& b) { return isInside(a, b) && isInside(b, a); }

}  // namespace

FolderWatch::FolderWatch(const ApplyOptions& options) : options_(options) {
    if (!fs::is_directory(options.watch))
        throw UsageError("--watch " + options.watch.string() + ": there is no such folder");
    if (isSame(options.output, options.watch) ||
        (options.recursive && isInside(options.output, options.watch)))
        throw UsageError("--watch: outputs in " + options.output +
                         " would be found as new pictures: name another folder");
}

template <class Entries>
void FolderWatch::add(const Entries& entries, std::map<std::string, State>& found) const {
    for (const fs::directory_entry& entry : entries) {
        const fs::path& path = entry.path();
        std::error_code vanished;
        if (path.filename().string().front() == '.' || !isReadableName(path)) continue;
        if (!isPictureName(path) && options_.format.empty()) continue;
        if (!entry.is_regular_file(vanished)) continue;
        const auto size = entry.file_size(vanished);
        const auto written = entry.last_write_time(vanished).time_since_epoch().count();
        if (!vanished) found[path.string()] = {size, static_cast<int64_t>(written)};
    }
}

/// The pictures that are there now; none if the folder cannot be read at the moment.
std::map<std::string, FolderWatch::State> FolderWatch::look() const {
    std::map<std::string, State> found;
    try {
        if (options_.recursive)
            add(fs::recursive_directory_iterator(options_.watch), found);
        else
            add(fs::directory_iterator(options_.watch), found);
    } catch (const fs::filesystem_error&) {
        return {};
    }
    return found;
}

bool FolderWatch::hasOutputOfItsOwn(const std::string& input, std::vector<std::string>& notes) {
    const auto [one, isFirst] = inputs_.emplace(outputName(input, options_), input);
    if (isFirst || one->second == input) return true;
    notes.push_back("skipped " + input + ": " + (options_.output / fs::path(one->first)).string() +
                    " is the result of " + one->second);
    return false;
}

BatchPart FolderWatch::next() {
    for (;;) {
        const std::map<std::string, State> now = look();
        BatchPart whole{{}, {}, true};
        for (const auto& [name, state] : now) {
            const auto before = last_.find(name), known = seen_.find(name);
            if (before == last_.end() || before->second != state || state.first == 0) continue;
            if (known != seen_.end() && known->second == state) continue;
            seen_[name] = state;
            if (hasOutputOfItsOwn(name, whole.notes)) whole.listed.emplace_back(name);
        }
        // A folder that cannot be read now may be back soon.
        if (!now.empty()) std::erase_if(seen_, [&](const auto& one) { return !now.contains(one.first); });
        last_ = now;
        if (!whole.listed.empty() || !whole.notes.empty()) return whole;
        std::this_thread::sleep_for(kBetweenLooks);
    }
}

std::string FolderWatch::seen() const {
    const std::vector<uint8_t> bytes = nlohmann::json::to_cbor(nlohmann::json::array({seen_, inputs_}));
    return {bytes.begin(), bytes.end()};
}

void FolderWatch::continueAfter(const std::string& seen) {
    const nlohmann::json json = nlohmann::json::from_cbor(seen);
    json[0].get_to(seen_);
    json[1].get_to(inputs_);
}

}  // namespace krl::player
