#include "player/pictures/PictureStream.h"

#include <utility>

#include "player/pictures/ExifData.h"
#include "player/pictures/Formats.h"
#include "player/pictures/PictureMetadata.h"
#include "player/pictures/PixelLimit.h"

namespace krl::player {

namespace {

/// Smaller pictures fit into the memory of the strips.
constexpr size_t kFewStrips = 2;

/// Null for a file that libvips reads.
std::unique_ptr<RowSource> open(const InputFile& file) {
    const FormatReader* reader = readerFor(file);
    if (!reader) return nullptr;
    try {
        return reader->open(file);
    } catch (const NeedsVips&) {
        return nullptr;
    }
}

bool isWithinLimits(const PictureSize& size, const StripRules& rules) {
    if (size.width < 1 || size.height < 1 || size.width > kPictureByteLimit / 8) return false;
    const auto fewPixels = static_cast<int64_t>(rules.pixels * kFewStrips);
    return size.height <= PixelLimit::current() / size.width && size.width > fewPixels / size.height;
}

}  // namespace

PictureStream::PictureStream(const std::filesystem::path& input, const std::filesystem::path& output,
                             const WriteOptions& options, const StripRules& rules)
    : options_(options), rules_(rules), output_(output) {
    const std::optional<PictureFormat> format = formatFor(output, options);
    writer_ = format && writeOptionComplaint(*format, options).empty() ? writerFor(*format) : nullptr;
    if (!writer_) return;
    input_.emplace(input);
    source_ = open(*input_);
    if (source_ && !allowsStrips()) source_.reset();
    if (!source_) return;
    head_.width = static_cast<int32_t>(source_->size().width);
    head_.height = static_cast<int32_t>(source_->size().height);
    try {
        const std::shared_ptr<PictureMetadata> metadata = source_->metadata();
        head_.metadata = metadata;
        const bool isUpright = !metadata || takeOrientation(metadata->exif) == 1;
        if (!isUpright || convertsColours(metadata.get(), options)) source_.reset();
    } catch (const NeedsVips&) {
        source_.reset();
    }
}

bool PictureStream::allowsStrips() const {
    return source_->comesInRows() && isWithinLimits(source_->size(), rules_);
}

bool PictureStream::run(const Change& change) {
    bool writes = true;
    for (;;) {
        const Ending ending = pass(change, writes);
        if (ending == Ending::Complete) return true;
        if (ending == Ending::GivenUp) return false;
        writes = ending == Ending::OtherContent;
        openAgain();
    }
}

void PictureStream::openAgain() {
    source_ = open(*input_);
    if (source_ && source_->size().width == head_.width && source_->size().height == head_.height &&
        source_->comesInRows())
        return;
    throw PictureError("cannot read " + input_->path().string() + ": it changed meanwhile");
}

/// Returns whether that succeeded, or may be reported later.
bool PictureStream::openSink() {
    try {
        writeFailure_ = nullptr;
        sink_.reset();
        if (file_)
            file_->restart();
        else
            file_.emplace(output_, rulesFor(input_->path()));
        sink_ = writer_->open(*file_, head_, options_, content_);
    } catch (const NeedsVips&) {
        return false;
    } catch (...) {
        writeFailure_ = std::current_exception();
    }
    return true;
}

/// Moves all strips; without `writes`, only until it is known how to pack the picture.
PictureStream::Ending PictureStream::pass(const Change& change, bool writes) {
    if (writes && !openSink()) return Ending::GivenUp;
    ContentCount count(static_cast<uint64_t>(head_.width) * static_cast<uint64_t>(head_.height));
    Ending ending = Ending::Complete;
    bool isFirst = true;
    int64_t rows = 0;
    const StripSteps steps{[&](Bitmap& strip) {
                               source_->read(strip.pixels.data(), strip.height);
                               rows += strip.height;
                               if (rows == head_.height) source_->finish();
                           },
                           [&](Bitmap& strip) {
                               ending = Ending::GivenUp;
                               if (!change(strip)) return false;
                               ending = Ending::Complete;
                               if (!writer_->dependsOnContent) return true;
                               count.add({strip.pixels.data(), size_t(strip.width) * size_t(strip.height)});
                               ending = consider(count, writes, std::exchange(isFirst, false));
                               return ending == Ending::Complete;
                           },
                           [&](const Bitmap& strip) {
                               if (writes && sink_) sink_->write(strip.pixels.data(), strip.height);
                           }};
    StripPipeline pipeline(head_.width, head_.height, steps, rules_);
    if (!pipeline.run()) return ending;
    if (!writeFailure_) writeFailure_ = pipeline.writeFailure();
    try {
        if (!writeFailure_) sink_->finish();
    } catch (...) {
        writeFailure_ = std::current_exception();
    }
    return Ending::Complete;
}

/// Whether what has come so far is as assumed. Photographs seldom begin like drawings, which are soon
/// counted.
PictureStream::Ending PictureStream::consider(const ContentCount& count, bool writes, bool isFirst) {
    const PictureContent assumed = content_;
    content_.isOpaque = content_.isOpaque && count.isOpaque();
    if (const std::optional<bool> isDrawing = count.isDrawing()) {
        content_.isDrawing = *isDrawing;
        isDrawingKnown_ = true;
    }
    if (!writes) return isDrawingKnown_ ? Ending::OtherContent : Ending::Complete;
    if (isFirst && !isDrawingKnown_ && count.isLikelyDrawing()) return Ending::UnknownContent;
    return content_ == assumed ? Ending::Complete : Ending::OtherContent;
}

void PictureStream::commit() {
    source_.reset();
    input_.reset();
    if (writeFailure_) std::rethrow_exception(writeFailure_);
    file_->commit(options_.whenWritten);
}

}  // namespace krl::player
