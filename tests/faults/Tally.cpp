#include "faults/Tally.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>

namespace krl::test {

Tally* Tally::first_ = nullptr;

Tally::Tally(const char* what) : what_(what) {
    Tally** end = &first_;
    while (*end) end = &(*end)->next_;
    *end = this;
}

void Tally::count(const Seen& seen, const Seen& faultless) {
    ++calls_;
    if (seen == faultless) {
        ++unaffected_;
        return;
    }
    if (!seen.message.empty() || seen.status != 0) ++reported_;
    if (seen.untouched)
        ++untouched_;
    else if (seen.picture != faultless.picture)
        ++partly_;
}

namespace {

using Counts = std::array<int64_t, 5>;

void printRow(const char* what, const Counts& counts) {
    std::printf("| %-47s |", what);
    for (const int64_t count : counts) std::printf(" %10lld |", static_cast<long long>(count));
    std::printf("\n");
}

}  // namespace

/// As a table for docs/reliability.md.
void printTallies() {
    std::printf("\n| %-47s | %10s | %10s | %10s | %10s | %10s |\n|---|---|---|---|---|---|\n", "fault",
                "calls", "unaffected", "reported", "untouched", "in part");
    Counts sums{};
    for (const Tally* row = Tally::first_; row; row = row->next_) {
        const Counts counts = {row->calls_, row->unaffected_, row->reported_, row->untouched_, row->partly_};
        printRow(row->what_, counts);
        for (size_t i = 0; i < sums.size(); ++i) sums[i] += counts[i];
    }
    printRow("all", sums);
}

namespace {

class PrintAtTheEnd : public testing::Environment {
public:
    void TearDown() override { printTallies(); }
};

[[maybe_unused]] const testing::Environment* printing = testing::AddGlobalTestEnvironment(new PrintAtTheEnd);

}  // namespace

}  // namespace krl::test
