#pragma once

#include <memory>
#include <set>

#include "player/cli/ApplyOptions.h"
#include "player/cli/Batch.h"
#include "player/cli/Ledger.h"
#include "player/cli/MovingChain.h"
#include "player/pictures/PictureFiles.h"

namespace krl::player {

/// All that decides what becomes of a picture: this version, looks with their settings, calls, how the result
/// is written, and for arguments that move the picture's place among all.
class MadeBy {
public:
    MadeBy(const ApplyOptions& options, const std::vector<MovingCall>& calls, const WriteOptions& writing);

    /// Hash for all pictures.
    const std::string& chain() const { return chain_; }
    /// Hash for one.
    std::string chainOf(const BatchItem& item) const;

private:
    std::string chain_;
    bool moves_;
};

/// The results that ledgers of earlier runs record: some bytes for each, in order of their names' hashes.
class RecordedResults {
public:
    /// Reads the ledgers of `output` that can have pictures of the shard.
    RecordedResults(const std::filesystem::path& output, const Shard& shard);

    /// Whether a picture is there as recorded, of the input as it is, made in the same way.
    bool has(const BatchItem& item, const std::string& name, const MadeBy& made) const;

    /// Marks in the names of files that processes left unfinished.
    const std::set<std::string>& abandoned() const { return abandoned_; }

private:
    struct Result {
        uint64_t name = 0;
        int64_t time = 0;
        uint64_t source = 0;  ///< hash of the input's state and the chain; 0 for a failure
        uint64_t size = 0;
    };

    std::vector<Result> results_;
    std::set<std::string> abandoned_;
};

/// The ledger of a run of `apply`.
class ApplyLedger {
public:
    ApplyLedger(const ApplyOptions& options, MadeBy made, std::string doing);

    /// Leaves out what is done, if that is asked for, and removes what killed processes left unfinished.
    /// Throws `CommandError` if the output folder cannot hold a ledger.
    void leaveOutDone(std::vector<BatchItem>& items, std::vector<std::string>& notes);

    /// Pictures of the batch that have come here, also those that are left out.
    size_t pictures() const { return pictures_; }
    /// Continues for a program that crashed.
    void continueWith(size_t pictures);

    /// The state of an input before it is read.
    static FileState before(const BatchItem& item);
    /// Records a picture that is written, or why it is not.
    void note(const BatchItem& item, const FileState& source, const std::string& failure);
    /// Ends the ledger; see `LedgerWriter::finish`.
    std::string finish(bool isThrough);

private:
    void open();
    void removeAbandoned(const std::vector<BatchItem>& items, std::vector<std::string>& notes);

    const ApplyOptions& options_;
    MadeBy made_;
    std::unique_ptr<RecordedResults> recorded_;
    std::set<std::filesystem::path> cleaned_;
    size_t pictures_ = 0;
    std::string doing_;
    std::unique_ptr<LedgerWriter> writer_;  ///< null until something is planned
};

}  // namespace krl::player
