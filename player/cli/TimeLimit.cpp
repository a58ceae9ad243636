#include "player/cli/TimeLimit.h"

#include <atomic>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#if defined(_WIN32)
#include <io.h>

#include <chrono>
#include <thread>
#else
#include <signal.h>
#include <sys/time.h>
#include <unistd.h>
#endif

#include "player/pictures/AtomicFile.h"

namespace krl::player {

namespace {

/// The line to print, made beforehand: a signal handler formats nothing.
char farewell[80];
std::atomic<size_t> farewellBytes = 0;  ///< 0 without a limit

void prepareFarewell(double seconds, bool live) {
    const int length = std::snprintf(farewell, sizeof farewell, "%skrlimage: stopped after %g second%s\n",
                                     live ? "\n" : "", seconds, seconds == 1 ? "" : "s");
    farewellBytes = static_cast<size_t>(length);
}

void end() {
    removeUnfinishedFiles();
    [[maybe_unused]] const auto written = ::write(2, farewell, static_cast<unsigned>(farewellBytes.load()));
    std::_Exit(kTimedOut);
}

#if defined(_WIN32)

void arm(double seconds) {
    std::thread([seconds] {
        std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
        if (farewellBytes > 0) end();
    }).detach();
}

void disarm() {}

#else

void endByAlarm(int) { end(); }

/// A program that starts itself again after a crash keeps the timer, which then has less to run.
void arm(double seconds) {
    struct sigaction action {};
    action.sa_handler = endByAlarm;
    sigfillset(&action.sa_mask);
    sigaction(SIGALRM, &action, nullptr);
    itimerval limit{};
    limit.it_value.tv_sec = static_cast<time_t>(seconds);
    limit.it_value.tv_usec = static_cast<suseconds_t>(std::fmod(seconds, 1.0) * 1e6);
    itimerval running{};
    getitimer(ITIMER_REAL, &running);
    if (!timerisset(&running.it_value) || timercmp(&limit.it_value, &running.it_value, <))
        setitimer(ITIMER_REAL, &limit, nullptr);
}

void disarm() {
    const itimerval never{};
    setitimer(ITIMER_REAL, &never, nullptr);
}

#endif

}  // namespace

TimeLimit::TimeLimit(double seconds, bool live) {
    if (!(seconds > 0)) return;
    prepareFarewell(seconds, live);
    arm(seconds);
}

TimeLimit::~TimeLimit() {
    if (farewellBytes.exchange(0) > 0) disarm();
}

}  // namespace krl::player
