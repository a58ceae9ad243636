#pragma once

#include <memory>

#include "krlimage.h"

/// Owners of what the C interface hands out.
namespace krl::bindings {

struct Free {
    void operator()(krl_engine* engine) const { krl_engine_free(engine); }
    void operator()(krl_value* value) const { krl_value_free(value); }
    void operator()(krl_result* result) const { krl_result_free(result); }
};
using Engine = std::unique_ptr<krl_engine, Free>;
using Value = std::unique_ptr<krl_value, Free>;
using Result = std::unique_ptr<krl_result, Free>;

/// A picture of rows without padding over memory of the caller's, blue first.
inline krl_picture pictureOver(void* pixels, int32_t width, int32_t height) {
    return {sizeof(krl_picture), pixels, width, height, ptrdiff_t{width} * 4, KRL_BGRA};
}

}  // namespace krl::bindings
