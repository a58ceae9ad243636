#pragma once

#include <deque>
#include <unordered_map>
#include <vector>

#include "player/host/Value.h"

namespace krl::player {

/// The global variables, numbered as they are met.
class Globals {
public:
    int32_t number(SymbolId name) {
        const auto [found, added] = numbers_.try_emplace(name, static_cast<int32_t>(values_.size()));
        if (added) values_.emplace_back();
        return found->second;
    }
    Value& operator[](int32_t number) { return values_[static_cast<size_t>(number)]; }
    Value& named(SymbolId name) { return (*this)[number(name)]; }
    /// By their numbers.
    std::vector<SymbolId> names() const {
        std::vector<SymbolId> all(values_.size());
        for (const auto& [name, number] : numbers_) all[static_cast<size_t>(number)] = name;
        return all;
    }
    /// Their names stay numbered, since compiled handlers refer to the numbers.
    void clear() {
        for (Value& value : values_) value = Value();
    }

private:
    std::unordered_map<SymbolId, int32_t> numbers_;
    std::deque<Value> values_;
};

}  // namespace krl::player
