#pragma once

#include <array>
#include <span>
#include <vector>

#include "player/host/Value.h"

namespace krl::player {

/// A fixed number of values: the arguments of a call or the locals of a handler. A few fit without an
/// allocation.
class ValueArray {
public:
    explicit ValueArray(size_t count, const Value& value = Value()) : count_(count) {
        if (count > few_.size())
            many_.resize(count, value);
        else if (value.isUnassigned())
            for (size_t i = 0; i < count; ++i) few_[i] = value;
    }
    ValueArray(const ValueArray&) = delete;
    ValueArray& operator=(const ValueArray&) = delete;

    size_t size() const { return count_; }
    Value& operator[](size_t index) { return data()[index]; }
    std::span<const Value> all() { return {data(), count_}; }

private:
    Value* data() { return many_.empty() ? few_.data() : many_.data(); }

    size_t count_;
    std::array<Value, 6> few_;
    std::vector<Value> many_;
};

}  // namespace krl::player
