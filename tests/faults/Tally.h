#pragma once

#include <cstdint>

#include "faults/Stand.h"

namespace krl::test {

/// How the calls with one kind of fault ended; the table of all is printed when the program ends.
class Tally {
public:
    /// `what` is the row's heading, at most once in the program.
    explicit Tally(const char* what);

    void count(const Seen& seen, const Seen& faultless);

    int64_t calls() const { return calls_; }

private:
    friend void printTallies();

    const char* what_;
    int64_t calls_ = 0, reported_ = 0, untouched_ = 0, partly_ = 0, unaffected_ = 0;
    Tally* next_ = nullptr;
    static Tally* first_;
};

void printTallies();

}  // namespace krl::test
