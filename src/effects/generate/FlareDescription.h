#pragma once

#include "catalogue/Call.h"
#include "krlimage/generate.h"

namespace krl {

/// Reads element `index`, from 1, of a flare's description: a property list of settings under the symbol of
/// its kind.
Outcome readFlareElement(const Call& call, const ValueHandle& description, int32_t index,
                         FlareElement& element);

}  // namespace krl
