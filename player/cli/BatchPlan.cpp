#include "player/cli/BatchPlan.h"

#include <algorithm>
#include <functional>
#include <map>
#include <nlohmann/json.hpp>
#include <ostream>
#include <thread>

#include "player/cli/ApplyOptions.h"
#include "player/cli/ApplyReport.h"
#include "player/cli/MemoryGate.h"
#include "player/cli/ReadRetry.h"

namespace krl::player {

namespace {

/// The work of one shard, or of all.
class Work {
public:
    Work(unsigned jobs, uint64_t limit) : jobs_(jobs), limit_(limit) {}

    void add(const PictureSize& size, std::optional<PictureFormat> written) {
        ++pictures_;
        pixels_ += static_cast<uint64_t>(size.width * size.height * size.frames);
        largest_.push_back(workingMemory(size, written));
        std::push_heap(largest_.begin(), largest_.end(), std::greater<>());
        if (largest_.size() <= jobs_) return;
        std::pop_heap(largest_.begin(), largest_.end(), std::greater<>());
        largest_.pop_back();
    }

    /// With the largest pictures at the same time.
    uint64_t memory() const {
        uint64_t all = 0;
        for (const uint64_t bytes : largest_) all += bytes;
        return limit_ > 0 ? std::min(all, std::max(limit_, largest())) : all;
    }

    nlohmann::ordered_json json() const {
        return {{"pictures", pictures_},
                {"pixels", pixels_},
                {"largestPicture", largest()},
                {"memory", memory()}};
    }

    std::string text() const {
        const auto rounded = [](uint64_t number) { return std::to_string((number + 500'000) / 1'000'000); };
        return std::to_string(pictures_) + " pictures, " + rounded(pixels_) + " megapixels, " +
               rounded(memory()) + " MB of memory with --jobs " + std::to_string(jobs_) + ", " +
               rounded(largest()) + " MB for the largest picture";
    }

private:
    uint64_t largest() const {
        return largest_.empty() ? 0 : *std::max_element(largest_.begin(), largest_.end());
    }

    unsigned jobs_;
    uint64_t limit_, pictures_ = 0, pixels_ = 0;
    std::vector<uint64_t> largest_;  ///< of as many pictures as are in progress; the smallest is first
};

/// Adds the pictures of a batch to all work and to that of their shards, and reports what cannot be read.
class Survey {
public:
    Survey(const ApplyOptions& options, const WriteOptions& writing, unsigned jobs, const Terminal& terminal)
        : options_(options),
          writing_(writing),
          terminal_(terminal),
          shards_(countOfAllShards(options)),
          all_(jobs, options.memory) {
        if (shards_)
            for (uint32_t i = 1; i <= *shards_; ++i) byShard_.emplace(i, all_);
    }

    void add(const BatchItem& item) {
        const FrameChoice choice = options_.firstFrame ? FrameChoice::First : FrameChoice::All;
        try {
            const PictureSize size = readPatiently(item.input, options_.retries,
                                                   [&] { return readPictureSize(item.input, choice); });
            const std::optional<PictureFormat> written = formatFor(item.output, writing_);
            all_.add(size, written);
            if (shards_)
                byShard_.at(Shard::indexOf(nameBelowOutput(item.output, options_), *shards_))
                    .add(size, written);
        } catch (const PictureError& error) {
            ++unreadable_;
            terminal_.err << "krlimage: " << error.what() << '\n';
        }
    }

    int show() const {
        if (options_.json)
            showJson();
        else
            showText();
        return unreadable_ == 0 ? 0 : 1;
    }

private:
    void showJson() const {
        nlohmann::ordered_json json = all_.json();
        json["unreadable"] = unreadable_;
        for (const auto& [index, work] : byShard_) {
            nlohmann::ordered_json shard = {{"shard", Shard(index, *shards_).text()}};
            shard.update(work.json());
            json["shards"].push_back(shard);
        }
        terminal_.out << json.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
    }

    void showText() const {
        for (const auto& [index, work] : byShard_)
            terminal_.out << "shard " << Shard(index, *shards_).text() << ": " << work.text() << '\n';
        terminal_.out << all_.text() << '\n';
    }

    const ApplyOptions& options_;
    const WriteOptions& writing_;
    const Terminal& terminal_;
    std::optional<uint32_t> shards_;
    Work all_;
    std::map<uint32_t, Work> byShard_;
    size_t unreadable_ = 0;
};

}  // namespace

int printPlan(BatchParts& parts, const ApplyOptions& options, const WriteOptions& writing,
              const Terminal& terminal) {
    const unsigned jobs = options.jobs > 0 ? options.jobs : std::max(1u, std::thread::hardware_concurrency());
    Survey survey(options, writing, jobs, terminal);
    while (const std::optional<BatchPart> part = parts.next()) {
        std::vector<std::string> notes;
        for (const BatchItem& item : planBatch(*part, options, &notes)) survey.add(item);
        showNotes(notes, terminal);
    }
    return survey.show();
}

}  // namespace krl::player
