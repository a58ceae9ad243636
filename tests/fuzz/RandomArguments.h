#pragma once

#include "catalogue/Method.h"
#include "catalogue/Value.h"
#include "fuzz/FuzzInput.h"

namespace krl::fuzz {

/// Arguments for a call of `method` on a picture of this size: mostly what it takes, now and then a value
/// beyond every limit or of another kind. Second pictures are drawn too.
std::vector<Value> randomArguments(Bytes& bytes, const Method& method, int32_t width, int32_t height);

/// A picture whose bytes follow from a few of the input's.
Picture randomPicture(Bytes& bytes, int32_t width, int32_t height);

}  // namespace krl::fuzz
