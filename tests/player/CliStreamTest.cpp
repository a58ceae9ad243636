#include "memory/CountedMemory.h"
#include "player/pictures/PictureFiles.h"
#include "player/pictures/PixelLimit.h"
#include "tests/player/CliRun.h"

namespace krl::player {
namespace {

/// `krlimage apply` on pictures of more than a few strips; `--timings` makes it read them whole.
class StreamedApply : public CliTest {
protected:
    static constexpr int32_t kLargeWidth = 1024, kLargeHeight = 1100;

    std::string large(const std::string& name, int32_t height = kLargeHeight) const {
        return picture(name, kLargeWidth, height);
    }

    CliResult apply(const std::string& input, const std::string& output,
                    std::vector<std::string> words) const {
        words.insert(words.begin(), {"apply", input, "-o", output});
        return krlimage(words);
    }
};

TEST_F(StreamedApply, WritesTheBytesOfWholePictures) {
    const std::vector<std::string> words = {"brightness(20)", "saturation(40)", "invert(#RGB)"};
    std::vector<std::string> timed = words;
    timed.push_back("--timings");
    std::vector<std::string> names = {"a.pam"};
#if defined(KRL_WITH_PNG_JPEG)
    names = {"a.pam", "a.png", "a.jpg"};
#endif
    for (const std::string& name : names) {
        const std::string input = large(name);
        const CliResult streamed = apply(input, at("b.pam"), words), whole = apply(input, at("c.pam"), timed);
        EXPECT_EQ(streamed.code, 0) << streamed.err;
        EXPECT_EQ(streamed.out, whole.out);
        EXPECT_TRUE(contentOf(at("b.pam")) == contentOf(at("c.pam"))) << name;
    }
}

TEST_F(StreamedApply, TakesMemoryThatDoesNotGrowWithTheHeight) {
    const auto peak = [&](int32_t height, const std::vector<std::string>& words) {
        const std::string input = large("a.pam", height);
        const test::PeakOfBytes most;
        EXPECT_EQ(apply(input, at("b.pam"), words).code, 0);
        return most.bytes();
    };
    constexpr int64_t slack = 1 << 20, picture = int64_t{kLargeWidth} * 6000 * 4;
    const int64_t low = peak(3000, {"sepia", "invert(#RGB)"}), high = peak(6000, {"sepia", "invert(#RGB)"});
    EXPECT_LT(high, low + slack);
    EXPECT_LT(high, 20 << 20);
    EXPECT_GT(peak(6000, {"sepia", "invert(#RGB)", "--timings"}), picture);
}

#if defined(KRL_WITH_PNG_JPEG)
TEST_F(StreamedApply, IsForPicturesBeyondTwoGibibytes) {
    constexpr int32_t width = 50'000, height = 10'738;
    constexpr uint64_t bytes = uint64_t{width} * height * 4;
    static_assert(bytes > uint64_t{1} << 31);
    const std::string header = "P7\nWIDTH " + std::to_string(width) + "\nHEIGHT " + std::to_string(height) +
                               "\nDEPTH 4\nMAXVAL 255\nTUPLTYPE RGB_ALPHA\nENDHDR\n";
    const std::string input = text("a.pam", header), output = at("b.jpg");
    std::filesystem::resize_file(input, header.size() + bytes);  // zeros that take no room on a disk
    EXPECT_TELLS(apply(input, output, {"brightness(20)"}).err, "--max-pixels is 268435456");
    EXPECT_TELLS(apply(input, output, {"--max-pixels=1G", "fastGaussianBlur"}).err,
                 "pictures in memory are limited to 2 GiB");
    EXPECT_EQ(files(), 1u);
    const test::PeakOfBytes most;
    const CliResult done = apply(input, output, {"--max-pixels=1G", "brightness(20)"});
    EXPECT_EQ(done.code, 0) << done.err;
    EXPECT_LT(most.bytes(), 60 << 20);
    const PixelLimit limit(int64_t{1} << 30);
    const PictureSize size = readPictureSize(output, FrameChoice::First);
    EXPECT_EQ(size.width, width);
    EXPECT_EQ(size.height, height);
}
#endif

TEST_F(StreamedApply, ReplacesItsInput) {
    const std::string input = large("a.pam");
    const std::string before = contentOf(input);
    for (int i = 0; i < 2; ++i) EXPECT_EQ(krlimage({"apply", "--in-place", input, "invert(#RGB)"}).code, 0);
    EXPECT_TRUE(contentOf(input) == before);
}

TEST_F(StreamedApply, LetsArgumentsMove) {
    const std::string input = large("a.pam");
    EXPECT_EQ(apply(input, at("b.pam"), {"brightness(20 + frame)"}).code, 0);
    EXPECT_EQ(apply(input, at("c.pam"), {"brightness(20 + frame)", "--timings"}).code, 0);
    EXPECT_TRUE(contentOf(at("b.pam")) == contentOf(at("c.pam")));
}

TEST_F(StreamedApply, SettlesEveryPictureOfABatch) {
    for (const char* name : {"a.pam", "b.pam", "c.pam"}) large(name);
    std::ofstream(at("b.pam"), std::ios::in | std::ios::out | std::ios::binary).close();
    std::filesystem::resize_file(at("b.pam"), 2'000'000);
    const CliResult done = krlimage(
        {"apply", at("a.pam"), at("b.pam"), at("c.pam"), "-o", at("out"), "-j", "2", "invert(#RGB)"});
    EXPECT_EQ(done.code, 1);
    EXPECT_TELLS(done.err, "2 of 3 pictures done, 1 failed");
    EXPECT_EQ(files(), 5u);
}

}  // namespace
}  // namespace krl::player
