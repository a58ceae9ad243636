#pragma once

#include <cstdint>

namespace krl {

/// The sequential generator: a linear congruential step of 214013 and 2531011 modulo 2^32, each
/// draw the 15 bits above bit 16.
class Random {
public:
    explicit Random(int32_t seed = 1) : state_(static_cast<uint32_t>(seed)) {}

    /// Next draw, 0..32767.
    int32_t next() {
        state_ = state_ * 214013u + 2531011u;
        return static_cast<int32_t>(state_ >> 16 & 0x7FFFu);
    }

    /// Passes over `count` draws at once, by repeated squaring of the step.
    void skip(uint64_t count) {
        uint32_t factor = 214013u, term = 2531011u;
        for (; count != 0; count >>= 1) {
            if (count & 1) state_ = state_ * factor + term;
            term *= factor + 1;
            factor *= factor;
        }
    }

private:
    uint32_t state_;
};

/// Remainders of draws by a divisor of 1 and up, without a division. For a dividend below 2^15 the
/// rounded-up reciprocal is exact: below 2^15 its error, times the dividend, stays under 2^32, and
/// from there on the quotient is 0.
class DrawRemainder {
public:
    explicit DrawRemainder(int32_t divisor)
        : reciprocal_((uint64_t{1} << 32) / static_cast<uint32_t>(divisor) + 1), divisor_(divisor) {}

    int32_t operator()(int32_t draw) const {
        return draw - static_cast<int32_t>(static_cast<uint64_t>(draw) * reciprocal_ >> 32) * divisor_;
    }

private:
    uint64_t reciprocal_;
    int32_t divisor_;
};

}  // namespace krl
