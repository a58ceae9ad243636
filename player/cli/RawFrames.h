#pragma once

#include <filesystem>
#include <functional>
#include <vector>

#include "player/cli/ApplyOptions.h"
#include "player/cli/Commands.h"
#include "player/cli/RawPipe.h"

namespace krl::player {

/// `apply --raw`: runs a worker of each thread on the frames of a pipe.
int applyToFrames(const ApplyOptions& options, const std::vector<std::filesystem::path>& inputs,
                  const std::function<FrameWorker()>& makeWorker);

/// The settings of each worker. Where as many frames are in work as there are processors, each takes one
/// thread; the bytes are the same.
SessionOptions sessionForFrames(const ApplyOptions& options, const SessionOptions& settings);

}  // namespace krl::player
