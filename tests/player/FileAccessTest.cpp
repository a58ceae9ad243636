#include <gtest/gtest.h>
#include <sys/stat.h>

#include "player/cli/Similarity.h"
#include "player/pictures/ExifData.h"
#include "player/pictures/FileAccess.h"
#include "tests/player/CliRun.h"

namespace krl::player {
namespace {

namespace fs = std::filesystem;

class FileAccess : public CliTest {
protected:
    static unsigned modeOf(const std::string& path) {
        struct stat found {};
        EXPECT_EQ(::stat(path.c_str(), &found), 0) << path;
        return found.st_mode & 0777u;
    }
    static std::string errorOf(const std::function<void()>& work) {
        try {
            work();
        } catch (const PictureError& error) {
            return error.what();
        }
        return "";
    }
};

TEST_F(FileAccess, TakesNothingInANameForMoreThanAName) {
    writePicture(at("a.png"), noise(64, 64));
    EXPECT_EQ(errorOf([&] { readPicture(at("a.png[access=random]")); }),
              "cannot read " + at("a.png[access=random]") + ": No such file or directory");
    fs::copy_file(at("a.png"), at("b.png[shrink=8]"));
    EXPECT_EQ(readPicture(at("b.png[shrink=8]")).width, 64);
}

TEST_F(FileAccess, ReadsNoFormatThatNobodyMeantToGive) {
    text("a.svg", "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"8\" height=\"8\"></svg>");
    text("a.csv", "1,2\n3,4\n");
    text("a.mat", "2 2\n1 2\n3 4\n");
    for (const char* name : {"a.svg", "a.csv", "a.mat"}) {
        EXPECT_TELLS(errorOf([&] { readPicture(at(name)); }), "unrecognised picture format");
    }
}

TEST_F(FileAccess, RefusesANameThatHasComeToMeanAnotherFile) {
    fs::create_directory(at("real"));
    fs::create_directory(at("other"));
    writePicture(at("other/a.png"), noise(4, 4));
    fs::create_directory_symlink(at("other"), at("link"));
    EXPECT_TELLS(errorOf([&] { readCheckedPicture(at("link/a.png")); }),
                 "it was replaced by " + at("other/a.png"));
    EXPECT_TELLS(errorOf([&] { writeCheckedPicture(at("link/b.png"), noise(4, 4)); }),
                 "its folder was replaced by " + at("other"));
    EXPECT_FALSE(fs::exists(at("other/b.png")));
    EXPECT_EQ(readCheckedPicture(at("other/a.png")).width, 4);
    writeCheckedPicture(at("real/b.png"), noise(4, 4));
    EXPECT_TRUE(fs::exists(at("real/b.png")));
}

TEST_F(FileAccess, LetsNobodyInWhomTheSourceKeepsOut) {
    const std::string in = picture("in.png"), out = at("out.png");
    const mode_t mask = ::umask(0);
    ::umask(mask);
    fs::permissions(in, fs::perms(0600));
    ASSERT_EQ(krlimage({"apply", in, "-o", out, "invert(#RGB)"}).code, 0);
    EXPECT_EQ(modeOf(out), 0600u);
    fs::permissions(in, fs::perms(0644));
    ASSERT_EQ(krlimage({"apply", in, "-o", at("open.png"), "invert(#RGB)"}).code, 0);
    EXPECT_EQ(modeOf(at("open.png")) & 0044u, 0044u & ~unsigned(mask));
    // A file that is replaced keeps its own.
    fs::permissions(out, fs::perms(0640));
    ASSERT_EQ(krlimage({"apply", in, "-o", out, "invert(#RGB)"}).code, 0);
    EXPECT_EQ(modeOf(out), 0640u);
}

TEST_F(FileAccess, OverwritesNoInputUnlessAsked) {
    const std::string in = picture("in.png");
    const std::string before = contentOf(in);
    for (const std::string& out : {in, at("."), at("./in.png")}) {
        const CliResult done = krlimage({"apply", in, "-o", out, "invert(#RGB)"});
        EXPECT_EQ(done.code, 2) << out;
        EXPECT_TELLS(done.err, in + " would be overwritten: name another output, or use --in-place");
        EXPECT_EQ(contentOf(in), before);
    }
    EXPECT_EQ(krlimage({"apply", in, "--in-place", "invert(#RGB)"}).code, 0);
    EXPECT_NE(contentOf(in), before);
    EXPECT_EQ(files(), 1u);
}

/// EXIF data with one entry and, in a second directory, a small picture of the bytes `abcd`.
std::vector<uint8_t> exifWithThumbnail(bool isLittle) {
    std::vector<uint8_t> exif = {'E', 'x', 'i', 'f', 0, 0};
    const auto add = [&](uint32_t value, int bytes) {
        for (int i = 0; i < bytes; ++i) exif.push_back(uint8_t(value >> 8 * (isLittle ? i : bytes - 1 - i)));
    };
    exif.push_back(isLittle ? 'I' : 'M');
    exif.push_back(isLittle ? 'I' : 'M');
    add(42, 2), add(8, 4);
    add(1, 2), add(0x0112, 2), add(3, 2), add(1, 4), add(1, 2), add(0, 2), add(26, 4);
    add(2, 2);
    add(0x0201, 2), add(4, 2), add(1, 4), add(56, 4);
    add(0x0202, 2), add(4, 2), add(1, 4), add(4, 4);
    add(0, 4);
    for (const char letter : {'a', 'b', 'c', 'd'}) exif.push_back(uint8_t(letter));
    return exif;
}

TEST_F(FileAccess, MarksExifDataAndDropsWhatIsNone) {
    for (const bool isLittle : {true, false}) {
        const std::vector<uint8_t> marked = exifWithThumbnail(isLittle);
        EXPECT_EQ(withMark(marked), marked);
        EXPECT_EQ(withMark({marked.begin() + kExifMark.size(), marked.end()}), marked);
        std::vector<uint8_t> damaged = marked;
        damaged[3] = 'x';
        EXPECT_TRUE(withMark(damaged).empty());
    }
    EXPECT_TRUE(withMark({}).empty());
}

TEST_F(FileAccess, DropsTheSmallPictureInExifData) {
    for (const bool isLittle : {true, false}) {
        const std::vector<uint8_t> before = exifWithThumbnail(isLittle), after = withoutThumbnail(before);
        ASSERT_EQ(after.size(), before.size());
        const size_t link = 6 + 8 + 2 + 12;
        EXPECT_TRUE(std::equal(before.begin(), before.begin() + link, after.begin()));
        EXPECT_TRUE(std::all_of(after.begin() + link, after.end(), [](uint8_t byte) { return byte == 0; }));
        EXPECT_EQ(withoutThumbnail(after), after);
        // Data that ends anywhere is read to its end and no further.
        for (size_t size = 0; size < before.size(); ++size)
            EXPECT_EQ(withoutThumbnail({before.begin(), before.begin() + ptrdiff_t(size)}).size(), size);
    }
}

class Batches : public CliTest {
protected:
    CliResult apply(std::vector<std::string> words) const {
        words.insert(words.begin(), "apply");
        words.push_back("invert(#RGB)");
        return krlimage(words);
    }
};

TEST_F(Batches, MirrorFoldersWithinFolders) {
    fs::create_directories(at("in/a/b"));
    for (const char* name : {"in/1.pam", "in/a/2.pam", "in/a/b/3.pam"}) picture(name);
    ASSERT_EQ(apply({at("in"), "-r", "-o", at("out")}).code, 0);
    for (const char* name : {"out/1.pam", "out/a/2.pam", "out/a/b/3.pam"})
        EXPECT_TRUE(fs::exists(at(name))) << name;
    ASSERT_EQ(apply({at("in"), "-o", at("flat")}).code, 0);
    EXPECT_FALSE(fs::exists(at("flat/a")));
}

TEST_F(Batches, NameOutputsByATemplate) {
    fs::create_directories(at("in/a"));
    picture("in/1.pam"), picture("in/a/2.pam");
    const CliResult done = apply({at("in"), "-r", "-o", at("out"), "--look", "noir", "--format", "png",
                                  "--name", "{folder}/{n}_{stem}_{look}.{ext}"});
    ASSERT_EQ(done.code, 0) << done.err;
    EXPECT_TRUE(fs::exists(at("out/1_1_noir.png")));
    EXPECT_TRUE(fs::exists(at("out/a/2_2_noir.png")));
    ASSERT_EQ(
        apply({at("in"), "-o", at("out"), "--look", "noir", "--look", "warm-evening", "--name", "{look}.pam"})
            .code,
        0);
    EXPECT_TRUE(fs::exists(at("out/noir+warm-evening.pam")));
    const CliResult bad = apply({at("in"), "-o", at("out"), "--name", "{stam}.png"});
    EXPECT_EQ(bad.code, 2);
    EXPECT_TELLS(bad.err, "--name: {stam} is unknown; there is {folder}, {stem}");
}

TEST_F(Batches, LeaveOutWhatIsDone) {
    fs::create_directories(at("in"));
    const std::string one = picture("in/1.pam");
    picture("in/2.pam");
    ASSERT_EQ(apply({one, "-o", at("out/")}).code, 0);
    const CliResult done = apply({at("in"), "-o", at("out"), "--skip-existing"});
    EXPECT_EQ(done.code, 0) << done.err;
    EXPECT_TELLS(done.err, "note: skipped 1 of 2 pictures, which are done\n");
    EXPECT_TELLS(apply({at("in"), "-o", at("out"), "--newer"}).err, "skipped 2 of 2 pictures");
    fs::last_write_time(one, fs::last_write_time(at("out/1.pam")) + std::chrono::hours(1));
    EXPECT_TELLS(apply({at("in"), "-o", at("out"), "--newer"}).err, "skipped 1 of 2 pictures");
}

TEST_F(Batches, AreShownBeforeTheyRun) {
    fs::create_directories(at("in"));
    picture("in/1.pam");
    const CliResult done = apply({at("in"), "-o", at("out"), "--dry-run"});
    EXPECT_EQ(done.code, 0) << done.err;
    EXPECT_EQ(done.out, at("in/1.pam") + " -> " + at("out/1.pam") + "\n");
    EXPECT_FALSE(fs::exists(at("out")));
}

TEST_F(Batches, TakeAListOfInputs) {
    const std::string list = text("list", picture("1.pam") + '\n' + picture("2.pam") + "\n\n");
    ASSERT_EQ(apply({"--from", list, "-o", at("out")}).code, 0);
    EXPECT_TRUE(fs::exists(at("out/1.pam")) && fs::exists(at("out/2.pam")));
}

TEST_F(Batches, SayWhichPicturesTheyPassOver) {
    fs::create_directories(at("in"));
    picture("in/1.pam"), picture("in/.hidden.pam");
    text("in/a.pgm", "P5 1 1 255 x"), text("in/b.jxl", "x");
    const CliResult done = apply({at("in"), "-o", at("out")});
    EXPECT_EQ(done.code, 0) << done.err;
    EXPECT_TELLS(done.err, "skipped " + at("in/a.pgm") + ": the format is read but not written");
    EXPECT_TELLS(done.err, "skipped " + at("in/b.jxl") + ": pictures of this format cannot be read");
    EXPECT_TRUE(fs::exists(at("out/1.pam")));
    EXPECT_FALSE(fs::exists(at("out/.hidden.pam")));
}

using Compare = CliTest;

TEST_F(Compare, MeasuresHowFarPicturesDiffer) {
    Bitmap a = noise(4, 3), b = a;
    b.pixels[6].green = uint8_t(b.pixels[6].green ^ 2);
    writePicture(at("a.pam"), a), writePicture(at("b.pam"), b), writePicture(at("c.pam"), noise(3, 3));
    const CliResult same = krlimage({"compare", at("a.pam"), at("a.pam")});
    EXPECT_EQ(same.code, 0);
    EXPECT_TELLS(same.out, "pixels that differ  0 of 12\nPSNR                infinite\n");
    const CliResult other = krlimage({"compare", at("a.pam"), at("b.pam"), "-o", at("d.pam")});
    EXPECT_EQ(other.code, 1);
    EXPECT_EQ(other.out,
              "largest difference  2\nmean difference     0.042\npixels that differ  1 of 12\n"
              "PSNR                58.923 dB\nSSIM                1.0\nfirst at            2, 1\n");
    EXPECT_EQ(readPicture(at("d.pam")).pixels[6], (Pixel{0, 2, 0, 255}));
    EXPECT_EQ(krlimage({"compare", at("a.pam"), at("b.pam"), "--max", "2"}).code, 0);
    EXPECT_EQ(krlimage({"compare", at("a.pam"), at("b.pam"), "--max", "1"}).code, 1);
    const CliResult sizes = krlimage({"compare", at("a.pam"), at("c.pam")});
    EXPECT_EQ(sizes.code, 1);
    EXPECT_TELLS(sizes.err, "the sizes differ");
}

TEST_F(Compare, ShowsTheFirstPixelAndTheAlphaThatDiffer) {
    Bitmap a = noise(4, 3), b = a;
    a.pixels[5].alpha = 200, b.pixels[5].alpha = 190;
    b.pixels[9].blue = uint8_t(b.pixels[9].blue ^ 1);
    writePicture(at("a.pam"), a), writePicture(at("b.pam"), b);
    EXPECT_TELLS(krlimage({"compare", at("a.pam"), at("b.pam"), "-o", at("d.pam")}).out,
                 "first at            1, 1\n");
    const Bitmap shown = readPicture(at("d.pam"));
    EXPECT_EQ(shown.pixels[5], (Pixel{10, 10, 10, 255}));
    EXPECT_EQ(shown.pixels[9], (Pixel{1, 0, 0, 255}));
}

TEST_F(Compare, SaysHowAlikePicturesAre) {
    const auto plain = [](uint8_t level, uint8_t alpha) {
        return Bitmap{20, 13, std::vector<Pixel>(260, Pixel{level, level, level, alpha}), nullptr};
    };
    // Without contrast, the term of brightness remains: (2 * 100 * 120 + c) / (100² + 120² + c), c = 2.55².
    EXPECT_NEAR(structuralSimilarity(plain(100, 255), plain(120, 255)), 24006.5025 / 24406.5025, 1e-12);
    EXPECT_NEAR(structuralSimilarity(plain(100, 255), plain(100, 0)), 6.5025 / (65025 + 6.5025), 1e-12);
    Bitmap a = noise(37, 21), b = a;
    EXPECT_EQ(structuralSimilarity(a, b), 1);
    for (Pixel& p : b.pixels)
        p = {uint8_t(255 - p.blue), uint8_t(255 - p.green), uint8_t(255 - p.red), p.alpha};
    EXPECT_LT(structuralSimilarity(a, b), -0.8) << "a negative";
    // One pixel in a corner is in one window, and counts no less than elsewhere.
    b = plain(100, 255), a = b;
    b.pixels.back() = {0, 0, 0, 255};
    EXPECT_LT(structuralSimilarity(a, b), 1);
    EXPECT_EQ(structuralSimilarity(Bitmap{1, 1, {Pixel{1, 2, 3, 4}}, nullptr},
                                   Bitmap{1, 1, {Pixel{1, 2, 3, 4}}, nullptr}),
              1);
    writePicture(at("a.pam"), plain(100, 255)), writePicture(at("b.pam"), plain(120, 255));
    EXPECT_TELLS(krlimage({"compare", at("a.pam"), at("b.pam")}).out, "SSIM                0.984\n");
    EXPECT_TELLS(krlimage({"compare", at("a.pam"), at("b.pam"), "--json"}).out, "\"ssim\": 0.98");
}

using Find = CliTest;

TEST_F(Find, ListsWhatFitsBestFirst) {
    const CliResult old = krlimage({"find", "old brown print"});
    EXPECT_EQ(old.code, 0);
    EXPECT_EQ(old.out.rfind("sepia", 0), 0u) << old.out;
    EXPECT_EQ(krlimage({"find", "vignettes"}).out.rfind("vignette", 0), 0u);
    const CliResult none = krlimage({"find", "xyzzy"});
    EXPECT_EQ(none.code, 1);
    EXPECT_EQ(none.err, "krlimage: no method fits; krlimage list shows them all\n");
}

class NamedFiles : public CliTest {};

TEST_F(NamedFiles, AreOpenToAScript) {
    fs::create_directories(at("scripts"));
    const std::string script =
        text("scripts/copy.ls", "on main names\n picture = image(names[1])\n picture.save(names[2])\nend\n");
    const CliResult done = krlimage({"run", script, picture("in.pam"), at("out.pam")});
    EXPECT_EQ(done.code, 0) << done.err;
    EXPECT_TRUE(fs::exists(at("out.pam")));
    const std::string other =
        text("scripts/other.ls", "on main names\n put image(\"" + at("in.pam") + "\").width\nend\n");
    EXPECT_TELLS(krlimage({"run", other, at("out.pam")}).err, "is outside the folders");
    const std::string nameless =
        text("scripts/none.ls", "on main\n picture = image(2, 2, 32)\n picture.save(\"\")\nend\n");
    EXPECT_TELLS(krlimage({"run", nameless}).err, "expected a file name, got \"\"");
}

}  // namespace
}  // namespace krl::player
