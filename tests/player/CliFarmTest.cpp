#include <nlohmann/json.hpp>

#if !defined(_WIN32)
#include <unistd.h>
#endif

#include <atomic>
#include <chrono>
#include <set>
#include <thread>

#include "player/cli/Commands.h"
#include "player/cli/InputList.h"
#include "player/cli/Ledger.h"
#include "player/cli/MemoryGate.h"
#include "player/cli/Shard.h"
#include "tests/player/CliRun.h"

namespace krl::player {
namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;

class Farm : public CliTest {
protected:
    /// A folder of pictures that differ.
    std::string pictures(int count) const {
        fs::create_directories(folder / "in");
        for (int i = 0; i < count; ++i)
            writePicture(folder / "in" / (std::to_string(i) + ".pam"), noise(8, 6, uint32_t(i)));
        return at("in");
    }

    CliResult apply(std::vector<std::string> words, const std::string& call = "invert(#RGB)") const {
        words.insert(words.begin(), {"apply", at("in"), "-o", at("out")});
        words.push_back(call);
        return krlimage(words);
    }

    static std::set<std::string> namesIn(const fs::path& folder) {
        std::set<std::string> names;
        for (const auto& entry : fs::recursive_directory_iterator(folder))
            if (entry.path().extension() == ".pam")
                names.insert(entry.path().lexically_relative(folder).string());
        return names;
    }

    fs::path onlyLedger() const {
        const auto ledgers = ledgersOf(at("out"));
        EXPECT_EQ(ledgers.size(), 1u);
        return ledgers.empty() ? fs::path() : ledgers.front().file;
    }
};

TEST_F(Farm, ShardsHaveEveryPictureOnceAndKeepItWhenOthersAreAdded) {
    pictures(40);
    std::set<std::string> all, second;
    for (const char* shard : {"1/3", "2/3", "3/3"}) {
        const std::string out = at("shard" + std::string(shard, 1));
        ASSERT_EQ(krlimage({"apply", at("in"), "-o", out, "--shard", shard, "invert(#RGB)"}).code, 0);
        const std::set<std::string> names = namesIn(out);
        EXPECT_GE(names.size(), 5u);
        for (const std::string& name : names)
            EXPECT_TRUE(all.insert(name).second) << name << " is in two shards";
        if (shard[0] == '2') second = names;
    }
    EXPECT_EQ(all, namesIn(at("in")));
    pictures(60);
    ASSERT_EQ(krlimage({"apply", at("in"), "-o", at("more"), "--shard", "2/3", "invert(#RGB)"}).code, 0);
    const std::set<std::string> more = namesIn(at("more"));
    EXPECT_GT(more.size(), second.size());
    for (const std::string& name : second) EXPECT_TRUE(more.count(name)) << name << " has moved";
    // The same on every machine and in every version: the low half of what xxh128sum prints, modulo 1000.
    EXPECT_EQ(Shard::indexOf("a/b.png", 1000), 564u);
}

TEST_F(Farm, PicturesForOneOutputAreInOneShardWhichRefusesThem) {
    pictures(1);
    fs::create_directories(folder / "in2");
    for (int i = 0; i < 8; ++i) {
        picture("in/p" + std::to_string(i) + ".pam");
        picture("in2/p" + std::to_string(i) + ".pam");
    }
    for (const char* shard : {"1/2", "2/2"}) {
        const CliResult done =
            krlimage({"apply", at("in"), at("in2"), "-o", at("out"), "--shard", shard, "invert(#RGB)"});
        EXPECT_EQ(done.code, 2);
        EXPECT_TELLS(done.err, "would both be written to");
    }
}

#if !defined(_WIN32)
TEST_F(Farm, TakesItsShardFromTheScheduler) {
    const auto under = [](const std::vector<std::pair<const char*, const char*>>& variables) {
        for (const auto& [name, value] : variables) ::setenv(name, value, 1);
        std::string text;
        try {
            text = Shard::from("auto").text();
        } catch (const UsageError& error) {
            text = error.what();
        }
        for (const auto& [name, value] : variables) ::unsetenv(name);
        return text;
    };
    EXPECT_EQ(
        under({{"SLURM_ARRAY_TASK_ID", "3"}, {"SLURM_ARRAY_TASK_COUNT", "8"}, {"SLURM_ARRAY_TASK_MIN", "0"}}),
        "4/8");
    EXPECT_EQ(
        under({{"SLURM_ARRAY_TASK_ID", "3"}, {"SLURM_ARRAY_TASK_COUNT", "8"}, {"SLURM_ARRAY_TASK_MIN", "1"}}),
        "3/8");
    EXPECT_EQ(under({{"SGE_TASK_ID", "2"}, {"SGE_TASK_FIRST", "1"}, {"SGE_TASK_LAST", "5"}}), "2/5");
    EXPECT_EQ(under({{"LSB_JOBINDEX", "5"}, {"LSB_JOBINDEX_END", "5"}}), "5/5");
    EXPECT_EQ(under({{"JOB_COMPLETION_INDEX", "0"}, {"JOB_COMPLETION_COUNT", "5"}}), "1/5");
    EXPECT_TELLS(under({{"JOB_COMPLETION_INDEX", "0"}}), "JOB_COMPLETION_COUNT");
    EXPECT_TELLS(
        under({{"SLURM_ARRAY_TASK_ID", "6"}, {"SLURM_ARRAY_TASK_COUNT", "3"}, {"SLURM_ARRAY_TASK_MIN", "0"}}),
        "without gaps");
    EXPECT_TELLS(under({}), "not a task of a job array");
}
#endif

TEST_F(Farm, RefusesShardsThatDoNotExist) {
    pictures(1);
    for (const char* shard : {"0/3", "4/3", "1", "1/0", "-1/3", "1/3x", "a/b", "all/3"}) {
        const CliResult done = apply({"--shard", shard});
        EXPECT_EQ(done.code, 2) << shard;
        EXPECT_TELLS(done.err, "--shard");
    }
    EXPECT_FALSE(fs::exists(at("out")));
}

TEST_F(Farm, MirrorsListedPicturesBelowTheRoot) {
    fs::create_directories(folder / "in/a/b");
    picture("in/a/b/x.pam");
    picture("in/x.pam");
    const std::string list = at("in/a/b/x.pam") + '\0' + at("in/./x.pam") + '\0';
    const CliResult done = krlimage(
        {"apply", "--from", text("list", list), "-0", "--root", at("in"), "-o", at("out"), "invert(#RGB)"});
    EXPECT_EQ(done.code, 0) << done.err;
    EXPECT_EQ(namesIn(at("out")), (std::set<std::string>{"a/b/x.pam", "x.pam"}));
    const CliResult outside = krlimage(
        {"apply", "--from", text("list", at("list")), "--root", at("in"), "-o", at("out"), "invert(#RGB)"});
    EXPECT_EQ(outside.code, 2);
    EXPECT_TELLS(outside.err, "is not below --root");
}

TEST_F(Farm, ReadsLongListsInPartsAndPrintsOneReport) {
    picture("in.pam", 2, 1);
    std::string list;
    for (int i = 0; i < 5000; ++i) {
        const std::string name = at(std::to_string(i) + ".pam");
        if (i != 4500) fs::create_hard_link(at("in.pam"), name);
        list += name + '\n';
    }
    text("list", list);
    const CliResult refused = krlimage({"apply", "--from", at("list"), "-o", at("out"), "invert(#RGB)"});
    EXPECT_EQ(refused.code, 2);
    EXPECT_TELLS(refused.err, "needs --root DIR");
    const CliResult done = krlimage({"apply", "--from", at("list"), "--root", folder.string(), "-o",
                                     at("out"), "--json", "-j", "2", "invert(#RGB)"});
    EXPECT_EQ(done.code, 1);
    EXPECT_EQ(namesIn(at("out")).size(), 4999u);
    EXPECT_TELLS(done.err, "4999 of 5000 pictures done, 1 failed");
    const std::vector<nlohmann::json> lines = jsonLines(done.out);
    ASSERT_EQ(lines.size(), 5000u);
    std::set<std::string> inputs;
    for (const nlohmann::json& line : lines) {
        inputs.insert(line["input"]);
        EXPECT_EQ(line["ok"], line["input"] != at("4500.pam"));
    }
    EXPECT_EQ(inputs.size(), 5000u);
}

TEST_F(Farm, ContinuesAListWhereAnotherProgramWas) {
    std::string list;
    for (int i = 0; i < 30000; ++i) list += "name" + std::to_string(i) + '\n';
    InputList first(text("list", list), '\n');
    for (int i = 0; i < 20000; ++i) ASSERT_EQ(first.next(), "name" + std::to_string(i));
    InputList second(at("list"), '\n');
    second.continueAt(first.place());
    for (int i = 20000; i < 30000; ++i) ASSERT_EQ(second.next(), "name" + std::to_string(i));
    EXPECT_EQ(second.next(), std::nullopt);
    EXPECT_THROW(InputList(text("list", std::string(200000, 'x')), '\n').next(), CommandError);
}

TEST_F(Farm, ResumesWhatIsNotDone) {
    pictures(12);
    ASSERT_EQ(apply({"--ledger"}).code, 0);
    EXPECT_TELLS(apply({"--resume"}).err, "skipped 12 of 12 pictures");
    const auto madeAgain = [&](const CliResult& done) {
        EXPECT_EQ(done.code, 0) << done.err;
        const size_t skipped = done.err.find("skipped ");
        return skipped == std::string::npos ? 12 : 12 - std::stoi(done.err.substr(skipped + 8));
    };
    fs::remove(at("out/3.pam"));
    EXPECT_EQ(madeAgain(apply({"--resume"})), 1);
    fs::resize_file(at("out/4.pam"), 20);
    EXPECT_EQ(madeAgain(apply({"--resume"})), 1);
    EXPECT_EQ(readPicture(at("out/4.pam")).width, 8);
    fs::last_write_time(at("in/5.pam"), fs::last_write_time(at("in/5.pam")) + std::chrono::seconds(1));
    EXPECT_EQ(madeAgain(apply({"--resume"})), 1);
    EXPECT_EQ(madeAgain(apply({"--resume"}, "invert(#Alpha)")), 12);
    EXPECT_EQ(madeAgain(apply({"--resume"}, "invert(#Alpha)")), 0);
    EXPECT_EQ(madeAgain(apply({"--resume", "--resize", "50%"}, "invert(#Alpha)")), 12);
    EXPECT_EQ(madeAgain(apply({"--resume"})), 12) << "the newest result is another one";
}

TEST_F(Farm, ResumesPastATornLine) {
    pictures(6);
    ASSERT_EQ(apply({"--ledger"}).code, 0);
    const fs::path ledger = onlyLedger();
    const std::string content = contentOf(ledger);
    // As a crash leaves it: without the end, and half of the entry before.
    const size_t end = content.rfind('\n', content.size() - 2), last = content.rfind('\n', end - 1);
    std::ofstream(ledger, std::ios::binary) << content.substr(0, (last + end) / 2);
    const CliResult verified = krlimage({"ledger", "verify", at("out")});
    EXPECT_EQ(verified.code, 1);
    EXPECT_TELLS(verified.out, "unfinished  shard 1/1");
    EXPECT_TELLS(apply({"--resume"}).err, "skipped 5 of 6 pictures");
    EXPECT_EQ(krlimage({"ledger", "verify", at("out")}).code, 0);
}

TEST_F(Farm, RecordsNamesOfAnyBytes) {
    pictures(1);
    picture("in/caf\xE9.pam");
    ASSERT_EQ(apply({"--ledger"}).code, 0);
    EXPECT_TELLS(apply({"--resume"}).err, "skipped 2 of 2 pictures");
    EXPECT_EQ(krlimage({"ledger", "verify", at("out")}).code, 0);
}

TEST_F(Farm, VerifiesResultsOverAllShards) {
    pictures(12);
    text("in/broken.pam", "P7\nWIDTH 4\n");
    EXPECT_EQ(apply({"--shard", "1/2", "--ledger"}).code + apply({"--shard", "2/2", "--ledger"}).code, 1);
    const auto verify = [&](const char* action = "verify") {
        const CliResult done = krlimage({"ledger", action, at("out"), "--json"});
        EXPECT_EQ(done.code, 1);
        return nlohmann::json::parse(done.out);
    };
    nlohmann::json found = verify();
    EXPECT_EQ(found["pictures"], 13);
    EXPECT_EQ(found["done"], 12);
    ASSERT_EQ(found["failed"].size(), 1u);
    EXPECT_EQ(found["failed"][0]["name"], "broken.pam");
    EXPECT_TELLS(std::string(found["failed"][0]["reason"]), "the header has no end");
    EXPECT_EQ(found["unfinishedShards"].size(), 0u);

    fs::remove(at("in/broken.pam"));
    picture("in/broken.pam");
    apply({"--shard", "1/2", "--resume"});
    apply({"--shard", "2/2", "--resume"});
    EXPECT_EQ(krlimage({"ledger", "verify", at("out")}).code, 0);
    fs::remove(at("out/1.pam"));
    std::string content = contentOf(at("out/2.pam"));
    content.back() = static_cast<char>(content.back() ^ 1);
    text("out/2.pam", content);
    text("out/3.pam", "short");
    found = verify();
    EXPECT_EQ(found["done"], 10);
    EXPECT_EQ(found["missing"][0]["name"], "1.pam");
    EXPECT_EQ(found["changed"].size(), 2u);
    EXPECT_EQ(krlimage({"ledger", "summary", at("out")}).code, 0) << "a summary opens no results";
}

TEST_F(Farm, VerifyNoticesAShardThatNeverRan) {
    pictures(12);
    ASSERT_EQ(apply({"--shard", "1/3", "--ledger"}).code, 0);
    ASSERT_EQ(apply({"--shard", "3/3", "--ledger"}).code, 0);
    const CliResult found = krlimage({"ledger", "summary", at("out")});
    EXPECT_EQ(found.code, 1);
    EXPECT_TELLS(found.out, "unfinished  shard 2/3");
    EXPECT_EQ(countOf(found.out, "unfinished"), 1u);
    ASSERT_EQ(apply({"--resume"}).code, 0);
    EXPECT_EQ(krlimage({"ledger", "verify", at("out")}).code, 0)
        << "one run without shards has done them all";
    EXPECT_EQ(krlimage({"ledger", "verify", at("in")}).code, 1);
}

TEST_F(Farm, StopsAfterTheFailuresThatItMayHave) {
    pictures(20);
    for (int i = 0; i < 20; i += 2) text("in/" + std::to_string(i) + ".pam", "P7\n");
    const CliResult done = apply({"--max-failures", "3", "--ledger", "-j", "1"});
    EXPECT_EQ(done.code, 3);
    EXPECT_EQ(countOf(done.err, "the header has no end"), 3u) << done.err;
    EXPECT_TELLS(done.err, "3 failed, ");
    EXPECT_TELLS(done.err, " not started\n");
    const CliResult found = krlimage({"ledger", "summary", at("out")});
    EXPECT_EQ(found.code, 1);
    EXPECT_TELLS(found.out, "unfinished  shard 1/1");

    text("in/99.pam", "P7\n");
    EXPECT_EQ(apply({"--max-failures", "11", "--resume", "-j", "1"}).code, 1)
        << "the eleventh is the last picture";
    EXPECT_EQ(krlimage({"ledger", "summary", at("out")}).out.find("unfinished"), std::string::npos);
}

#if defined(__linux__)
/// A process's memory reads as an I/O error at its beginning.
TEST_F(Farm, ReadsAgainWhenTheFileSystemFails) {
    fs::create_directories(folder / "in");
    const std::string good = picture("good.pam");
    const auto failForAMoment = [&] {
        fs::remove(at("in/a.pam"));
        fs::create_symlink("/proc/self/mem", at("in/a.pam"));
        return std::jthread([&] {
            std::this_thread::sleep_for(milliseconds(150));
            fs::create_symlink(good, at("in/next"));
            fs::rename(at("in/next"), at("in/a.pam"));
        });
    };
    {
        const std::jthread healing = failForAMoment();
        const CliResult done = apply({});
        EXPECT_EQ(done.code, 1);
        EXPECT_TELLS(done.err, "Input/output error");
    }
    const std::jthread healing = failForAMoment();
    const CliResult done = apply({"--retry", "8"});
    EXPECT_EQ(done.code, 0) << done.err;
}

TEST_F(Farm, DoesNotReadABrokenPictureOverAndOver) {
    fs::create_directories(folder / "in");
    text("in/a.pam", "P7\n");
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(apply({"--retry", "100"}).code, 1);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

TEST_F(Farm, ResumingRemovesWhatAKilledProcessLeftUnfinished) {
    pictures(3);
    ASSERT_EQ(apply({"--ledger"}).code, 0);
    const fs::path ledger = onlyLedger();
    std::string content = contentOf(ledger);
    content.resize(content.rfind('\n', content.size() - 2) + 1);
    const size_t mark = content.find("\"mark\":\"") + 8, end = content.find('"', mark);
    content.replace(mark, end - mark, ".123-45");
    std::ofstream(ledger, std::ios::binary) << content;
    text("out/.123-45_6.pam", "half");
    text("out/.123-456_6.pam", "of another process");
    const CliResult done = apply({"--resume"});
    EXPECT_EQ(done.code, 0) << done.err;
    EXPECT_TELLS(done.err, "removed " + at("out/.123-45_6.pam"));
    EXPECT_FALSE(fs::exists(at("out/.123-45_6.pam")));
    EXPECT_TRUE(fs::exists(at("out/.123-456_6.pam")));
}
#endif

TEST_F(Farm, PlansFromHeadersAlone) {
    pictures(3);
    // Headers without pixels: whoever reads more fails.
    for (const char* name : {"in/large.pam", "in/larger.pam"})
        text(name, "P7\nWIDTH 1000\nHEIGHT " + std::string(name[8] == 'r' ? "4000" : "2000") +
                       "\nDEPTH 4\nMAXVAL 255\nTUPLTYPE RGB_ALPHA\nENDHDR\n");
    const CliResult done = apply({"--plan", "--json", "--jobs", "2", "--shard", "all/4"});
    EXPECT_EQ(done.code, 0) << done.err;
    const auto plan = nlohmann::json::parse(done.out);
    EXPECT_EQ(plan["pictures"], 5);
    EXPECT_EQ(plan["pixels"], 3 * 8 * 6 + 6'000'000);
    EXPECT_EQ(plan["memory"], workingMemory({1000, 2000}) + workingMemory({1000, 4000}));
    const auto heavier = nlohmann::json::parse(apply({"--plan", "--json", "--format", "gif"}).out);
    EXPECT_EQ(heavier["largestPicture"], workingMemory({1000, 4000}, PictureFormat::Gif));
    EXPECT_GT(heavier["largestPicture"], plan["largestPicture"]);
    ASSERT_EQ(plan["shards"].size(), 4u);
    size_t pictures = 0;
    for (const auto& shard : plan["shards"]) pictures += shard["pictures"].get<size_t>();
    EXPECT_EQ(pictures, 5u);
    EXPECT_FALSE(fs::exists(at("out")));
    text("in/broken.pam", "P7\n");
    EXPECT_EQ(apply({"--plan"}).code, 1);
    EXPECT_TELLS(apply({"--plan"}).out, "5 pictures, 6 megapixels, ");
}

TEST(Memory, HoldsPicturesBackWhileItIsTaken) {
    MemoryGate gate(100);
    std::atomic<int> inside = 0, most = 0;
    {
        std::vector<std::jthread> threads;
        for (int i = 0; i < 6; ++i)
            threads.emplace_back([&] {
                const MemoryGate::Share share = gate.take(40);
                most = std::max(most.load(), ++inside);
                std::this_thread::sleep_for(milliseconds(20));
                --inside;
            });
    }
    EXPECT_EQ(most, 2);
    const MemoryGate::Share alone = gate.take(1000);
}

TEST(Memory, OfTheSystemIsKnown) { EXPECT_GT(availableMemory(), uint64_t{1} << 20); }

TEST_F(Farm, TakesTheMemoryOfItsContainer) {
    fs::create_directories(folder / "proc");
    fs::create_directories(folder / "sys/fs/cgroup");
    text("proc/meminfo", "MemTotal:  900 kB\nMemFree:  10 kB\nMemAvailable:  500 kB\n");
    EXPECT_EQ(availableMemory(folder), 512000u);
    text("sys/fs/cgroup/memory.max", "max\n");
    text("sys/fs/cgroup/memory.current", "300000\n");
    EXPECT_EQ(availableMemory(folder), 512000u) << "a container without a limit";
    text("sys/fs/cgroup/memory.max", "400000\n");
    EXPECT_EQ(availableMemory(folder), 100000u);
    text("sys/fs/cgroup/memory.stat", "anon 50000\nfile 250000\ninactive_file 200000\n");
    EXPECT_EQ(availableMemory(folder), 300000u) << "files that were read can be dropped";
}

TEST_F(Farm, WorksWithinItsMemory) {
    pictures(4);
    EXPECT_EQ(apply({"--memory", "1M", "-j", "4"}).code, 0);
    EXPECT_EQ(namesIn(at("out")).size(), 4u);
    EXPECT_EQ(apply({"--memory", "much"}).code, 2);
}

}  // namespace
}  // namespace krl::player
