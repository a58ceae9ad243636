#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

/// What a fuzz target makes its values of: the bytes that the fuzzer mutates, one after the other, and zeros
/// when they are used up.
namespace krl::fuzz {

class Bytes {
public:
    Bytes(const uint8_t* data, size_t size) : next_(data), end_(data + size) {}

    bool empty() const { return next_ == end_; }
    uint8_t byte() { return empty() ? uint8_t{0} : *next_++; }
    /// A number below `limit`, which is at most 65536.
    uint32_t below(uint32_t limit) {
        const uint32_t low = byte();
        return (limit > 256 ? low | uint32_t{byte()} << 8 : low) % limit;
    }
    bool oneIn(uint32_t times) { return below(times) == times - 1; }
    template <class Number>
    Number raw() {
        Number number{};
        const size_t count = std::min(sizeof number, static_cast<size_t>(end_ - next_));
        std::memcpy(&number, next_, count);
        next_ += count;
        return number;
    }
    std::string text(size_t count) {
        std::string made;
        while (made.size() < count && !empty()) made += static_cast<char>(byte());
        return made;
    }
    std::string rest() { return text(static_cast<size_t>(end_ - next_)); }

private:
    const uint8_t* next_;
    const uint8_t* end_;
};

/// Ends the program with a line that says what is wrong.
[[noreturn]] inline void report(const std::string& what) {
    std::fprintf(stderr, "fuzz: %s\n", what.c_str());
    std::abort();
}

}  // namespace krl::fuzz
