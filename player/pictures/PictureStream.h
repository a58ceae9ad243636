#pragma once

#include <exception>
#include <functional>
#include <memory>
#include <optional>

#include "player/pictures/Rows.h"
#include "player/pictures/StripPipeline.h"

namespace krl::player {

struct FormatWriter;

/// A picture that goes from one file to another in strips of rows. Memory does not depend on its height, and
/// the written bytes are those of a picture that is read and written whole.
class PictureStream {
public:
    /// Reads the header. The options must outlive the object. Throws `PictureError`.
    PictureStream(const std::filesystem::path& input, const std::filesystem::path& output,
                  const WriteOptions& options, const StripRules& rules);

    /// Whether formats, metadata and options allow strips, and the picture has more than a few. Otherwise
    /// nothing else may be called.
    bool isPossible() const { return source_ != nullptr; }
    const PictureHead& head() const { return head_; }

    /// Changes the pixels of a strip; false gives up. The strips may begin again from the top.
    using Change = std::function<bool(Bitmap& strip)>;

    /// Returns whether the picture came to its end, so that `commit` is next; otherwise nothing is written,
    /// and the picture has to be read whole. Throws what reading and `change` throw.
    bool run(const Change& change);
    /// Puts the written file in its place. Throws what writing has thrown.
    void commit();

private:
    enum class Ending { Complete, OtherContent, UnknownContent, GivenUp };

    bool allowsStrips() const;
    void openAgain();
    bool openSink();
    Ending pass(const Change& change, bool writes);
    Ending consider(const ContentCount& count, bool writes, bool isFirst);

    const WriteOptions& options_;
    const StripRules rules_;
    const std::filesystem::path output_;
    std::optional<InputFile> input_;
    std::unique_ptr<RowSource> source_;
    PictureHead head_;
    const FormatWriter* writer_ = nullptr;
    std::optional<AtomicFile> file_;
    std::unique_ptr<RowSink> sink_;
    std::exception_ptr writeFailure_;
    PictureContent content_;  ///< what the sink assumes
    bool isDrawingKnown_ = false;
};

}  // namespace krl::player
