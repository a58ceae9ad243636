#pragma once

#include <stdexcept>
#include <string>

namespace krl::player {

/// What the embedded host cannot do: a plug-in that cannot be used, values beyond the memory limit,
/// a value that was given back while still in use. One line.
class HostError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace krl::player
