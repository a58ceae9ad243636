#include "player/cli/Shard.h"

#include <charconv>
#include <cstdlib>

#include "player/cli/Commands.h"
#include "player/cli/ContentHash.h"

namespace krl::player {

namespace {

constexpr uint32_t kMostShards = 10'000'000;

std::optional<uint32_t> numberIn(std::string_view text) {
    uint32_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(number) : std::nullopt;
}

std::optional<uint32_t> numberOf(const char* variable) {
    const char* text = variable ? std::getenv(variable) : nullptr;
    return text ? numberIn(text) : std::nullopt;
}

/// The variables from which a task of a job array knows its index, the first index, and the number of tasks
/// or the last index.
struct Scheduler {
    const char* index;
    const char* first;  ///< null where the first is `firstNumber`
    uint32_t firstNumber;
    const char* count;
    const char* last;
};

constexpr Scheduler kSchedulers[] = {
    {"SLURM_ARRAY_TASK_ID", "SLURM_ARRAY_TASK_MIN", 0, "SLURM_ARRAY_TASK_COUNT", nullptr},
    {"PBS_ARRAY_INDEX", "PBS_ARRAY_INDEX_FIRST", 0, "PBS_ARRAY_COUNT", nullptr},
    {"SGE_TASK_ID", "SGE_TASK_FIRST", 1, nullptr, "SGE_TASK_LAST"},
    {"LSB_JOBINDEX", nullptr, 1, nullptr, "LSB_JOBINDEX_END"},
    {"JOB_COMPLETION_INDEX", nullptr, 0, "JOB_COMPLETION_COUNT", nullptr},
};

std::optional<Shard> shardOf(const Scheduler& scheduler) {
    const auto index = numberOf(scheduler.index);
    if (!index) return std::nullopt;
    const uint32_t first = numberOf(scheduler.first).value_or(scheduler.firstNumber);
    auto count = numberOf(scheduler.count);
    if (const auto last = numberOf(scheduler.last); !count && last && *last >= first)
        count = *last - first + 1;
    if (!count)
        throw UsageError(std::string("--shard auto: ") + scheduler.index + " is set, but not " +
                         (scheduler.count ? scheduler.count : scheduler.last));
    if (*index < first || *index - first >= *count)
        throw UsageError(std::string("--shard auto: ") + scheduler.index + " is " + std::to_string(*index) +
                         ", expected " + std::to_string(first) + " to " + std::to_string(first + *count - 1) +
                         "; number the tasks without gaps");
    return Shard(*index - first + 1, *count);
}

}  // namespace

Shard Shard::from(const std::string& text) {
    if (text == "auto") {
        for (const Scheduler& scheduler : kSchedulers)
            if (const auto shard = shardOf(scheduler)) return *shard;
        throw UsageError("--shard auto: this is not a task of a job array; use --shard K/N");
    }
    const size_t slash = text.find('/');
    const auto index = numberIn(std::string_view(text).substr(0, slash));
    const auto count =
        slash == std::string::npos ? std::nullopt : numberIn(std::string_view(text).substr(slash + 1));
    if (!index || !count || *index < 1 || *index > *count || *count > kMostShards)
        throw UsageError("--shard is " + text + ", expected K/N with K from 1 to N, or auto");
    return {*index, *count};
}

uint32_t Shard::indexOf(std::string_view name, uint32_t count) {
    return static_cast<uint32_t>(hashOf(name).low % count) + 1;
}

bool Shard::holds(std::string_view name) const { return indexOf(name, count_) == index_; }

}  // namespace krl::player
