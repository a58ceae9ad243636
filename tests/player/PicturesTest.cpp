#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>

#if !defined(_WIN32)
#include <sys/resource.h>
#endif

#include "core/Random.h"
#include "player/pictures/AtomicFile.h"
#include "player/pictures/Formats.h"
#include "player/pictures/PictureMetadata.h"
#include "tests/player/FailingClose.h"

namespace krl::player {
namespace {

namespace fs = std::filesystem;

/// A temporary folder, removed at the end of the test.
class Pictures : public testing::Test {
protected:
    Pictures() {
        folder =
            fs::temp_directory_path() /
            ("krl-pictures-" + std::string(testing::UnitTest::GetInstance()->current_test_info()->name()));
        fs::remove_all(folder);
        fs::create_directories(folder);
    }
    ~Pictures() override { fs::remove_all(folder); }

    static Bitmap noise(int32_t width, int32_t height) {
        Bitmap picture{width, height, std::vector<Pixel>(size_t(width) * size_t(height)), nullptr};
        Random random(5);
        for (Pixel& p : picture.pixels)
            p = {uint8_t(random.next()), uint8_t(random.next()), uint8_t(random.next()),
                 uint8_t(random.next() / 64)};
        return picture;
    }

    void writeText(const fs::path& path, const std::string& text) {
        std::ofstream(path, std::ios::binary) << text;
    }

    /// The error of reading `path`.
    std::string failureOf(const fs::path& path) {
        try {
            readPicture(path);
        } catch (const PictureError& error) {
            return error.what();
        }
        return "";
    }

    size_t filesInFolder() const {
        return size_t(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
    }

    fs::path folder;
};

TEST_F(Pictures, KeepEveryByteThroughPam) {
    const Bitmap picture = noise(13, 7);
    writePicture(folder / "a.pam", picture);
    const Bitmap back = readPicture(folder / "a.pam");
    EXPECT_EQ(back.width, 13);
    EXPECT_EQ(back.height, 7);
    EXPECT_EQ(back.pixels, picture.pixels);
}

#if defined(KRL_WITH_VIPS)
TEST_F(Pictures, KeepEveryByteThroughPngEvenUnderFullTransparency) {
    Bitmap picture = noise(13, 7);
    picture.pixels[0].alpha = 0;
    writePicture(folder / "a.png", picture);
    EXPECT_EQ(readPicture(folder / "a.png").pixels, picture.pixels);
}

TEST_F(Pictures, KeepTheirSizeInEveryFormat) {
    for (const char* name : {"a.jpg", "b.tif", "c.webp", "d.png", "e.JPEG", "f[1].png"}) {
        Bitmap picture = noise(16, 9);
        for (Pixel& p : picture.pixels) p = {60, 120, 180, 255};
        writePicture(folder / name, picture);
        const Bitmap back = readPicture(folder / name);
        ASSERT_EQ(back.pixels.size(), picture.pixels.size()) << name;
        EXPECT_NEAR(back.pixels[40].red, 180, 3) << name;
        EXPECT_NEAR(back.pixels[40].blue, 60, 3) << name;
        EXPECT_EQ(back.pixels[40].alpha, 255) << name;
    }
}

TEST_F(Pictures, KeepTheirColourProfile) {
    auto metadata = std::make_shared<PictureMetadata>();
    metadata->pixelsPerMillimetreX = metadata->pixelsPerMillimetreY = 3.0;
    metadata->xmp = {'<', 'x', '/', '>'};
    Bitmap picture = noise(4, 4);
    picture.metadata = metadata;
    writePicture(folder / "a.png", picture);
    const Bitmap back = readPicture(folder / "a.png");
    ASSERT_TRUE(back.metadata);
    EXPECT_EQ(back.metadata->xmp, metadata->xmp);
    EXPECT_NEAR(back.metadata->pixelsPerMillimetreX, 3.0, 0.01);
}
#endif

TEST_F(Pictures, AreRecognisedByContentNotByName) {
    writePicture(folder / "a.pam", noise(3, 2));
    fs::rename(folder / "a.pam", folder / "a.png");
    EXPECT_EQ(readPicture(folder / "a.png").width, 3);
}

TEST_F(Pictures, ReportWhyTheyCannotBeRead) {
    EXPECT_NE(failureOf(folder / "none.png").find("No such file"), std::string::npos);
    EXPECT_NE(failureOf(folder).find("cannot read"), std::string::npos);
    writeText(folder / "words.png", "these are words and no picture at all");
    EXPECT_NE(failureOf(folder / "words.png").find("words.png"), std::string::npos);
    const std::string start = "P7\nWIDTH 4\nHEIGHT 4\n";
    writeText(folder / "short.pam", start + "DEPTH 4\nMAXVAL 255\nTUPLTYPE RGB_ALPHA\nENDHDR\nxx");
    EXPECT_NE(failureOf(folder / "short.pam").find("ends after 2 of 64 bytes"), std::string::npos);
    writeText(folder / "grey.pam", start + "DEPTH 1\nMAXVAL 255\nTUPLTYPE GRAYSCALE\nENDHDR\n");
    EXPECT_NE(failureOf(folder / "grey.pam").find("RGB_ALPHA"), std::string::npos);
    writeText(folder / "open.pam", start);
    EXPECT_NE(failureOf(folder / "open.pam").find("header has no end"), std::string::npos);
    writeText(folder / "odd.pam", "P7\nWIDTH x\n");
    EXPECT_NE(failureOf(folder / "odd.pam").find("WIDTH x"), std::string::npos);
}

TEST_F(Pictures, TooLargeForMemoryAreRefusedBeforeAllocating) {
    writeText(folder / "huge.pam",
              "P7\nWIDTH 65536\nHEIGHT 65536\nDEPTH 4\nMAXVAL 255\nTUPLTYPE RGB_ALPHA\nENDHDR\n");
    EXPECT_NE(failureOf(folder / "huge.pam").find("too large"), std::string::npos);
    EXPECT_NO_THROW(requirePossibleSize("x", 1 << 15, 1 << 14));
    EXPECT_THROW(requirePossibleSize("x", (1 << 15) + 1, 1 << 14), PictureError);
    EXPECT_THROW(requirePictureSize("x", 0, 4), PictureError);
}

TEST_F(Pictures, LeaveAnExistingFileIntactWhenWritingFails) {
    writeText(folder / "kept.txt", "old");
    EXPECT_THROW(writePicture(folder / "kept.txt", noise(2, 2)), PictureError);
    EXPECT_THROW(writePicture(folder / "no" / "such" / "folder.pam", noise(2, 2)), PictureError);
    std::ostringstream text;
    text << std::ifstream(folder / "kept.txt").rdbuf();
    EXPECT_EQ(text.str(), "old");
    EXPECT_EQ(filesInFolder(), 1u);
}

TEST_F(Pictures, CanHaveTheLongestPossibleNames) {
    const std::string name = std::string(251, 'n') + ".pam";
    writePicture(folder / name, noise(2, 2));
    EXPECT_EQ(readPicture(folder / name).width, 2);
}

#if !defined(_WIN32)
/// Limits the size of files during its lifetime, like a full disk.
class FullDisk {
public:
    explicit FullDisk(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit small{bytes, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &small);
    }
    ~FullDisk() {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }

private:
    rlimit before_{};
    void (*handler_)(int);
};

TEST_F(Pictures, ReportWhyTheyCannotBeWrittenByTheirOwnNames) {
    for (const char* name : {"a.pam", "b.png", "c.jpg", "d.tif", "e.webp"}) {
        if (!isPictureName(name)) continue;
        std::string message;
        try {
            const FullDisk disk(4096);
            writePicture(folder / name, noise(200, 200));
        } catch (const PictureError& error) {
            message = error.what();
        }
        EXPECT_EQ(message, "cannot write " + (folder / name).string() + ": File too large");
    }
    EXPECT_EQ(filesInFolder(), 0u);
}

/// A file that exists and opens, but cannot be read.
TEST_F(Pictures, ReportWhyReadingFails) {
    const auto failureOfPam = [](const fs::path& path) -> std::string {
        try {
            readWhole(kNetpbmReader, InputFile(path));
        } catch (const PictureError& error) {
            return error.what();
        }
        return "";
    };
    EXPECT_EQ(failureOfPam("/proc/self/mem"), "cannot read /proc/self/mem: Input/output error");
    EXPECT_EQ(failureOf("/proc/self/mem"), "cannot read /proc/self/mem: Input/output error");
    EXPECT_EQ(failureOfPam("/none.pam"), "cannot read /none.pam: No such file or directory");
}

TEST_F(Pictures, WithEndlessHeadersAreRejected) {
    writeText(folder / "endless.pam", "P7\n#" + std::string(100000, 'x'));
    EXPECT_NE(failureOf(folder / "endless.pam").find("a header line is too long"), std::string::npos);
}

TEST_F(Pictures, AreNotWrittenWhereClosingThemFails) {
    for (const char* name : {"a.pam", "b.png", "c.tif"}) {
        if (!isPictureName(name)) continue;
        std::string message;
        try {
            const FailingClose failing;
            writePicture(folder / name, noise(20, 20));
        } catch (const PictureError& error) {
            message = error.what();
        }
        EXPECT_EQ(message, "cannot write " + (folder / name).string() + ": Input/output error");
    }
    EXPECT_EQ(filesInFolder(), 0u);
}

TEST_F(Pictures, AreReadOnlyFromFiles) {
    EXPECT_EQ(failureOf("/dev/null"), "cannot read /dev/null: expected a file, got a pipe or device");
    EXPECT_EQ(failureOf(folder), "cannot read " + folder.string() + ": is a folder");
}
#endif

TEST_F(Pictures, LeaveNothingWhenWritingIsAbandoned) {
    { AtomicFile(folder / "given.pam").write("P7"); }
    EXPECT_EQ(filesInFolder(), 0u);
}

#if !defined(_WIN32)
/// An interrupted program takes a moment to end, while its other threads keep running.
TEST_F(Pictures, LeaveNothingWhenTheProgramIsInterrupted) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto interrupted = [this] {
        const std::array names{"a.pam", "b.pam", "c.pam", "d.pam"};
        std::vector<std::thread> writers;
        for (const char* name : names)
            writers.emplace_back([this, name] {
                for (;;) writePicture(folder / name, noise(100, 100));
            });
        // A file that is being written counts as a file too, but would leave nothing when removed.
        for (const char* name : names)
            while (!fs::exists(folder / name)) std::this_thread::yield();
        removeUnfinishedFiles();
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        std::_Exit(7);
    };
    EXPECT_EXIT(interrupted(), testing::ExitedWithCode(7), "");
    EXPECT_EQ(filesInFolder(), 4u);
    for (const auto& entry : fs::directory_iterator(folder)) {
        EXPECT_NE(entry.path().filename().string().front(), '.') << entry.path();
        EXPECT_EQ(readPicture(entry.path()).width, 100) << "every picture must be complete";
    }
}

#if defined(KRL_WITH_VIPS)
TEST_F(Pictures, AreNotRecreatedByTheLibraryWhenTheProgramIsInterrupted) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto interrupted = [this] {
        std::thread writer([this] { writePicture(folder / "a.png", noise(1500, 1500)); });
        while (filesInFolder() < 1) std::this_thread::yield();
        removeUnfinishedFiles();
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        std::_Exit(7);
    };
    EXPECT_EXIT(interrupted(), testing::ExitedWithCode(7), "");
    EXPECT_EQ(filesInFolder(), 0u);
}
#endif
#endif

}  // namespace
}  // namespace krl::player
