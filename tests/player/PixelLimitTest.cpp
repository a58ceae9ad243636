#include <sys/resource.h>

#include "player/pictures/FileAccess.h"
#include "player/pictures/PixelLimit.h"
#include "tests/player/CliRun.h"

namespace krl::player {
namespace {

/// Bits as deflate has them, the lowest of a byte first.
class BitWriter {
public:
    void bits(uint32_t value, int count) {
        for (int i = 0; i < count; ++i) {
            if (used_ % 8 == 0) bytes += '\0';
            bytes.back() = static_cast<char>(bytes.back() | (value >> i & 1) << used_ % 8);
            ++used_;
        }
    }
    std::string bytes;

private:
    int used_ = 0;
};

std::string bigEndian(uint32_t value) {
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8) bytes += static_cast<char>(value >> shift);
    return bytes;
}

uint32_t crcOf(const std::string& bytes) {
    uint32_t crc = UINT32_MAX;
    for (const char byte : bytes) {
        crc ^= static_cast<uint8_t>(byte);
        for (int bit = 0; bit < 8; ++bit) crc = crc >> 1 ^ (crc & 1 ? 0xEDB88320u : 0u);
    }
    return ~crc;
}

std::string chunk(const std::string& type, const std::string& content) {
    return bigEndian(static_cast<uint32_t>(content.size())) + type + content +
           bigEndian(crcOf(type + content));
}

/// So many zeros in one block of the fixed code: one as it is, then copies of 258, then single ones.
std::string packedZeros(uint64_t count) {
    BitWriter writer;
    writer.bits(3, 3);  // the last block, fixed code
    const auto zero = [&] { writer.bits(0b00001100, 8); };
    zero();
    for (uint64_t left = count - 1; left > 0;) {
        if (left < 258) {
            zero();
            --left;
            continue;
        }
        writer.bits(0b10100011, 8);  // the code of length 258, its highest bit first
        writer.bits(0, 5);           // at distance 1
        left -= 258;
    }
    writer.bits(0, 7);  // the end
    return "\x78\x01" + writer.bytes + bigEndian(static_cast<uint32_t>(count % 65521 << 16 | 1));
}

/// A whole and valid PNG of black pixels, one bit each.
std::string blackPng(uint32_t width, uint32_t height) {
    const std::string header = bigEndian(width) + bigEndian(height) + std::string("\1\0\0\0\0", 5);
    const uint64_t bytes = uint64_t{height} * (1 + (width + 7) / 8);
    return "\x89PNG\r\n\x1A\n" + chunk("IHDR", header) + chunk("IDAT", packedZeros(bytes)) +
           chunk("IEND", "");
}

int64_t largestMemory() {
    rusage used{};
    getrusage(RUSAGE_SELF, &used);
    return int64_t{used.ru_maxrss} << 10;
}

class PixelLimits : public CliTest {
protected:
    static std::string errorOf(const std::string& path) {
        try {
            readPicture(path);
        } catch (const PictureError& error) {
            return error.what();
        }
        return "";
    }
};

TEST_F(PixelLimits, HoldForEveryFormat) {
    for (const char* name : {"a.pam", "a.png", "a.jpg", "a.tif", "a.webp", "a.gif"}) {
        if (!formatOf(name)) continue;
        const std::string path = picture(name, 40, 30);
        {
            const PixelLimit limit(1200);
            EXPECT_EQ(errorOf(path), "");
        }
        const PixelLimit limit(1199);
        EXPECT_EQ(errorOf(path), path + " is too large: 40 by 30 pixels, and --max-pixels is 1199");
        EXPECT_THROW(readPictureSize(path, FrameChoice::First), PictureError) << name;
    }
    EXPECT_EQ(PixelLimit::current(), kUsualPixelLimit);
}

TEST_F(PixelLimits, CountThePixelsOfAllFrames) {
    if (!formatOf("a.gif")) GTEST_SKIP() << "needs animations";
    PictureFrames frames;
    for (uint32_t seed = 0; seed < 5; ++seed) frames.pictures.push_back(noise(20, 10, seed));
    writeFramesOf(at("none"), at("a.gif"), frames, {});
    const PixelLimit limit(999);
    EXPECT_EQ(readFrames(at("a.gif"), FrameChoice::First).pictures.size(), 1u);
    EXPECT_THROW(readFrames(at("a.gif"), FrameChoice::All), PictureError);
    EXPECT_THROW(readPictureSize(at("a.gif"), FrameChoice::All), PictureError);
    const PixelLimit wider(1000);
    EXPECT_EQ(readFrames(at("a.gif"), FrameChoice::All).pictures.size(), 5u);
}

TEST_F(PixelLimits, AreThereBeforeAnythingIsUnpacked) {
    if (!isPictureName("a.png")) GTEST_SKIP() << "needs PNG";
    EXPECT_EQ(errorOf(text("fine.png", blackPng(300, 200))), "");
    const std::string bomb = text("bomb.png", blackPng(20000, 20000));
    EXPECT_LT(std::filesystem::file_size(bomb), 400'000u);
    const int64_t before = largestMemory();
    EXPECT_EQ(errorOf(bomb), bomb + " is too large: 20000 by 20000 pixels, and --max-pixels is 268435456");
    // A header that promises more than the file holds costs nothing either.
    EXPECT_TELLS(errorOf(text("bomb.pam",
                              "P7\nWIDTH 16000\nHEIGHT 16000\nDEPTH 4\nMAXVAL 255\n"
                              "TUPLTYPE RGB_ALPHA\nENDHDR\nabc")),
                 "it ends after 3 of 1024000000 bytes of pixels");
    EXPECT_TELLS(errorOf(text("bomb.ppm", "P6\n16000 16000\n255\nabc")), "it ends in row 1 of 16000");
    EXPECT_LT(largestMemory() - before, 100 << 20);
}

TEST_F(PixelLimits, AreAnOptionOfAllThatReadsPictures) {
    const std::string in = picture("in.pam", 40, 30), out = at("out.pam"), small = picture("small.pam");
    const std::string script = text(
        "script.ls", "on main\n  put image(\"in.pam\").width\n  image(\"in.pam\").save(\"out.pam\")\nend\n");
    const std::vector<std::vector<std::string>> commands = {
        {"apply", in, "-o", out, "invert"},
        {"apply", small, "-o", out, "composite(image(\"" + in + "\"), #normal, fit: #stretch)"},
        {"apply", in, "-o", out, "--plan", "invert"},
        {"run", script},
        {"show", in, "--as", "blocks"},
        {"sweep", in, "-o", out, "brightness(0..20 by 10)"},
        {"gallery", in, "-o", at("sheet")},
        {"compare", in, in},
    };
    const size_t there = files();
    for (std::vector<std::string> words : commands) {
        words.insert(words.begin() + 1, "--max-pixels=1199");
        const CliResult done = krlimage(words);
        EXPECT_NE(done.code, 0) << words[0];
        EXPECT_TELLS(done.err + done.out, "is too large: 40 by 30 pixels, and --max-pixels is 1199")
            << words[0];
    }
    EXPECT_EQ(files(), there) << "nothing half-written";
    EXPECT_EQ(PixelLimit::current(), kUsualPixelLimit);
    for (const char* enough : {"1200", "1.2K", "5M", "1G", "1099511627776"})
        EXPECT_EQ(krlimage({"compare", "--max-pixels", enough, in, in}).code, enough[1] == '.' ? 2 : 0)
            << enough;
    for (const char* wrong : {"0", "-1", "2T", "many", "1099511627777"}) {
        const CliResult refused = krlimage({"compare", std::string("--max-pixels=") + wrong, in, in});
        EXPECT_EQ(refused.code, 2) << wrong;
        EXPECT_TELLS(refused.err,
                     "--max-pixels: expected a number of pixels such as 100M or 4G, at most 1099511627776");
    }
}

TEST_F(PixelLimits, SkipOnePictureOfABatch) {
    std::filesystem::create_directories(at("in"));
    for (const char* name : {"in/a.pam", "in/c.pam"}) picture(name);
    picture("in/b.pam", 100, 100);
    const CliResult done = krlimage({"apply", at("in"), "-o", at("out"), "--max-pixels", "9999", "invert"});
    EXPECT_EQ(done.code, 1);
    EXPECT_TELLS(done.err, at("in/b.pam") + " is too large: 100 by 100 pixels, and --max-pixels is 9999");
    EXPECT_TRUE(std::filesystem::exists(at("out/a.pam")) && std::filesystem::exists(at("out/c.pam")));
    EXPECT_EQ(files(), 5u);
}

}  // namespace
}  // namespace krl::player
