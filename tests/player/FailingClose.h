#pragma once

namespace krl::player {

/// During its lifetime, closing a file fails with an I/O error, as on a file server with delayed writes.
class FailingClose {
public:
    FailingClose();
    ~FailingClose();
    FailingClose(const FailingClose&) = delete;
    FailingClose& operator=(const FailingClose&) = delete;
};

}  // namespace krl::player
