#pragma once

#include <chrono>
#include <ctime>

#include "krlimage/engine.h"
#include "player/pictures/Picture.h"

/// Input of the benchmarks, and the reference that they are compared with.
namespace krl::bench {

/// The sample landscape in any size, with the fine grain of a photograph: flat or random pictures would
/// favour some effects and penalise others.
player::Bitmap landscape(int32_t width, int32_t height);

/// A picture's description as provided by a host.
ImageInfo infoOf(const player::Bitmap& picture);

/// Reads and writes every byte of the engine's picture once, a lower bound for any effect.
Status readAndWrite(const ImageEngine& engine);

/// Throws unless an effect has run: what fails takes no time.
void mustRun(Status status);

/// Milliseconds that `work` takes on `threads` threads. On one thread, processor time, which
/// excludes other load on the machine; on several, wall-clock time.
template <class Work>
double milliseconds(int32_t threads, Work&& work) {
    const auto start = std::chrono::steady_clock::now();
    const std::clock_t startProcessor = std::clock();
    work();
    if (threads == 1) return double(std::clock() - startProcessor) * 1000.0 / CLOCKS_PER_SEC;
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

}  // namespace krl::bench
