#pragma once

#include <algorithm>
#include <type_traits>

#include "core/Pixel.h"

namespace krl {

/// The pure colour of a backing. `Auto` is only ever an argument: it is resolved before any pixel
/// is keyed.
enum class KeyColour : int32_t { Red = 21, Green = 22, Blue = 23, Auto = 81 };

/// Calls `work(channel)` with the byte number of `colour` as a constant, so that the loops inside
/// are compiled for each.
template <class Work>
decltype(auto) withKeyChannel(KeyColour colour, Work&& work) {
    if (colour == KeyColour::Red) return work(std::integral_constant<size_t, 2>{});
    if (colour == KeyColour::Green) return work(std::integral_constant<size_t, 1>{});
    return work(std::integral_constant<size_t, 0>{});
}

/// The larger of the two channels beside channel `key`.
template <size_t key>
int32_t largerOther(const Pixel& p) {
    return std::max(p[(key + 1) % 3], p[(key + 2) % 3]);
}

/// How far channel `key` stands above the larger of the other two; negative where it does not.
template <size_t key>
int32_t keyDifference(const Pixel& p) {
    return p[key] - largerOther<key>(p);
}

}  // namespace krl
