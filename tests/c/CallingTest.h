#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "core/Random.h"
#include "krlimage.h"

namespace krl::test {

struct Free {
    void operator()(krl_engine* engine) const { krl_engine_free(engine); }
    void operator()(krl_value* value) const { krl_value_free(value); }
    void operator()(krl_result* result) const { krl_result_free(result); }
};
using EnginePointer = std::unique_ptr<krl_engine, Free>;
using ValuePointer = std::unique_ptr<krl_value, Free>;
using ResultPointer = std::unique_ptr<krl_result, Free>;

/// A picture of the interface over memory of its own, of random bytes with `padding` of them after each row.
class Canvas {
public:
    Canvas(int32_t width, int32_t height, int32_t order = KRL_BGRA, size_t padding = 0, int32_t seed = 1)
        : bytes_((size_t(width) * 4 + padding) * size_t(height)) {
        Random random(seed);
        for (uint8_t& byte : bytes_) byte = uint8_t(random.next() >> 5);
        picture_ = {
            sizeof picture_, bytes_.data(), width, height, ptrdiff_t(size_t(width) * 4 + padding), order};
    }
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    krl_picture& picture() { return picture_; }
    const std::vector<uint8_t>& bytes() const { return bytes_; }
    uint8_t* row(int32_t y) { return bytes_.data() + picture_.row_bytes * y; }

private:
    std::vector<uint8_t> bytes_;
    krl_picture picture_;
};

/// Every method that the interface calls.
inline std::vector<const krl_method_info*> callableMethods() {
    std::vector<const krl_method_info*> found;
    const krl_catalogue_info* all = krl_catalogue();
    for (size_t f = 0; f < all->family_count; ++f)
        for (size_t m = 0; m < all->families[f]->method_count; ++m) {
            const krl_method_info* method = all->families[f]->methods[m];
            if (!(method->flags & KRL_MANAGES_ENGINE)) found.push_back(method);
        }
    return found;
}

}  // namespace krl::test
