#include <sys/stat.h>

#include <atomic>
#include <thread>

#include "player/pictures/FileAccess.h"
#include "tests/player/CliRun.h"

namespace krl::player {
namespace {

namespace fs = std::filesystem;

/// Lets a name mean two files in turn, as often as it can, while this object lives.
class Flipping {
public:
    Flipping(fs::path name, fs::path other) : name_(std::move(name)), other_(std::move(other)) {
        thread_ = std::jthread([this](const std::stop_token& end) {
            while (!end.stop_requested()) flip();
        });
    }

private:
    void flip() const {
        const fs::path away = name_.string() + "-away";
        fs::rename(name_, away);
        fs::rename(other_, name_);
        fs::rename(name_, other_);
        fs::rename(away, name_);
    }

    fs::path name_, other_;
    std::jthread thread_;
};

/// A folder that scripts may use, and one that they may not, with files of the same names in both.
class Links : public CliTest {
protected:
    Links() {
        for (const char* place : {"mine", "secret"}) {
            fs::create_directories(folder / place / "door");
            const int32_t width = place[0] == 'm' ? 3 : 7;
            writePicture(folder / place / "a.pam", noise(width, 2));
            writePicture(folder / place / "door" / "a.pam", noise(width, 2));
            text(std::string(place) + "/words.txt", place);
            text(std::string(place) + "/code.ls",
                 std::string("on say me\n  return \"") + place + "\"\nend\n");
        }
    }

    std::string run(const std::string& body) const {
        text("mine/main.ls", "on main\n" + body + "\nend\n");
        const CliResult done = krlimage({"run", at("mine/main.ls")});
        return done.out + done.err;
    }

    /// Runs `body` over and over while `name` becomes a link to the same name elsewhere and itself again.
    void expectNothingElsewhere(const std::string& name, const std::string& body, const std::string& mine,
                                const std::string& secret) const {
        fs::create_symlink(folder / "secret" / name, folder / "mine" / "link");
        {
            const Flipping flipping(folder / "mine" / name, folder / "mine" / "link");
            int fine = 0;
            for (int i = 0; i < kRuns; ++i) {
                const std::string said = run(body);
                ASSERT_EQ(said.find(secret), std::string::npos) << said;
                fine += said == mine ? 1 : 0;
            }
            EXPECT_GT(fine, 0);
        }
        fs::remove(folder / "mine" / "link");
    }

    static constexpr int kRuns = 200;
};

TEST_F(Links, ThatChangeDuringARunLeadNowhereElse) {
    expectNothingElsewhere("a.pam", "put image(\"a.pam\").width", "-- 3\n", "-- 7");
    expectNothingElsewhere("a.pam", "put member(\"a\").image.width", "-- 3\n", "-- 7");
    expectNothingElsewhere("words.txt", "put member(\"words\").text", "-- \"mine\"\n", "\"secret\"");
    expectNothingElsewhere("code.ls", "put new(script \"code\").say()", "-- \"mine\"\n", "\"secret\"");
    expectNothingElsewhere("door", "put image(\"door/a.pam\").width", "-- 3\n", "-- 7");
}

TEST_F(Links, ThatChangeDuringARunLeadNoResultElsewhere) {
    expectNothingElsewhere("door", "image(1, 1, 32).save(\"door/new.pam\")\nput 1", "-- 1\n",
                           "secret is open");
    EXPECT_TRUE(fs::exists(at("mine/door/new.pam")));
    EXPECT_FALSE(fs::exists(at("secret/door/new.pam")));
}

TEST_F(Links, AreReplacedByResultsAndNotFollowed) {
    const std::string before = contentOf(at("secret/a.pam"));
    fs::create_symlink(at("secret/a.pam"), at("mine/link.pam"));
    fs::create_symlink(at("secret/none.pam"), at("mine/dangling.pam"));
    for (const char* name : {"mine/link.pam", "mine/dangling.pam"}) {
        const CliResult done = krlimage({"apply", at("mine/a.pam"), "-o", at(name), "invert"});
        EXPECT_EQ(done.code, 0) << done.err;
        EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(at(name))));
    }
    EXPECT_EQ(contentOf(at("secret/a.pam")), before);
    EXPECT_FALSE(fs::exists(at("secret/none.pam")));
    // The same for a picture that is its own output.
    fs::remove(at("mine/link.pam"));
    fs::create_symlink(at("secret/a.pam"), at("mine/link.pam"));
    EXPECT_EQ(krlimage({"apply", at("mine/link.pam"), "--in-place", "invert"}).code, 0);
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(at("mine/link.pam"))));
    EXPECT_EQ(contentOf(at("secret/a.pam")), before);
}

TEST_F(Links, OutOfTheirFolderAreNoOutputsOfScripts) {
    const std::string before = contentOf(at("secret/a.pam"));
    fs::create_symlink(at("secret/a.pam"), at("mine/out.pam"));
    fs::create_symlink(at("secret/none.pam"), at("mine/dangling.pam"));
    fs::create_symlink(at("mine/a.pam"), at("mine/inner.pam"));
    EXPECT_TELLS(run("image(1, 1, 32).save(\"out.pam\")"), "outside the folders");
    EXPECT_EQ(contentOf(at("secret/a.pam")), before);
    for (const char* name : {"inner.pam", "dangling.pam"}) {
        EXPECT_EQ(run(std::string("image(1, 1, 32).save(\"") + name + "\")"), "");
        EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(folder / "mine" / name)));
    }
    EXPECT_EQ(readPicture(at("mine/a.pam")).width, 3) << "the link was to be replaced";
    EXPECT_FALSE(fs::exists(at("secret/none.pam")));
}

/// Whoever opens a pipe that nobody writes to waits for ever.
TEST_F(Links, DevicesAndPipesAreNoInputs) {
    constexpr const char* kRefusal = "expected a file, got a pipe or device";
    for (const char* name : {"mine/pipe.pam", "mine/heard.txt", "mine/told.ls"})
        ASSERT_EQ(::mkfifo(at(name).c_str(), 0600), 0);
    fs::create_symlink("/dev/zero", at("mine/zero.pam"));
    const std::string pipe = at("mine/pipe.pam"), zero = at("mine/zero.pam"), file = at("mine/a.pam");
    const CliResult done = krlimage({"apply", pipe, file, zero, "-o", at("out"), "invert"});
    EXPECT_EQ(done.code, 1);
    EXPECT_TELLS(done.out + done.err, "1 of 3 pictures done");
    for (const std::string& name : {pipe, zero})
        EXPECT_TELLS(done.err, "cannot read " + name + ": " + kRefusal);
    EXPECT_EQ(krlimage({"apply", at("mine"), "-o", at("all"), "invert"}).code, 0)
        << "a folder's own are passed over";
    for (const char* body : {"put image(\"pipe.pam\")", "put member(\"pipe\").image",
                             "put member(\"heard\").text", "put script(\"told\")"})
        EXPECT_TELLS(run(body), kRefusal);
    EXPECT_TELLS(krlimage({"run", at("mine/told.ls")}).err, "there is no script " + at("mine/told.ls"));
    const std::vector<std::vector<std::string>> commands = {
        {"show", pipe, "--as", "blocks"},
        {"gallery", pipe, "-o", at("sheet")},
        {"sweep", pipe, "-o", at("sheet.pam"), "brightness(0..20 by 10)"},
        {"compare", pipe, file}};
    for (const std::vector<std::string>& words : commands)
        EXPECT_TELLS(krlimage(words).err, kRefusal) << words[0];
}

}  // namespace
}  // namespace krl::player
