#pragma once

/// What Emscripten's standard library lacks of C++20, as far as the tree uses it. CMake includes this first
/// in every file that uses any of it.

#include <algorithm>
#include <bit>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <iterator>
#include <string>
#include <system_error>

namespace std {

#if !defined(__cpp_lib_bit_cast)
template <class To, class From>
constexpr To bit_cast(const From& from) noexcept {
    return __builtin_bit_cast(To, from);
}
#endif

#if !defined(__cpp_lib_to_chars)

/// The longest text at the beginning of `text` that is a number.
inline size_t lengthOfNumber(const string& text) {
    const auto digits = [&](size_t at) {
        const size_t end = text.find_first_not_of("0123456789", at);
        return (end == string::npos ? text.size() : end) - at;
    };
    const size_t sign = text.starts_with('-') ? 1 : 0;
    for (const char* word : {"infinity", "inf", "nan"})
        if (strncasecmp(text.c_str() + sign, word, strlen(word)) == 0) return sign + strlen(word);
    const size_t whole = digits(sign);
    size_t end = sign + whole;
    size_t fraction = 0;
    if (text.substr(end, 1) == ".") {
        fraction = digits(end + 1);
        if (whole + fraction > 0) end += 1 + fraction;
    }
    if (whole + fraction == 0) return 0;
    const size_t mark = end;
    if (mark < text.size() && (text[mark] == 'e' || text[mark] == 'E')) {
        const bool hasSign = text.substr(mark + 1, 1).find_first_of("+-") == 0;
        if (const size_t exponent = digits(mark + 1 + hasSign)) end = mark + 1 + hasSign + exponent;
    }
    return end;
}

inline from_chars_result from_chars(const char* first, const char* last, double& value) {
    string text(first, last);
    text.resize(lengthOfNumber(text));
    if (text.empty()) return {first, errc::invalid_argument};
    errno = 0;
    const double read = strtod(text.c_str(), nullptr);
    const char* const end = first + text.size();
    if (errno == ERANGE) return {end, errc::result_out_of_range};
    value = read;
    return {end, errc()};
}

/// The fewest digits that give the value back, without an exponent; every digit of whole numbers beyond 2^53.
inline to_chars_result to_chars(char* first, char* last, double value, chars_format) {
    constexpr double kEveryWholeNumber = 9007199254740992.0;
    string text;
    if (!isfinite(value) || fabs(value) >= kEveryWholeNumber) {
        text.resize(400);
        text.resize(static_cast<size_t>(snprintf(text.data(), text.size(), "%.0f", value)));
    } else {
        for (int decimals = 0; decimals < 1100; ++decimals) {
            text.resize(1200);
            text.resize(static_cast<size_t>(snprintf(text.data(), text.size(), "%.*f", decimals, value)));
            if (strtod(text.c_str(), nullptr) == value) break;
        }
    }
    if (text.size() > static_cast<size_t>(last - first)) return {last, errc::value_too_large};
    return {copy(text.begin(), text.end(), first), errc()};
}
#endif

#if !defined(__cpp_lib_ranges)
namespace ranges {

template <class Value>
struct min_max_result {
    Value min, max;
};

/// The order that `{}` stands for.
struct Ascending {};

template <class Projection>
auto byProjection(Projection projection) {
    return [=](const auto& a, const auto& b) { return invoke(projection, a) < invoke(projection, b); };
}

template <class Range>
void sort(Range&& range) {
    std::sort(range.begin(), range.end());
}
template <class Range, class Projection>
void stable_sort(Range&& range, Ascending, Projection projection) {
    std::stable_sort(range.begin(), range.end(), byProjection(projection));
}
template <class Range, class Projection>
auto minmax(Range&& range, Ascending, Projection projection) {
    const auto [low, high] = std::minmax_element(range.begin(), range.end(), byProjection(projection));
    return min_max_result<typename iterator_traits<decltype(range.begin())>::value_type>{*low, *high};
}
template <class Range, class Value>
void fill(Range&& range, const Value& value) {
    std::fill(range.begin(), range.end(), value);
}
template <class Range, class Value>
auto find(Range&& range, const Value& value) {
    return std::find(std::begin(range), std::end(range), value);
}
template <class Range, class Other>
bool equal(const Range& range, const Other& other) {
    return std::equal(std::begin(range), std::end(range), std::begin(other), std::end(other));
}
template <class Range, class Test>
bool any_of(Range&& range, Test test) {
    return std::any_of(std::begin(range), std::end(range), test);
}
template <class Range, class Test>
bool all_of(Range&& range, Test test) {
    return std::all_of(std::begin(range), std::end(range), test);
}

}  // namespace ranges
#endif

}  // namespace std
