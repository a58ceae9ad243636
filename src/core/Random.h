#pragma once

#include <bit>
#include <cstddef>
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

    /// Skips `count` draws, by repeated squaring of the step.
    void skip(uint64_t count) {
        uint32_t factor = 214013u, term = 2531011u;
        for (; count != 0; count >>= 1) {
            if (count & 1) state_ = state_ * factor + term;
            term *= factor + 1;
            factor *= factor;
        }
    }

private:
    friend class RandomRun;

    uint32_t state_;
};

/// Draws many numbers of a generator at a time, with one generator per lane that skips the draws of the
/// others.
class RandomRun {
public:
    static constexpr size_t kLanes = 16;

    explicit RandomRun(Random random) {
        for (uint32_t& state : states_) {
            random.next();
            state = random.state_;
            term_ = term_ * 214013u + 2531011u;
            factor_ *= 214013u;
        }
    }

    /// Writes the next draws, one per lane.
    void next(int32_t* draws) {
        for (size_t i = 0; i < kLanes; ++i) {
            draws[i] = static_cast<int32_t>(states_[i] >> 16 & 0x7FFFu);
            states_[i] = states_[i] * factor_ + term_;
        }
    }

private:
    uint32_t states_[kLanes];
    uint32_t factor_ = 1, term_ = 0;  ///< of one step per lane
};

/// Remainders of draws by a divisor of at least 1, without a division: a reciprocal with as many bits as a
/// draw and the divisor together, rounded up, is exact for every draw and fits 32 bits. For divisors above
/// every draw the quotient is 0.
class DrawRemainder {
public:
    explicit DrawRemainder(int32_t divisor) : divisor_(divisor) {
        if (divisor > kDraws) return;
        shift_ = 15 + static_cast<int>(std::bit_width(static_cast<uint32_t>(divisor) - 1));
        reciprocal_ =
            static_cast<uint32_t>(((uint64_t{1} << shift_) - 1) / static_cast<uint32_t>(divisor) + 1);
    }

    int32_t operator()(int32_t draw) const {
        return draw - static_cast<int32_t>(static_cast<uint32_t>(draw) * reciprocal_ >> shift_) * divisor_;
    }

private:
    static constexpr int32_t kDraws = 1 << 15;

    uint32_t reciprocal_ = 0;
    int shift_ = 0;
    int32_t divisor_;
};

}  // namespace krl
