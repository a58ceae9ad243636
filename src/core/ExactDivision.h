#pragma once

#include <bit>
#include <cstdint>

/// Division by a loop-invariant number as a multiplication, each exact over its documented range. Division by
/// 255 is in `ByteArithmetic.h`.
namespace krl {

/// Division of a sum of bytes by the sum of their weights, as one multiplication and a shift.
///
/// Exact for every sum of up to `255 * weight`: the multiplier is less than 1 too large, such a sum
/// below `256 * weight` and 2^shift at least `2^31 * weight`, so up to `kLargestWeight` the error
/// never carries a quotient over.
class ByteQuotient {
public:
    using Sum = uint32_t;
    static constexpr uint64_t kLargestWeight = uint64_t{1} << 23;

    explicit ByteQuotient(uint64_t weight)
        : shift_(31 + static_cast<int>(std::bit_width(weight - 1))),
          multiplier_(static_cast<uint32_t>(((uint64_t{1} << shift_) + weight - 1) / weight)) {}

    uint8_t operator()(uint32_t sum) const {
        return static_cast<uint8_t>((uint64_t{sum} * multiplier_) >> shift_);
    }

private:
    int shift_;
    uint32_t multiplier_;
};

/// The same for weights from 2 whose sums fit 16 bits. One 16-bit multiplier, rounded up or down, is
/// accurate enough for every sum; a rounded-down one uses the sum plus one.
class ShortByteQuotient {
public:
    using Sum = uint16_t;
    static constexpr uint64_t kLargestWeight = 256;

    explicit ShortByteQuotient(uint64_t weight) : shift_(static_cast<int>(std::bit_width(weight - 1)) - 1) {
        const uint64_t power = uint64_t{1} << (16 + shift_), above = (power + weight - 1) / weight;
        addend_ = above * weight - power > (uint64_t{1} << shift_);
        multiplier_ = static_cast<uint16_t>(above - addend_);
    }

    uint8_t operator()(uint16_t sum) const {
        const auto high = static_cast<uint16_t>((uint16_t(sum + addend_) * uint32_t{multiplier_}) >> 16);
        return static_cast<uint8_t>(high >> shift_);
    }

private:
    int shift_;
    uint16_t multiplier_, addend_;
};

/// The same in single precision. Adding one half to the sum keeps the quotient at least `0.5 / weight` away
/// from every integer, and the two roundings err by less than 2^-15 at 256.
class MiddleByteQuotient {
public:
    using Sum = uint32_t;
    static constexpr uint64_t kLargestWeight = uint64_t{1} << 14;

    explicit MiddleByteQuotient(uint64_t weight) : reciprocal_(1.0f / static_cast<float>(weight)) {}
    uint8_t operator()(uint32_t sum) const {
        const float half = static_cast<float>(static_cast<int32_t>(sum)) + 0.5f;
        return static_cast<uint8_t>(static_cast<int32_t>(half * reciprocal_));
    }

private:
    float reciprocal_;
};

/// The same for any weight whose sums fit 64 bits, by division.
class WideByteQuotient {
public:
    using Sum = uint64_t;

    explicit WideByteQuotient(uint64_t weight) : weight_(weight) {}
    uint8_t operator()(uint64_t sum) const { return static_cast<uint8_t>(sum / weight_); }

private:
    uint64_t weight_;
};

/// Mean of up to `kMost` bytes from their sum: a multiplication by 2^32 / `count`, rounded up, whose error
/// does not reach the next quotient.
class ByteMean {
public:
    static constexpr int32_t kMost = 4104;  ///< 255 * kMost^2 is below 2^32

    constexpr explicit ByteMean(int32_t count)
        : multiplier_((uint64_t{1} << 32) / static_cast<uint32_t>(count) + 1) {}
    constexpr uint8_t operator()(uint32_t sum) const { return static_cast<uint8_t>(sum * multiplier_ >> 32); }

private:
    uint64_t multiplier_;
};

/// `n / 1000`, truncated, in a form that the compiler vectorises. `float` holds `n` exactly below 2^24
/// in size and 0.001f is the least bit above a thousandth, so the product is never below an exact
/// quotient, and below 2^18 it never reaches the next integer.
inline int32_t thousandth(int32_t n) { return static_cast<int32_t>(static_cast<float>(n) * 0.001f); }

}  // namespace krl
