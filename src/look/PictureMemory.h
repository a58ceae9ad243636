#pragma once

#include "catalogue/Value.h"

/// Pictures as memory: copies, parts, and what two of them share.
namespace krl {

/// Bytes of a pixel.
inline constexpr ptrdiff_t kPixelBytes = sizeof(Pixel);

/// Whether methods take the picture as it is: BGRA without padding.
bool isNative(const Picture& picture);
/// Whether rows follow each other without padding.
bool isTight(const Picture& picture);
/// Whether two pictures of one size have each pixel at the same place.
bool isSamePlace(const Picture& a, const Picture& b);
/// Whether a byte belongs to the rows of both.
bool sharesMemory(const Picture& a, const Picture& b);

/// Copies `count` pixels, with red and blue exchanged if they are to be reordered. `to` is `from`, or they
/// share no memory.
void copySpan(const uint8_t* from, uint8_t* to, size_t count, bool isReordered);

/// Writes the pixels of `from` to `to`, of the same size, in the order of `to`. Both have the same place or
/// share no memory; where nothing changes, nothing is written. What is between the rows of `to` stays.
void copyPixels(const Picture& from, const Picture& to);

/// A picture of its own memory with the same pixels, without padding.
Picture copyOf(const Picture& picture, PixelOrder order);
inline Picture copyOf(const Picture& picture) { return copyOf(picture, picture.order); }

}  // namespace krl
