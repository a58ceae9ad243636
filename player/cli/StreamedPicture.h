#pragma once

#include "player/cli/ApplyPicture.h"

namespace krl::player {

/// Reads, rewrites and writes a picture of the batch strip by strip, if its calls, files and options allow
/// it, and fills in the report. Otherwise returns false: then nothing is written, and the picture has to be
/// whole. Throws `PictureError`, and `ScriptError` for arguments that move.
bool streamPicture(const ApplyRunner& run, const ApplyWork& work, size_t index, PictureReport& report);

}  // namespace krl::player
