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

/// A picture of the interface over memory of its own, of random bytes, or zeros for `seed` 0, with `padding`
/// of them after each row.
class Canvas {
public:
    Canvas(int32_t width, int32_t height, int32_t order = KRL_BGRA, size_t padding = 0, int32_t seed = 1)
        : bytes_((size_t(width) * 4 + padding) * size_t(height)) {
        Random random(seed);
        for (uint8_t& byte : bytes_)
            if (seed != 0) byte = uint8_t(random.next() >> 5);
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

/// A value for an argument: for variant 0 the example's for a picture of this size, for others the ends of
/// its range or another choice.
inline krl_value* variantOf(const krl_method_info& method, size_t index, int variant, int32_t width,
                            int32_t height) {
    const krl_argument_info& argument = *method.arguments[index];
    const double numbers[] = {argument.from, argument.to};
    const bool isNumber = argument.kind == KRL_KIND_INTEGER || argument.kind == KRL_KIND_REAL;
    if (isNumber && variant > 0 && variant < 3) {
        const double number = numbers[variant - 1];
        return argument.kind == KRL_KIND_REAL ? krl_real(number) : krl_integer(static_cast<int32_t>(number));
    }
    if (argument.kind == KRL_KIND_SYMBOL && variant > 0)
        return krl_symbol(argument.choices[size_t(variant) % argument.choice_count]);
    return krl_example(method.name, index, width, height);
}

}  // namespace krl::test
