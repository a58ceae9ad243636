#pragma once

#include <cstdint>

namespace krl::player {

/// During its lifetime, grants a number of allocations and fails the next one.
class OneRefusal {
public:
    explicit OneRefusal(int64_t before);
    ~OneRefusal();
    OneRefusal(const OneRefusal&) = delete;
    OneRefusal& operator=(const OneRefusal&) = delete;

    /// Whether an allocation was failed.
    static bool happened();
};

/// During its lifetime, closing a file fails with an I/O error, as on a file server with delayed writes.
class FailingClose {
public:
    FailingClose();
    ~FailingClose();
    FailingClose(const FailingClose&) = delete;
    FailingClose& operator=(const FailingClose&) = delete;
};

}  // namespace krl::player
