#include "faults/Tally.h"

#include <gtest/gtest.h>

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

void printTallies() {
    std::printf("%-44s %8s %10s %10s %10s %12s\n", "one fault at a time", "calls", "unaffected", "reported",
                "untouched", "part written");
    for (const Tally* row = Tally::first_; row; row = row->next_)
        std::printf("%-44s %8lld %10lld %10lld %10lld %12lld\n", row->what_,
                    static_cast<long long>(row->calls_), static_cast<long long>(row->unaffected_),
                    static_cast<long long>(row->reported_), static_cast<long long>(row->untouched_),
                    static_cast<long long>(row->partly_));
}

namespace {

class PrintAtTheEnd : public testing::Environment {
public:
    void TearDown() override { printTallies(); }
};

[[maybe_unused]] const testing::Environment* printing = testing::AddGlobalTestEnvironment(new PrintAtTheEnd);

}  // namespace

}  // namespace krl::test
