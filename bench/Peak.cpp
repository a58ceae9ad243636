#include <algorithm>
#include <chrono>
#include <cstdio>

/// Prints the most instructions that this processor completes in a nanosecond: additions that need nothing of
/// each other, in registers, the best of many turns.
namespace {

/// A turn's additions, and the two instructions of its loop.
constexpr int kTurns = 1'000'000, kInstructions = 4 * 8 + 2;

void addOften() {
    long turns = kTurns;
    asm volatile(
        "1:\n"
        ".rept 4\n"
        "add $1, %%rax\n add $1, %%rcx\n add $1, %%rdx\n add $1, %%rsi\n"
        "add $1, %%rdi\n add $1, %%r8\n add $1, %%r9\n add $1, %%r10\n"
        ".endr\n"
        "dec %0\n jnz 1b\n"
        : "+r"(turns)
        :
        : "rax", "rcx", "rdx", "rsi", "rdi", "r8", "r9", "r10", "cc");
}

}  // namespace

int main() {
    using Clock = std::chrono::steady_clock;
    double most = 0;
    for (int i = 0; i < 50; ++i) {
        const Clock::time_point begin = Clock::now();
        addOften();
        const double taken = std::chrono::duration<double, std::nano>(Clock::now() - begin).count();
        most = std::max(most, kTurns * double(kInstructions) / taken);
    }
    std::printf("%.3f\n", most);
    return 0;
}
