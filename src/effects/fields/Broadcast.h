#pragma once

#include <span>

#include "krlimage/engine.h"

/// An image dealt out into interleaved parts and joined again. The image is seen as blocks of
/// factor by factor pixels; pixel i of each block, counted row by row, belongs to part i.
namespace krl {

/// The side of a block for a split into `splitNum` images: 2 for 4, otherwise 4.
constexpr int32_t broadcastFactor(int32_t splitNum) { return splitNum == 4 ? 2 : 4; }

/// The description of each part of a split by `factor`; rows and columns beyond the last whole
/// block are dropped. `kStatusRefused` where not one block is whole.
Status broadcastPartSize(const ImageEngine& engine, int32_t factor, ImageInfo& part);

/// Deals the loaded image out to `parts`, which are 4 or 16 images of the size that
/// `broadcastPartSize` gives.
Status broadcastSplit(const ImageEngine& engine, std::span<const NewImage> parts);

/// The description of the image joined from `parts`: 4 or 16 images, all of the first one's size.
/// `kStatusRefused` for any others. Needs no loaded image.
Status broadcastWholeSize(std::span<const SecondImage> parts, ImageInfo& whole);

/// Joins `parts` into `whole`, an image of the size that `broadcastWholeSize` gives.
Status broadcastCombine(std::span<const SecondImage> parts, const NewImage& whole);

}  // namespace krl
