#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace krl::player {

/// One of several equal shares of a batch, for a machine or a task of its own. A picture's share follows from
/// the name of its output alone, so adding pictures moves none of the others.
class Shard {
public:
    /// From `K/N`, K from 1 to N, or `auto`: the index and count of the job array that this process is a task
    /// of, as Slurm, PBS, Grid Engine, LSF or Kubernetes say in the environment. Throws `UsageError`.
    static Shard from(const std::string& text);

    Shard(uint32_t index, uint32_t count) : index_(index), count_(count) {}

    /// Whether the picture of this name belongs to it: the path below the output folder, with `/` between
    /// names.
    bool holds(std::string_view name) const;
    /// Which of `count` shards a picture of this name belongs to, from 1 on.
    static uint32_t indexOf(std::string_view name, uint32_t count);
    uint32_t index() const { return index_; }
    uint32_t count() const { return count_; }
    /// As `from` takes it.
    std::string text() const { return std::to_string(index_) + '/' + std::to_string(count_); }

private:
    uint32_t index_, count_;  ///< the first is 1
};

}  // namespace krl::player
