#pragma once

#include <bit>
#include <cstdint>

/// Division by a loop-invariant number as a multiplication, each exact over its documented range. Division by
/// 255 is in `ByteArithmetic.h`.
namespace krl {

/// Division of a sum of bytes by the sum of their weights, as one multiplication and a shift. A running sum
/// is kept in the form that `kept` gives it, and changes by what `scaled` makes of a difference.
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

    static Sum kept(Sum sum) { return sum; }
    static Sum scaled(Sum difference) { return difference; }
    uint8_t operator()(uint32_t sum) const {
        return static_cast<uint8_t>((uint64_t{sum} * multiplier_) >> shift_);
    }

private:
    int shift_;
    uint32_t multiplier_;
};

/// The upper 16 bits of a product, as a sum of products of bytes: for machines that cannot multiply words to
/// words' upper halves, whose vectors would be widened and narrowed again.
constexpr uint16_t upperHalfByBytes(uint16_t a, uint16_t b) {
    const auto word = [](int number) { return static_cast<uint16_t>(number); };
    const uint16_t aHigh = word(a >> 8), aLow = word(a & 255), bHigh = word(b >> 8), bLow = word(b & 255);
    const uint16_t cross = word(aHigh * bLow + (word(aLow * bLow) >> 8));
    const uint16_t carry = word(aLow * bHigh + (cross & 255));
    return word(aHigh * bHigh + (cross >> 8) + (carry >> 8));
}

/// The upper 16 bits of a product.
constexpr uint16_t upperHalf(uint16_t a, uint16_t b) {
#if defined(__wasm_simd128__)
    return upperHalfByBytes(a, b);
#else
    return static_cast<uint16_t>((a * uint32_t{b}) >> 16);
#endif
}

/// The same for weights from 2 whose sums fit 16 bits. One 16-bit multiplier, rounded up or down, is
/// accurate enough for every sum; a rounded-down one uses the sum plus one. Sums are kept scaled up to
/// weights above 128, so that the last shift is a constant and compilers stay in 16 bits.
class ShortByteQuotient {
public:
    using Sum = uint16_t;
    static constexpr uint64_t kLargestWeight = 256;

    explicit ShortByteQuotient(uint64_t weight) {
        const int bits = static_cast<int>(std::bit_width(weight - 1));
        const uint64_t power = uint64_t{1} << (15 + bits), above = (power + weight - 1) / weight;
        addend_ = above * weight - power > (uint64_t{1} << (bits - 1));
        multiplier_ = static_cast<uint16_t>(above - addend_);
        scale_ = static_cast<uint16_t>(1 << (kScaledBits - bits));
    }

    Sum kept(Sum sum) const { return scaled(static_cast<Sum>(sum + addend_)); }
    Sum scaled(Sum difference) const { return static_cast<Sum>(difference * scale_); }
    uint8_t operator()(Sum keptSum) const {
        return static_cast<uint8_t>(upperHalf(keptSum, multiplier_) >> (kScaledBits - 1));
    }

private:
    static constexpr int kScaledBits = 8;

    uint16_t multiplier_, addend_, scale_;
};

/// The same in single precision. Adding one half to the sum keeps the quotient at least `0.5 / weight` away
/// from every integer, and the two roundings err by less than 2^-15 at 256.
class MiddleByteQuotient {
public:
    using Sum = uint32_t;
    static constexpr uint64_t kLargestWeight = uint64_t{1} << 14;

    explicit MiddleByteQuotient(uint64_t weight) : reciprocal_(1.0f / static_cast<float>(weight)) {}
    static Sum kept(Sum sum) { return sum; }
    static Sum scaled(Sum difference) { return difference; }
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
    static Sum kept(Sum sum) { return sum; }
    static Sum scaled(Sum difference) { return difference; }
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
