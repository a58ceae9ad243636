#include "player/cli/Ledger.h"

#if defined(_WIN32)
#include <io.h>
#include <process.h>
#else
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>
#endif

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <nlohmann/json.hpp>
#include <utility>

#include "player/cli/Commands.h"
#include "player/cli/TextFile.h"

namespace krl::player {

namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

#if defined(_WIN32)
int processNumber() { return _getpid(); }
std::string hostName() {
    const char* name = std::getenv("COMPUTERNAME");
    return name ? name : "host";
}
bool keepOnDisk(std::FILE* file) { return std::fflush(file) == 0 && _commit(_fileno(file)) == 0; }
bool lock(std::FILE*) { return true; }
#else
int processNumber() { return ::getpid(); }
std::string hostName() {
    char name[256] = "";
    ::gethostname(name, sizeof name - 1);
    return *name ? name : "host";
}
bool keepOnDisk(std::FILE* file) { return std::fflush(file) == 0 && ::fsync(::fileno(file)) == 0; }
bool lock(std::FILE* file) {
    ::fcntl(::fileno(file), F_SETFD, FD_CLOEXEC);
    return ::flock(::fileno(file), LOCK_EX | LOCK_NB) == 0;
}
#endif

constexpr std::chrono::milliseconds kBetweenWrites{100};

template <class Unit>
int64_t sinceEpoch(std::chrono::system_clock::time_point time) {
    return std::chrono::duration_cast<Unit>(time.time_since_epoch()).count();
}

int64_t now() { return sinceEpoch<std::chrono::milliseconds>(std::chrono::system_clock::now()); }

/// File names can hold any bytes, JSON holds text. A name that is no UTF-8 is kept as numbers.
Json jsonOfName(const std::string& name) {
    try {
        static_cast<void>(Json(name).dump());
        return name;
    } catch (const Json::exception&) {
        return std::vector<uint8_t>(name.begin(), name.end());
    }
}

std::string nameOf(const Json& json) {
    if (json.is_string()) return json.get<std::string>();
    const auto bytes = json.get<std::vector<uint8_t>>();
    return {bytes.begin(), bytes.end()};
}

std::string lineOf(const Json& json) {
    return json.dump(-1, ' ', false, Json::error_handler_t::replace) + '\n';
}

Json jsonOf(const LedgerHeading& heading) {
    return {{"ledger", 1},
            {"doing", heading.doing},
            {"chain", heading.chain},
            {"shard", heading.shard.text()},
            {"host", hostName()},
            {"process", processNumber()},
            {"mark", heading.mark},
            {"time", heading.time}};
}

Json jsonOf(const LedgerEntry& entry) {
    Json json = {{"name", jsonOfName(entry.name)},
                 {"input", jsonOfName(entry.input)},
                 {"chain", entry.chain},
                 {"source", {entry.source.size, entry.source.time}}};
    if (entry.failure.empty())
        json["result"] = {{"size", entry.size}, {"hash", entry.hash}};
    else
        json["failure"] = entry.failure;
    json["time"] = entry.time;
    return json;
}

LedgerHeading headingOf(const Json& json) {
    return {json.at("doing"), json.at("chain"), Shard::from(json.at("shard")), json.at("mark"),
            json.at("time")};
}

LedgerEntry entryOf(const Json& json) {
    LedgerEntry entry;
    entry.name = nameOf(json.at("name"));
    entry.input = nameOf(json.at("input"));
    entry.chain = json.at("chain");
    entry.source = {json.at("source").at(0), json.at("source").at(1)};
    if (json.contains("failure")) {
        entry.failure = json.at("failure");
    } else {
        entry.size = json.at("result").at("size");
        entry.hash = json.at("result").at("hash");
    }
    entry.time = json.at("time");
    return entry;
}

void read(const std::string& line, LedgerFrame& frame, const std::function<void(LedgerEntry&&)>& take) try {
    const Json json = Json::parse(line);
    if (json.contains("name"))
        take(entryOf(json));
    else if (json.contains("ledger"))
        frame.heading = headingOf(json);
    else if (json.contains("pictures"))
        frame.pictures = json.at("pictures");
} catch (const Json::exception&) {  // torn
} catch (const UsageError&) {
}

fs::path ledgerFolder(const fs::path& output) { return output / ".krlimage" / "ledger"; }

}  // namespace

std::optional<FileState> stateOf(const fs::path& file) {
    std::error_code failed;
    const uintmax_t size = fs::file_size(file, failed);
    if (failed) return std::nullopt;
    const auto time = std::chrono::file_clock::to_sys(fs::last_write_time(file, failed));
    if (failed) return std::nullopt;
    return FileState{size,
                     std::chrono::duration_cast<std::chrono::nanoseconds>(time.time_since_epoch()).count()};
}

LedgerWriter::LedgerWriter(const fs::path& output, LedgerHeading heading) {
    const fs::path folder = ledgerFolder(output);
    makeFolder(folder);
    heading.time = now();
    std::string shard = heading.shard.text();
    shard.replace(shard.find('/'), 1, "-of-");
    const auto ticks = std::chrono::steady_clock::now().time_since_epoch().count();
    file_ = folder / (shard + '.' + hostName() + '-' + std::to_string(processNumber()) + '-' +
                      std::to_string(heading.time) + '-' + std::to_string(ticks) + ".jsonl");
    stream_ = std::fopen(file_.string().c_str(), "ab");
    if (!stream_) throw CommandError("cannot create " + file_.string() + ": " + std::strerror(errno));
    lock(stream_);
    add(lineOf(jsonOf(heading)));
    thread_ = std::thread([this] { writeAll(); });
}

LedgerWriter::~LedgerWriter() {
    finish(std::nullopt);
    std::fclose(stream_);
}

void LedgerWriter::note(LedgerEntry entry) {
    entry.time = now();
    add(lineOf(jsonOf(entry)));
}

void LedgerWriter::add(const std::string& text) {
    const std::lock_guard guard(mutex_);
    waiting_ += text;
    changed_.notify_all();
}

std::string LedgerWriter::finish(std::optional<size_t> pictures) {
    if (!thread_.joinable()) return failure_;
    if (pictures) add(lineOf({{"pictures", *pictures}, {"time", now()}}));
    {
        const std::lock_guard guard(mutex_);
        ended_ = true;
        changed_.notify_all();
    }
    thread_.join();
    return failure_;
}

void LedgerWriter::flush() {
    std::unique_lock guard(mutex_);
    isFlushed_ = true;
    changed_.notify_all();
    changed_.wait(guard, [this] { return waiting_.empty() && !isWriting_; });
    isFlushed_ = false;
}

void LedgerWriter::writeAll() {
    std::unique_lock guard(mutex_);
    while (!ended_ || !waiting_.empty()) {
        changed_.wait(guard, [this] { return ended_ || !waiting_.empty(); });
        const std::string text = std::exchange(waiting_, "");
        isWriting_ = true;
        guard.unlock();
        write(text);
        guard.lock();
        isWriting_ = false;
        changed_.notify_all();
        // Entries of small pictures are written together: waiting for the disk takes longer than they do.
        changed_.wait_for(guard, kBetweenWrites, [this] { return ended_ || isFlushed_; });
    }
}

void LedgerWriter::write(const std::string& text) {
    const bool isKept =
        std::fwrite(text.data(), 1, text.size(), stream_) == text.size() && keepOnDisk(stream_);
    if (isKept) return;
    if (failure_.empty()) failure_ = "cannot write " + file_.string() + ": " + std::strerror(errno);
    std::clearerr(stream_);
    std::fputc('\n', stream_);  // ends the torn line
}

std::vector<LedgerFile> ledgersOf(const fs::path& output) {
    std::vector<LedgerFile> ledgers;
    std::error_code missing;
    for (const auto& entry : fs::directory_iterator(ledgerFolder(output), missing)) {
        const std::string name = entry.path().filename().string();
        const size_t of = name.find("-of-"), dot = name.find('.');
        if (entry.path().extension() != ".jsonl" || of == std::string::npos || dot == std::string::npos)
            continue;
        try {
            ledgers.push_back(
                {entry.path(), Shard::from(name.substr(0, of) + '/' + name.substr(of + 4, dot - of - 4))});
        } catch (const UsageError&) {  // not of this program
        }
    }
    return ledgers;
}

LedgerFrame readLedger(const fs::path& ledger, const std::function<void(LedgerEntry&&)>& take) {
    LedgerFrame frame;
    std::ifstream lines(ledger, std::ios::binary);
    for (std::string line; std::getline(lines, line);)
        if (!line.empty()) read(line, frame, take);
    return frame;
}

#if defined(_WIN32)
bool isBeingWritten(const fs::path&) { return true; }
#else
bool isBeingWritten(const fs::path& ledger) {
    const int file = ::open(ledger.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0) return true;
    const bool isFree = ::flock(file, LOCK_SH | LOCK_NB) == 0;
    ::close(file);
    return !isFree;
}
#endif

}  // namespace krl::player
