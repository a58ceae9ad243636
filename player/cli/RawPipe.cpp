#include "player/cli/RawPipe.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <condition_variable>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <deque>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

#if defined(_WIN32)
#include <fcntl.h>
#include <io.h>
#else
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>
#endif

namespace krl::player {

namespace {

[[noreturn]] void failOn(const char* what) {
    throw CommandError(std::string(what) + ": " + std::strerror(errno));
}

#if defined(_WIN32)
/// Lets a signal end the program as elsewhere; this system has no way to put one off.
class SignalsWait {
public:
    SignalsWait() {
        _setmode(_fileno(stdin), _O_BINARY);
        _setmode(_fileno(stdout), _O_BINARY);
    }
    bool untilInput() { return true; }
    void raise() {}
};
using ByteCount = int;
ByteCount readSome(char* to, size_t count) {
    return _read(_fileno(stdin), to, static_cast<unsigned>(std::min(count, size_t{1} << 20)));
}
ByteCount writeSome(const char* from, size_t count) {
    return _write(_fileno(stdout), from, static_cast<unsigned>(std::min(count, size_t{1} << 20)));
}
#else
volatile std::sig_atomic_t arrived = 0;

/// While this object lives, signals that end the program arrive only where it waits for input, and then end
/// the reading in place of the program. Threads that start meanwhile get none.
class SignalsWait {
public:
    SignalsWait() {
        arrived = 0;
        struct sigaction noting {};
        noting.sa_handler = [](int signal) { arrived = signal; };
        sigset_t ending;
        sigemptyset(&ending);
        for (size_t i = 0; i < kSignals.size(); ++i) {
            sigaction(kSignals[i], nullptr, &before_[i]);
            if (before_[i].sa_handler == SIG_IGN) continue;
            sigaction(kSignals[i], &noting, nullptr);
            sigaddset(&ending, kSignals[i]);
        }
        pthread_sigmask(SIG_BLOCK, &ending, &mask_);
    }
    ~SignalsWait() { end(); }
    SignalsWait(const SignalsWait&) = delete;
    SignalsWait& operator=(const SignalsWait&) = delete;

    /// Waits until there is something to read, or its end; false after a signal.
    bool untilInput() {
        struct pollfd input = {STDIN_FILENO, POLLIN, 0};
        while (arrived == 0)
            if (ppoll(&input, 1, nullptr, &mask_) >= 0 || errno != EINTR) return arrived == 0;
        return false;
    }

    /// Lets a signal that arrived do what it would have done.
    void raise() {
        const int signal = arrived;
        end();
        if (signal != 0) std::raise(signal);
    }

private:
    static constexpr std::array<int, 3> kSignals = {SIGINT, SIGTERM, SIGHUP};

    void end() {
        if (std::exchange(isOver_, true)) return;
        for (size_t i = 0; i < kSignals.size(); ++i) sigaction(kSignals[i], &before_[i], nullptr);
        pthread_sigmask(SIG_SETMASK, &mask_, nullptr);
    }

    std::array<struct sigaction, 3> before_{};
    sigset_t mask_{};
    bool isOver_ = false;
};
using ByteCount = ssize_t;
ByteCount readSome(char* to, size_t count) { return ::read(STDIN_FILENO, to, count); }
ByteCount writeSome(const char* from, size_t count) { return ::write(STDOUT_FILENO, from, count); }
#endif

void exchangeRedAndBlue(Bitmap& frame) {
    for (Pixel& pixel : frame.pixels) std::swap(pixel.red, pixel.blue);
}

void writeFrame(const Bitmap& frame) {
    const char* next = reinterpret_cast<const char*>(frame.pixels.data());
    const char* const end = next + frame.pixels.size() * sizeof(Pixel);
    while (next != end) {
        const ByteCount count = writeSome(next, static_cast<size_t>(end - next));
        if (count < 0 && errno != EINTR) failOn("cannot write to standard output");
        next += std::max<ByteCount>(count, 0);
    }
}

/// Frames on their way: read into free slots, worked on in any order, written in order.
class Pipe {
public:
    Pipe(const RawFormat& format, size_t slots) : format_(format), slots_(slots) {}

    /// Reads a frame into a free slot and hands it on. False at the end, and after a failure or a signal.
    bool read(SignalsWait& signals) {
        Slot* slot = nullptr;
        {
            std::unique_lock lock(mutex_);
            changed_.wait(lock, [&] { return isOver_ || slots_[read_ % slots_.size()].isFree; });
            if (isOver_) return false;
            slot = &slots_[read_ % slots_.size()];
        }
        if (!fill(slot->frame, signals)) return false;
        const std::lock_guard lock(mutex_);
        slot->isFree = slot->isDone = false;
        waiting_.push_back(read_++);
        changed_.notify_all();
        return true;
    }

    /// Says that no more frames come.
    void finishReading() {
        const std::lock_guard lock(mutex_);
        isRead_ = true;
        changed_.notify_all();
    }

    void work(const FrameWorker& worker) {
        while (const std::optional<size_t> number = take()) {
            Bitmap& frame = slots_[*number % slots_.size()].frame;
            try {
                if (format_.isRgba) exchangeRedAndBlue(frame);
                worker(frame, *number);
                if (format_.isRgba) exchangeRedAndBlue(frame);
            } catch (...) {
                fail(*number, std::current_exception());
            }
            const std::lock_guard lock(mutex_);
            slots_[*number % slots_.size()].isDone = true;
            changed_.notify_all();
        }
    }

    void write() {
        while (const std::optional<size_t> number = awaitNext()) {
            try {
                writeFrame(slots_[*number % slots_.size()].frame);
            } catch (...) {
                fail(*number, std::current_exception());
            }
            const std::lock_guard lock(mutex_);
            slots_[*number % slots_.size()].isFree = true;
            ++written_;
            changed_.notify_all();
        }
    }

    /// Ends the pipe before frame `number` because of what is being thrown.
    void fail(size_t number, std::exception_ptr why) {
        const std::lock_guard lock(mutex_);
        if (!failed_ || number < *failed_) {
            failed_ = number;
            failure_ = std::move(why);
        }
        isOver_ = true;
        changed_.notify_all();
    }

    void rethrowFailure() const {
        if (failure_) std::rethrow_exception(failure_);
    }
    size_t framesRead() const { return read_; }

private:
    struct Slot {
        Bitmap frame;
        bool isFree = true, isDone = false;
    };

    bool fill(Bitmap& frame, SignalsWait& signals) const {
        frame.width = format_.width;
        frame.height = format_.height;
        frame.pixels.resize(size_t(format_.width) * size_t(format_.height));
        const size_t whole = frame.pixels.size() * sizeof(Pixel);
        char* const bytes = reinterpret_cast<char*>(frame.pixels.data());
        for (size_t filled = 0; filled < whole;) {
            if (!signals.untilInput()) return false;
            const ByteCount count = readSome(bytes + filled, whole - filled);
            if (count < 0 && errno != EINTR) failOn("cannot read standard input");
            if (count == 0 && filled == 0) return false;
            if (count == 0)
                throw CommandError("standard input ends within frame " + std::to_string(read_) + ", after " +
                                   std::to_string(filled) + " of " + std::to_string(whole) + " bytes");
            filled += static_cast<size_t>(std::max<ByteCount>(count, 0));
        }
        return true;
    }

    /// The next frame to work on; none when all are done.
    std::optional<size_t> take() {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [&] { return !waiting_.empty() || isRead_ || isOver_; });
        if (waiting_.empty()) return std::nullopt;
        const size_t number = waiting_.front();
        waiting_.pop_front();
        return number;
    }

    /// The next frame to write, once it is done; none after the last one, or where the pipe failed.
    std::optional<size_t> awaitNext() {
        std::unique_lock lock(mutex_);
        const auto isAtEnd = [&] {
            return (failed_ && written_ >= *failed_) || (written_ == read_ && (isRead_ || isOver_));
        };
        const auto isNextDone = [&] {
            const Slot& slot = slots_[written_ % slots_.size()];
            return written_ < read_ && !slot.isFree && slot.isDone;
        };
        changed_.wait(lock, [&] { return isAtEnd() || isNextDone(); });
        if (isAtEnd()) return std::nullopt;
        return written_;
    }

    const RawFormat format_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<Slot> slots_;
    std::deque<size_t> waiting_;
    size_t read_ = 0, written_ = 0;  ///< frames
    bool isRead_ = false, isOver_ = false;
    std::optional<size_t> failed_;
    std::exception_ptr failure_;
};

/// A number at the start of `text`, which loses it; 0 where there is none.
int32_t takeNumber(std::string& text) {
    size_t digits = 0;
    while (digits < text.size() && text[digits] >= '0' && text[digits] <= '9') ++digits;
    if (digits == 0 || digits > 6) return 0;
    const int32_t number = std::stoi(text.substr(0, digits));
    text.erase(0, digits);
    return number;
}

/// Asks for pipes that hold more than the usual 64 KiB, so that programs at their ends wait less often.
void widenPipes() {
#if defined(F_SETPIPE_SZ)
    for (const int end : {STDIN_FILENO, STDOUT_FILENO}) fcntl(end, F_SETPIPE_SZ, 1 << 20);
#endif
}

}  // namespace

RawFormat rawFormatOf(const std::string& text) {
    RawFormat format;
    std::string rest = text;
    format.width = takeNumber(rest);
    const bool isTimes = !rest.empty() && rest[0] == 'x';
    rest.erase(0, isTimes);
    format.height = takeNumber(rest);
    format.isRgba = rest == ":rgba";
    if (!isTimes || format.width < 1 || format.height < 1 ||
        (!rest.empty() && rest != ":bgra" && !format.isRgba))
        throw UsageError("--raw: expected WIDTHxHEIGHT, WIDTHxHEIGHT:bgra or WIDTHxHEIGHT:rgba, got " + text);
    if (int64_t{format.width} * format.height * int64_t{sizeof(Pixel)} >= kPictureByteLimit)
        throw UsageError("--raw: a frame of " + text + " is larger than 2 GiB");
    return format;
}

void pipeFrames(const RawFormat& format, unsigned jobs, const std::function<FrameWorker()>& makeWorker) {
    if (jobs == 0) jobs = std::max(1u, std::thread::hardware_concurrency());
    widenPipes();
    SignalsWait signals;
    Pipe pipe(format, size_t{jobs} + 2);
    {
        std::vector<FrameWorker> workers;
        for (unsigned i = 0; i < jobs; ++i) workers.push_back(makeWorker());
        std::vector<std::thread> threads;
        for (const FrameWorker& worker : workers) threads.emplace_back([&] { pipe.work(worker); });
        threads.emplace_back([&] { pipe.write(); });
        try {
            while (pipe.read(signals)) {
            }
        } catch (...) {
            pipe.fail(pipe.framesRead(), std::current_exception());
        }
        pipe.finishReading();
        for (std::thread& thread : threads) thread.join();
    }
    pipe.rethrowFailure();
    signals.raise();
}

}  // namespace krl::player
