#pragma once

#include "krlimage/engine.h"

/// Interlaced video: a frame's rows belong by turns to two fields.
namespace krl {

/// What `interlace` does with the field that is not kept.
enum class InterlaceType : int32_t { Deinterlace = 11, SplitField = 12 };

/// Rewrites every second row from the row beside it, `fieldDominance` (0 or 1) choosing the field
/// that goes: `Deinterlace` with 0 takes each row of it from the row below, everything else from
/// the row above.
Status interlace(ImageEngine& engine, InterlaceType interlaceType, int32_t fieldDominance);

/// Copies every second row of `imageTwo` into `imageOne`, within what lies in both; images that
/// differ in width and in height are refused. Each band counts its rows from its own first, so an
/// odd number of rows in a band moves the next band to the other field. Needs no loaded image.
Status reinterlace(const ImageEngine& engine, uint8_t* imageOne, const ImageInfo& infoOne,
                   const SecondImage& imageTwo);

}  // namespace krl
