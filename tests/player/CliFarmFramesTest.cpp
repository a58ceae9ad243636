#include <algorithm>
#include <chrono>

#include "tests/player/CliRun.h"

namespace krl::player {
namespace {

namespace fs = std::filesystem;

/// Numbered frames in batches with shards and ledgers.
class FarmFrames : public CliTest {
protected:
    /// Frames after the last that there is. All are alike, so that what moves can be seen.
    void addFrames(int count) {
        fs::create_directories(folder / "in");
        for (int i = 0; i < count; ++i) writePicture(folder / "in" / nameOf(count_ + i), noise(8, 6));
        count_ += count;
    }

    /// A film can begin at any number.
    static std::string nameOf(int frame) { return "00" + std::to_string(40 + frame) + ".pam"; }

    CliResult apply(std::vector<std::string> words, const std::string& call = "invert(#RGB)") const {
        words.insert(words.begin(), {"apply", at("in/%04d.pam"), "-o", at("out/%04d.pam")});
        words.push_back(call);
        return krlimage(words);
    }

    /// How many frames a run made; the others it skipped.
    int madeBy(const CliResult& done) const {
        EXPECT_EQ(done.code, 0) << done.err;
        const size_t skipped = done.err.find("skipped ");
        return skipped == std::string::npos ? count_ : count_ - std::stoi(done.err.substr(skipped + 8));
    }

    /// The results, and empty texts where there are none.
    std::vector<std::string> film() const {
        std::vector<std::string> all;
        for (int i = 0; i < count_; ++i) all.push_back(contentOf(folder / "out" / nameOf(i)));
        return all;
    }

    static constexpr const char* kMoving = "brightness(frame * 5, #RGB)";

private:
    int count_ = 0;
};

TEST_F(FarmFrames, ResumeWithTheirNumbers) {
    addFrames(6);
    ASSERT_EQ(apply({"--ledger"}).code, 0);
    const auto whole = film();
    fs::remove(folder / "out" / nameOf(3));
    EXPECT_EQ(madeBy(apply({"--resume"})), 1);
    EXPECT_EQ(film(), whole);
    addFrames(2);
    const fs::path changed = folder / "in" / nameOf(1);
    fs::last_write_time(changed, fs::last_write_time(changed) + std::chrono::hours(1));
    EXPECT_EQ(madeBy(apply({"--resume"})), 3);
    EXPECT_TRUE(fs::exists(at("out/.krlimage/ledger"))) << "the ledger is in the folder of the frames";
    EXPECT_EQ(krlimage({"ledger", "verify", at("out")}).code, 0);
}

TEST_F(FarmFrames, AreInOneShardEach) {
    addFrames(20);
    ASSERT_EQ(apply({}).code, 0);
    const auto whole = film();
    fs::remove_all(at("out"));
    size_t all = 0;
    for (const char* shard : {"1/3", "2/3", "3/3"}) {
        ASSERT_EQ(apply({"--shard", shard, "--ledger"}).code, 0);
        const auto files = film();
        const size_t made = files.size() - static_cast<size_t>(std::count(files.begin(), files.end(), ""));
        EXPECT_GT(made, all);
        all = made;
        EXPECT_EQ(made == 20, shard[0] == '3');
    }
    EXPECT_EQ(film(), whole);
    EXPECT_EQ(krlimage({"ledger", "verify", at("out")}).code, 0);
}

TEST_F(FarmFrames, MoveInAShardAsInTheWholeFilm) {
    addFrames(12);
    ASSERT_EQ(apply({}, kMoving).code, 0);
    const auto whole = film();
    ASSERT_NE(whole[3], whole[4]);
    fs::remove_all(at("out"));
    ASSERT_EQ(apply({"--shard", "1/2"}, kMoving).code, 0);
    ASSERT_EQ(apply({"--shard", "2/2"}, kMoving).code, 0);
    EXPECT_EQ(film(), whole);
}

TEST_F(FarmFrames, ThatMoveResumeAtTheirPlace) {
    addFrames(6);
    ASSERT_EQ(apply({"--ledger"}, kMoving).code, 0);
    const auto whole = film();
    EXPECT_EQ(madeBy(apply({"--resume"}, kMoving)), 0);
    fs::remove(folder / "out" / nameOf(4));
    EXPECT_EQ(madeBy(apply({"--resume"}, kMoving)), 1);
    EXPECT_EQ(film(), whole);
    EXPECT_EQ(madeBy(apply({"--resume", "--fps", "25"}, kMoving)), 6) << "another number of seconds";
}

TEST_F(FarmFrames, ThatMoveAreMadeAgainWhenThereAreMore) {
    const std::string fading = "brightness(t * 100, #RGB)";
    addFrames(6);
    ASSERT_EQ(apply({"--ledger"}, fading).code, 0);
    const std::string before = film()[3];
    addFrames(1);
    EXPECT_EQ(madeBy(apply({"--resume"}, fading)), 7);
    EXPECT_NE(film()[3], before);
    EXPECT_EQ(madeBy(apply({"--resume"}, fading)), 0);
    ASSERT_EQ(apply({"--resume"}).code, 0);
    addFrames(1);
    EXPECT_EQ(madeBy(apply({"--resume"})), 1) << "where nothing moves, the number of frames does not matter";
}

TEST_F(FarmFrames, ThatMoveAreRefusedInAList) {
    addFrames(2);
    const std::string list = text("list", at("in/" + nameOf(0)) + '\n');
    const CliResult done = krlimage({"apply", "--from", list, "-o", at("out"), kMoving});
    EXPECT_EQ(done.code, 2);
    EXPECT_TELLS(done.err, "instead of --from");
    EXPECT_FALSE(fs::exists(at("out")));
}

TEST_F(FarmFrames, OfAListAreNumberedByOneRunAlone) {
    addFrames(3);
    std::string list = at("in/" + nameOf(2)) + '\n' + at("in/" + nameOf(0)) + '\n';
    const auto applyToList = [&](std::vector<std::string> words) {
        words.insert(words.begin(), {"apply", "--from", text("list", list), "-o", at("out/%04d.pam")});
        words.push_back("invert(#RGB)");
        return krlimage(words);
    };
    EXPECT_EQ(applyToList({}).code, 0);
    EXPECT_TRUE(fs::exists(at("out/0002.pam")));
    fs::remove_all(at("out"));
    const CliResult shard = applyToList({"--shard", "1/2"});
    EXPECT_EQ(shard.code, 2) << "each shard would begin at 1";
    EXPECT_TELLS(shard.err, "--shard");
    for (int i = 0; i < 5000; ++i) list += at("in/" + nameOf(0)) + '\n';
    const CliResult parts = applyToList({"--root", at("in")});
    EXPECT_EQ(parts.code, 2) << "each part would begin at 1";
    EXPECT_TELLS(parts.err, "needs a folder");
    EXPECT_FALSE(fs::exists(at("out/0001.pam")));
}

}  // namespace
}  // namespace krl::player
