#pragma once

#include <atomic>
#include <cstdint>
#include <exception>
#include <memory>
#include <span>

#include "krlimage/pixel.h"
#include "krlimage/status.h"

namespace krl {

struct LookupTables;
class ScratchAllowance;
class SpanTaker;

/// The host's description of an image.
struct ImageInfo {
    int32_t width = 0;                        ///< pixels per row
    int32_t height = 0;                       ///< number of rows
    int32_t rowBytes = 0;                     ///< bytes from one row to the next
    int32_t info3 = 0, info4 = 0, info5 = 0;  ///< the host's own; stored and handed back
};
static_assert(sizeof(ImageInfo) == 24);

/// The loaded pixels as effects see them. `height` stands before `width` here.
struct ImageBuffer {
    uint8_t* pixels = nullptr;
    int32_t height = 0;
    int32_t width = 0;
    int32_t rowBytes = 0;
    uint8_t* end = nullptr;  ///< first byte past the image: `pixels + rowBytes * height`

    /// First pixel of row `y`.
    Pixel* row(int32_t y) const { return reinterpret_cast<Pixel*>(pixels + ptrdiff_t(y) * rowBytes); }
    /// Bytes of the whole block, padding included.
    size_t bytes() const { return static_cast<size_t>(end - pixels); }
};

/// A second image that a method works with: read only, of the host.
struct SecondImage {
    const uint8_t* pixels = nullptr;
    ImageInfo info;
    bool isRedFirst = false;  ///< RGBA, which only methods take that treat every pixel alone

    /// The whole block in address order, padding included.
    std::span<const Pixel> block() const {
        const int64_t bytes = int64_t(info.rowBytes) * info.height;
        return {reinterpret_cast<const Pixel*>(pixels), bytes < 0 ? 0 : size_t(bytes) / sizeof(Pixel)};
    }
    /// First pixel of row `y`.
    const Pixel* row(int32_t y) const {
        return reinterpret_cast<const Pixel*>(pixels + ptrdiff_t(y) * info.rowBytes);
    }
};

/// An image that the host has just made for a method to fill.
struct NewImage {
    uint8_t* pixels = nullptr;
    ImageInfo info;

    /// First pixel of row `y`.
    Pixel* row(int32_t y) const { return reinterpret_cast<Pixel*>(pixels + ptrdiff_t(y) * info.rowBytes); }
};

/// Ends an effect on an engine that is cancelled. The picture may be partly rewritten then.
class Cancelled : public std::exception {
public:
    const char* what() const noexcept override { return "cancelled"; }
};

/// The object behind every script method: which pixels are loaded, the shared tables, and how many
/// bands run at once. Effects are free functions on it, at home in their subsystems; it knows
/// nothing of a host and works on any block of memory.
class ImageEngine {
public:
    ImageEngine();
    ~ImageEngine();
    ImageEngine(const ImageEngine&) = delete;
    ImageEngine& operator=(const ImageEngine&) = delete;

    /// Takes the table block. Throws `std::bad_alloc`.
    void allocateTables();
    /// Fills the table block; nothing writes it afterwards.
    void buildTables();
    /// Gives the table block back, if there is one.
    void freeTables();
    /// The table block, or null before `allocateTables`.
    const LookupTables* getTables() const { return lookupTables_.get(); }
    /// The table block, which must exist.
    const LookupTables& tables() const { return *lookupTables_; }

    /// One band when `singleThreaded`, else one for each processor; the wide paths stay off.
    void configureExecution(bool singleThreaded);
    /// Mode 2 turns the wide (16-byte) paths on where the processor has SSE2; any other mode turns
    /// them off. No method passes 2: the plain path is what defines an effect.
    void selectInstructionSet(int32_t mode);
    int32_t getThreadCount() const { return threadCount_; }
    /// Bands per effect, at least 1; for programs that embed the engine.
    void setThreadCount(int32_t count) { threadCount_ = count < 1 ? 1 : count; }
    bool useWidePath() const { return useWidePath_; }

    /// What happens if the thread of a band cannot be started. Where threads are required the effect fails
    /// with its status, or leaves out the part that has none to report. Otherwise, as at the start, the
    /// calling thread does that band's work as well: slower, with the same bytes.
    void requireThreads(bool required) { requiresThreads_ = required; }
    bool requiresThreads() const { return requiresThreads_; }

    /// Above 2^24 pixels the size of a band, a single-precision number, can come out short, so that the last
    /// pixels belong to none. Where short bands are kept these stay as they are, which is what scripts get;
    /// otherwise, as at the start, the last band has them, and no result depends on the number of bands.
    void keepShortBands(bool keep) { keepsShortBands_ = keep; }
    bool keepsShortBands() const { return keepsShortBands_; }

    /// Ends the effect that is running, and every one that begins before `resume`, with `Cancelled`. Can be
    /// called from any thread. Effects test for it once a row or once a small part of the picture.
    void cancel() noexcept { cancelled_.store(true, std::memory_order_relaxed); }
    void resume() noexcept { cancelled_.store(false, std::memory_order_relaxed); }
    void throwIfCancelled() const {
        if (cancelled_.load(std::memory_order_relaxed)) throw Cancelled();
    }

    /// Hands what methods do to every pixel alone to `taker`, which runs it; null, as at the start, for none.
    void handSpansTo(SpanTaker* taker) { spanTaker_ = taker; }
    SpanTaker* spanTaker() const { return spanTaker_; }

    /// Whether working memory of the size of the loaded picture, at most, stays at hand from one
    /// effect to the next: faster, and not given back before `unload`. At the start it does where
    /// addresses have 64 bits.
    void keepScratch(bool keep);

    /// Makes `pixels`, described by `info`, the image that effects rewrite in place. The memory
    /// stays the caller's and must outlive its use.
    void load(uint8_t* pixels, const ImageInfo& info);
    /// Forgets the image; the last address and description stay readable.
    void unload();
    /// Forgets image and tables both.
    void clear();

    uint8_t* getPixels() const { return pixels_; }
    const ImageInfo& getImageInfo() const { return info_; }
    /// The loaded pixels, or null.
    const ImageBuffer* buffer() const { return buffer_.get(); }

    /// The state tests with which every effect begins: `kStatusNoImage`, `kStatusNoPixels` or ok.
    Status imageStatus() const;
    /// Whether `other` has the loaded image's width and height; needs a loaded image.
    bool hasSizeOf(const SecondImage& other) const;

private:
    void allowScratch();

    uint8_t* pixels_ = nullptr;
    ImageInfo info_;
    std::unique_ptr<ImageBuffer> buffer_;
    std::unique_ptr<LookupTables> lookupTables_;
    int32_t threadCount_ = 1;
    bool useWidePath_ = false;
    bool keepsScratch_ = sizeof(void*) > 4;
    bool requiresThreads_ = false;
    bool keepsShortBands_ = false;
    std::atomic<bool> cancelled_ = false;
    SpanTaker* spanTaker_ = nullptr;
    std::unique_ptr<ScratchAllowance> scratch_;
};

}  // namespace krl
