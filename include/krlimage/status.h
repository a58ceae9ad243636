#pragma once

#include <cstdint>

namespace krl {

/// Outcome of an engine operation: 0, or why it did not run. A status never reaches a script;
/// the host frame turns every one but `kStatusOk` into the method's own message.
enum [[nodiscard]] Status : int32_t{
    kStatusOk = 0,
    kStatusRefused = 1,             ///< an effect without bands found nothing to work on
    kStatusNoTaskMemory = -1000,    ///< a band's task could not be allocated
    kStatusThreadFailed = -1001,    ///< a band's thread could not be started
    kStatusNoImage = -1003,         ///< no image is loaded
    kStatusNoPixels = -1004,        ///< the loaded image, or a composite's foreground, has no pixels
    kStatusNoMaskImage = -1006,     ///< the input mask has no pixels
    kStatusMaskSize = -1007,        ///< the mask's size differs from the loaded image's
    kStatusForegroundSize = -1008,  ///< the foreground's size differs from the loaded image's
};

}  // namespace krl
