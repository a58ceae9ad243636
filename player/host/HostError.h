#pragma once

#include <stdexcept>
#include <string>

namespace krl::player {

/// An error of the embedded host in one line: an unusable plug-in, an exceeded memory limit, a value
/// released while still in use.
class HostError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace krl::player
