#pragma once

#include <cstdint>

namespace krl::player {

/// Grants so many allocations and refuses the next one, while it lives.
class OneRefusal {
public:
    explicit OneRefusal(int64_t before);
    ~OneRefusal();
    OneRefusal(const OneRefusal&) = delete;
    OneRefusal& operator=(const OneRefusal&) = delete;

    /// Whether it came to that.
    static bool happened();
};

/// Files that are closed tell an error of input or output while this lives, as a file server may that
/// writes late.
class FailingClose {
public:
    FailingClose();
    ~FailingClose();
    FailingClose(const FailingClose&) = delete;
    FailingClose& operator=(const FailingClose&) = delete;
};

}  // namespace krl::player
