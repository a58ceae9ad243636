#pragma once

#include <functional>
#include <string>

#include "player/cli/Commands.h"
#include "player/pictures/Picture.h"

namespace krl::player {

/// What raw frames are: pixels without a header, row by row.
struct RawFormat {
    int32_t width = 0, height = 0;
    bool isRgba = false;  ///< red first, otherwise blue first
};

/// Reads `WIDTHxHEIGHT`, `WIDTHxHEIGHT:bgra` or `WIDTHxHEIGHT:rgba`. Throws `UsageError`.
RawFormat rawFormatOf(const std::string& text);

/// Changes a frame, or throws; frames are counted from 0. Used from one thread only.
using FrameWorker = std::function<void(Bitmap& frame, size_t number)>;

/// Reads frames from standard input until its end and writes what workers make of them to standard output, in
/// order. `jobs` frames are worked on at once, 0 for one per processor. A failure ends it after the frames
/// before it and is thrown as `CommandError`. Standard output gets whole frames only: a signal that ends the
/// program takes effect after the frames that were read.
void pipeFrames(const RawFormat& format, unsigned jobs, const std::function<FrameWorker()>& makeWorker);

}  // namespace krl::player
