#pragma once

#include <cstdint>
#include <span>

#include "krlimage/engine.h"

/// Interlaced fields, interleaved parts and half-size pictures.
namespace krl {

/// The side of a block for a split into `splitNum` pictures: 2 for 4, 4 for any other number.
constexpr int32_t broadcastFactor(int32_t splitNum) { return splitNum == 4 ? 2 : 4; }

/// Sets `part` to the description of each part of a split by `factor`; rows and columns beyond the last whole
/// block are dropped. `kStatusRefused` for a picture smaller than a block.
Status broadcastPartSize(const ImageEngine& engine, int32_t factor, ImageInfo& part);

/// Deals the loaded picture out to `parts`: of each block of 2 by 2 or 4 by 4 pixels, pixel i, counted row by
/// row, goes to part i. `kStatusRefused` unless there are 4 or 16 parts of the size that `broadcastPartSize`
/// gives.
Status broadcastSplit(const ImageEngine& engine, std::span<const NewImage> parts);

/// Sets `whole` to the description of the picture joined from `parts`. `kStatusRefused` unless there are 4 or
/// 16 parts, all of the first one's size. Needs no loaded picture.
Status broadcastWholeSize(std::span<const SecondImage> parts, ImageInfo& whole);

/// Joins the parts of a split into `whole`, a picture of the size that `broadcastWholeSize` gives;
/// `kStatusRefused` for any other. Needs no loaded picture.
Status broadcastCombine(std::span<const SecondImage> parts, const NewImage& whole);

/// Sets `half` to the description of the loaded picture's half, rounded down. `kStatusRefused` for a picture
/// of one row or one column.
Status halfSizeInfo(const ImageEngine& engine, ImageInfo& half);

/// Fills `half`, of the size that `halfSizeInfo` gives, with the mean of each block of 2 by 2 pixels, alpha
/// included; `kStatusRefused` for any other size. The result depends on the number of bands: each band starts
/// a new block at the first of its own rows, and fills no more than its own rows of the half.
Status halfSize(const ImageEngine& engine, const NewImage& half);

/// What `interlace` makes of the field that it fills.
enum class InterlaceType : int32_t { Deinterlace = 11, SplitField = 12 };

/// Rewrites every second row with the row beside it. `fieldDominance`, 0 or 1, chooses the field that is
/// rewritten: `Deinterlace` with 0 takes each of its rows from the row below, everything else from the row
/// above.
Status interlace(ImageEngine& engine, InterlaceType interlaceType, int32_t fieldDominance);

/// Copies every second row of `imageTwo` into `imageOne`, as far as both have it. `kStatusRefused` for
/// pictures that differ both in width and in height, `kStatusNoPixels` where one has none. The result depends
/// on the number of bands: each band counts rows from its own first, so an odd number of rows in a band moves
/// the next band to the other field. Needs no loaded picture.
Status reinterlace(const ImageEngine& engine, uint8_t* imageOne, const ImageInfo& infoOne,
                   const SecondImage& imageTwo);

}  // namespace krl
