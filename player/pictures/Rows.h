#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>

#include "player/pictures/AtomicFile.h"
#include "player/pictures/InputFile.h"
#include "player/pictures/PictureFiles.h"

/// Picture files row by row, from top to bottom.
namespace krl::player {

/// Reads the rows of a picture.
class RowSource {
public:
    virtual ~RowSource() = default;

    virtual PictureSize size() const = 0;
    /// Whether `read` takes any number of rows at a time, and `metadata` is complete before the first one.
    /// Otherwise all rows have to be read at once.
    virtual bool comesInRows() const { return true; }
    /// Reads the next rows. Throws `PictureError`.
    virtual void read(Pixel* pixels, int32_t rows) = 0;
    /// Reads what follows the last row. Throws `PictureError`.
    virtual void finish() {}
    /// What the file holds besides pixels, after `finish`; null for nothing. Throws `PictureError`.
    virtual std::shared_ptr<PictureMetadata> metadata() { return nullptr; }
};

/// A picture without its pixels.
struct PictureHead {
    int32_t width = 0, height = 0;
    std::shared_ptr<const PictureMetadata> metadata;  ///< may be null
};

/// What the packing of a picture depends on.
struct PictureContent {
    bool isOpaque = true;
    bool isDrawing = false;  ///< most pixels are like their left neighbour, as in pictures of screens

    bool operator==(const PictureContent&) const = default;
};

/// Finds out the content of a picture piece by piece.
class ContentCount {
public:
    explicit ContentCount(uint64_t pixels) : pixels_(pixels) {}

    void add(std::span<const Pixel> piece);

    bool isOpaque() const { return isOpaque_; }
    /// Nothing as long as the pixels to come may decide it.
    std::optional<bool> isDrawing() const;
    /// Whether more pixels like their left neighbours than others have come so far.
    bool isLikelyDrawing() const { return alike_ * 2 > counted_; }

private:
    const uint64_t pixels_;
    uint64_t counted_ = 0, alike_ = 0;
    Pixel last_{};
    bool isOpaque_ = true;
};

/// Writes the rows of a picture.
class RowSink {
public:
    virtual ~RowSink() = default;
    /// Writes the next rows. Throws `PictureError`.
    virtual void write(const Pixel* pixels, int32_t rows) = 0;
    /// Writes what follows the last row. Throws `PictureError`.
    virtual void finish() {}
};

}  // namespace krl::player
