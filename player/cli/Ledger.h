#pragma once

#include <condition_variable>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "player/cli/ContentHash.h"
#include "player/cli/Shard.h"

/// What became of every picture of a large batch, kept beside the results: `OUT/.krlimage/ledger` has one
/// file of JSON lines for each process that worked on the batch. Nobody else writes to that file.
namespace krl::player {

/// Size and time of a file, by which a changed input is noticed.
struct FileState {
    uint64_t size = 0;
    int64_t time = 0;  ///< nanoseconds since 1970

    bool operator==(const FileState&) const = default;
};

/// Of a file, or nothing if there is none.
std::optional<FileState> stateOf(const std::filesystem::path& file);

struct LedgerEntry {
    std::string name;     ///< of the output, below the output folder
    std::string input;    ///< as it was opened
    std::string failure;  ///< one line; empty for a picture that is written
    std::string chain;    ///< hash of what was done
    FileState source;     ///< of the input, before it was read
    uint64_t size = 0;    ///< of the result
    std::string hash;     ///< of the result
    int64_t time = 0;     ///< when it was noted, in milliseconds since 1970
};

/// The first line of a ledger.
struct LedgerHeading {
    std::string doing;  ///< for people
    std::string chain;
    Shard shard{1, 1};
    std::string mark;  ///< in the names of unfinished files
    int64_t time = 0;  ///< in milliseconds since 1970
};

/// Notes entries for one process, under a lock that ends with the process. `note` returns at once: a thread
/// writes what has come together, and makes sure that it is on the disk before it writes more.
class LedgerWriter {
public:
    /// Makes a file in `output`. Throws `CommandError`.
    LedgerWriter(const std::filesystem::path& output, LedgerHeading heading);
    ~LedgerWriter();
    LedgerWriter(const LedgerWriter&) = delete;
    LedgerWriter& operator=(const LedgerWriter&) = delete;

    void note(LedgerEntry entry);
    /// Waits until all that is noted is written.
    void flush();
    /// Writes what is left, and if the process is through its shard, of how many pictures. Returns why
    /// something could not be written; empty if all is.
    std::string finish(std::optional<size_t> pictures);

private:
    void writeAll();
    void add(const std::string& text);
    void write(const std::string& text);

    std::filesystem::path file_;
    std::FILE* stream_ = nullptr;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::string waiting_, failure_;
    bool isWriting_ = false, isFlushed_ = false, ended_ = false;
    std::thread thread_;
};

/// A ledger of a batch.
struct LedgerFile {
    std::filesystem::path file;
    Shard shard;
};

std::vector<LedgerFile> ledgersOf(const std::filesystem::path& output);

/// What a ledger says besides its entries.
struct LedgerFrame {
    std::optional<LedgerHeading> heading;
    std::optional<uint64_t> pictures;  ///< of its shard, if the process came to the end
};

/// Gives each entry of a ledger to `take`. A line that a crash has torn is no entry.
LedgerFrame readLedger(const std::filesystem::path& ledger, const std::function<void(LedgerEntry&&)>& take);

/// Whether the process that writes a ledger is still running, as far as the file system can tell.
bool isBeingWritten(const std::filesystem::path& ledger);

}  // namespace krl::player
