#pragma once

#include <cstdint>

/// The `operator new` of a program that links this: counted, so that any one allocation can be made to fail.
namespace krl::test {

/// Blocks that were allocated and not freed, on all threads.
int64_t livingBlocks();
/// What they hold together, by the allocator's own account.
int64_t livingBytes();

/// The most bytes that were held at a time during this object's life, beyond those at its beginning.
class PeakOfBytes {
public:
    PeakOfBytes();
    int64_t bytes() const;

private:
    const int64_t before_;
};

/// While this object lives, allocation `number` (from 1) fails, or all from there on.
class AllocationFault {
public:
    enum class Extent { One, AllThatFollow };

    AllocationFault(int64_t number, Extent extent);
    ~AllocationFault() { end(); }
    AllocationFault(const AllocationFault&) = delete;
    AllocationFault& operator=(const AllocationFault&) = delete;

    /// Ends it early; whether an allocation has failed.
    bool end();
};

}  // namespace krl::test
