#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <span>
#include <vector>

#include "look/FusedCalls.h"
#include "player/cli/ApplyLedger.h"
#include "player/cli/ApplyOptions.h"
#include "player/cli/ApplyProgress.h"
#include "player/cli/ChainCall.h"
#include "player/cli/LookFiles.h"
#include "player/cli/MemoryGate.h"
#include "player/cli/MovingChain.h"
#include "player/cli/RawPipe.h"
#include "player/pictures/Delivery.h"
#include "player/pictures/PictureFiles.h"
#include "player/pictures/StripPipeline.h"

namespace krl::player {

/// Counts failures up to as many as a batch may have.
class FailureLimit {
public:
    /// 0 is no limit.
    FailureLimit(size_t limit, size_t failures) : limit_(limit), count_(failures) {}
    void count() { ++count_; }
    bool isReached() const { return limit_ > 0 && count_ >= limit_; }

private:
    const size_t limit_;
    std::atomic<size_t> count_;
};

/// What the processing of every picture shares.
struct ApplyWork {
    const std::vector<ReadyLook>& looks;
    const std::vector<ChainCall>& chain;
    double fps;
    const WriteOptions& options;
    bool firstFrame = false;  ///< leaves out all pages or frames but the first
    const Delivery& delivery;
    ApplyProgress& progress;
    ApplyLedger* ledger;  ///< may be null
    unsigned retries;     ///< of reading
    MemoryGate& memory;
    FailureLimit& failures;
};

/// Runs looks and calls on a picture: through the catalogue, or calls through a plug-in from a file.
struct ApplyRunner {
    /// Runs the first calls of a chain, at least one; returns their outcomes up to the first that fails.
    std::function<std::vector<CallOutcome>(Bitmap& picture, std::span<const ChainCall> chain)> calls;
    std::function<CallOutcome(Bitmap& picture, const ReadyLook& look)> look;
    /// Runs calls that treat every pixel alone on a strip of a picture; null where each picture has to be
    /// whole.
    std::function<std::vector<CallOutcome>(Bitmap& strip, std::span<const ReadyCall> calls)> strip;
    /// The calls at each frame; null where they are the same for all.
    std::shared_ptr<MovingChain> moving;
    /// For strips; pictures in progress share the processors.
    StripRules strips;
};

/// What becomes of the working memory of a call.
enum class WorkingMemory { GivenBack, Kept };

/// Whether calls that treat every pixel alone run together, or each has a time of its own.
enum class CallOrder { Together, OneByOne };

/// Belongs to one thread.
ApplyRunner makeRunner(const std::vector<MovingCall>& written, const SessionOptions& options,
                       WorkingMemory memory = WorkingMemory::GivenBack,
                       CallOrder order = CallOrder::Together);

/// The chain for a picture of this size.
const std::vector<ChainCall>& chainFor(const ApplyRunner& run, const ApplyWork& work, const BatchItem& item,
                                       int32_t width, int32_t height);

/// The report on a call that was made on a picture of this size.
CallReport reportOn(const ChainCall& call, CallOutcome outcome, int32_t width, int32_t height);

/// What reading left out of the file, and what writing will, a line each.
std::vector<std::string> notesOnLosses(const BatchItem& item, const PictureFrames& frames,
                                       const WriteOptions& options);

/// The picture after all calls. Throws `CommandError` for the first that fails.
Bitmap changedBy(const ApplyRunner& run, const std::vector<ChainCall>& chain, Bitmap picture);

/// Changes the frames of a pipe by looks and calls. Belongs to one thread.
FrameWorker frameWorker(const std::vector<ReadyLook>& looks, const std::vector<ChainCall>& chain,
                        const std::vector<MovingCall>& calls, const ApplyOptions& options,
                        const SessionOptions& settings);

/// Reads, rewrites and writes a picture of the batch, with all its pages or frames if the output holds them,
/// and settles its report. Does nothing after as many failures as the batch may have.
void applyToPicture(const ApplyRunner& run, const ApplyWork& work, size_t index);

}  // namespace krl::player
