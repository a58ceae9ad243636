#include "player/pictures/PictureFiles.h"
#include "player/pictures/PictureMetadata.h"
#include "tests/player/CliRun.h"

#if defined(KRL_WITH_VIPS)

namespace krl::player {
namespace {

class Conversion : public CliTest {
protected:
    std::vector<Pixel> pixelsOf(const std::string& name, const std::string& content) {
        return readPicture(text(name, content)).pixels;
    }
};

constexpr Pixel opaque(int red, int green, int blue) {
    return {uint8_t(blue), uint8_t(green), uint8_t(red), 255};
}

std::string bytes(std::initializer_list<int> values) {
    std::string made;
    for (const int value : values) made += static_cast<char>(value);
    return made;
}

/// A TIFF of one row, `channels` samples a pixel; 2 and 4 have alpha. `format` is 1 for integers, 3 for
/// floats.
std::string tiff(int channels, int bits, int format, const std::string& samples) {
    const auto entry = [](int tag, int type, int count, int value) {
        return bytes({tag & 255, tag >> 8, type, 0, count, 0, 0, 0, value & 255, value >> 8, 0, 0});
    };
    const bool alpha = channels % 2 == 0;
    const int entries = 11 + alpha, size = static_cast<int>(samples.size());
    const int formatsAt = 8 + 2 + entries * 12 + 4, bitsAt = formatsAt + 2 * 4, pixelsAt = bitsAt + 2 * 4;
    // Up to two short values are stored in the entry itself: all are equal, so one word holds them.
    const auto each = [&](int tag, int value, int place) {
        if (channels > 2) return entry(tag, 3, channels, place);
        return bytes({tag & 255, tag >> 8, 3, 0, channels, 0, 0, 0, value, 0, value, 0});
    };
    const auto fourTimes = [](int value) { return bytes({value, 0, value, 0, value, 0, value, 0}); };
    std::string file = bytes({'I', 'I', 42, 0, 8, 0, 0, 0, entries, 0});
    file += entry(256, 3, 1, size / (bits / 8) / channels) + entry(257, 3, 1, 1);
    file += each(258, bits, bitsAt) + entry(259, 3, 1, 1) + entry(262, 3, 1, channels > 2 ? 2 : 1);
    file += entry(273, 4, 1, pixelsAt) + entry(277, 3, 1, channels) + entry(278, 3, 1, 1);
    file += entry(279, 4, 1, size) + entry(284, 3, 1, 1);
    if (alpha) file += entry(338, 3, 1, 2);
    file += each(339, format, formatsAt) + bytes({0, 0, 0, 0}) + fourTimes(format) + fourTimes(bits);
    return file + samples;
}

std::string floatTiff(int channels, const std::vector<float>& samples) {
    return tiff(channels, 32, 3,
                {reinterpret_cast<const char*>(samples.data()), samples.size() * sizeof(float)});
}

TEST_F(Conversion, MakesGreyThreeEqualColours) {
    EXPECT_EQ(pixelsOf("a.tif", tiff(1, 8, 1, bytes({0, 100, 255}))),
              (std::vector<Pixel>{opaque(0, 0, 0), opaque(100, 100, 100), opaque(255, 255, 255)}));
}

TEST_F(Conversion, KeepsTheHighByteOfSixteenBits) {
    EXPECT_EQ(pixelsOf("a.tif", tiff(3, 16, 1, bytes({0xff, 0x12, 0, 0x80, 0xff, 0xff, 1, 0, 0, 1, 3, 2}))),
              (std::vector<Pixel>{opaque(0x12, 0x80, 0xff), opaque(0, 1, 2)}));
    EXPECT_EQ(pixelsOf("b.tif", tiff(1, 16, 1, bytes({0x7f, 0x40, 0xff, 0xfe}))),
              (std::vector<Pixel>{opaque(0x40, 0x40, 0x40), opaque(0xfe, 0xfe, 0xfe)}));
}

TEST_F(Conversion, TellsWhatIsLost) {
    const std::string in = text("a.tif", tiff(1, 16, 1, bytes({0x7f, 0x40, 0xff, 0xfe})));
    const CliResult done = krlimage({"apply", in, "-o", at("out.png"), "invert(#RGB)"});
    EXPECT_EQ(done.code, 0) << done.err;
    EXPECT_EQ(done.err,
              "krlimage: note: " + in + " loses the precision of 16 bits a sample, as pictures have 8\n");
}

/// Linear 0.2158605 is level 128 in sRGB.
TEST_F(Conversion, TreatsFloatsAsLinearLightAndOneAsOpaque) {
    EXPECT_EQ(pixelsOf("rgb.tif", floatTiff(3, {0, 1, 0.2158605F, 2, -1, 1})),
              (std::vector<Pixel>{opaque(0, 255, 128), opaque(255, 0, 255)}));
    EXPECT_EQ(pixelsOf("rgba.tif", floatTiff(4, {1, 0, 0, 0.5F, 0, 0, 1, 1, 0, 1, 0, 0})),
              (std::vector<Pixel>{{0, 0, 255, 128}, {255, 0, 0, 255}, {0, 255, 0, 0}}));
    EXPECT_EQ(pixelsOf("grey.tif", floatTiff(1, {0, 0.2158605F, 1})),
              (std::vector<Pixel>{opaque(0, 0, 0), opaque(128, 128, 128), opaque(255, 255, 255)}));
    EXPECT_EQ(pixelsOf("greya.tif", floatTiff(2, {1, 0.5F, 0, 1})),
              (std::vector<Pixel>{{255, 255, 255, 128}, {0, 0, 0, 255}}));
}

/// A TIFF of 3 by 1 pixels, red, green and blue, with an EXIF orientation.
std::string turnedTiff(int orientation) {
    const auto entry = [](int tag, int type, int count, int value) {
        return bytes({tag & 255, tag >> 8, type, 0, count, 0, 0, 0, value & 255, value >> 8, 0, 0});
    };
    constexpr int entries = 10, pixelsAt = 8 + 2 + entries * 12 + 4, bitsAt = pixelsAt + 10;
    return bytes({'I', 'I', 42, 0, 8, 0, 0, 0, entries, 0}) + entry(256, 3, 1, 3) + entry(257, 3, 1, 1) +
           entry(258, 3, 3, bitsAt) + entry(259, 3, 1, 1) + entry(262, 3, 1, 2) + entry(273, 4, 1, pixelsAt) +
           entry(274, 3, 1, orientation) + entry(277, 3, 1, 3) + entry(278, 3, 1, 1) + entry(279, 4, 1, 9) +
           bytes({0, 0, 0, 0, 255, 0, 0, 0, 255, 0, 0, 0, 255, 0, 8, 0, 8, 0, 8, 0});
}

TEST_F(Conversion, RotatesAPictureByItsOrientation) {
    const Pixel red = opaque(255, 0, 0), green = opaque(0, 255, 0), blue = opaque(0, 0, 255);
    EXPECT_EQ(pixelsOf("upright.tif", turnedTiff(1)), (std::vector<Pixel>{red, green, blue}));
    EXPECT_EQ(pixelsOf("mirrored.tif", turnedTiff(2)), (std::vector<Pixel>{blue, green, red}));
    const Bitmap turned = readPicture(text("turned.tif", turnedTiff(6)));
    EXPECT_EQ(turned.width, 1);
    EXPECT_EQ(turned.height, 3);
    EXPECT_EQ(turned.pixels, (std::vector<Pixel>{red, green, blue}));
    EXPECT_EQ(readPicture(text("other.tif", turnedTiff(8))).pixels, (std::vector<Pixel>{blue, green, red}));
}

TEST_F(Conversion, DoesNotRotateAPictureTwice) {
    writePicture(at("again.tif"), readPicture(text("turned.tif", turnedTiff(6))));
    EXPECT_EQ(readPicture(at("again.tif")).height, 3);
}

TEST_F(Conversion, PreservesProfileAndResolutionThroughAChain) {
    auto metadata = std::make_shared<PictureMetadata>();
    for (int i = 0; i < 400; ++i) metadata->colourProfile.push_back(uint8_t(i * 7));
    metadata->pixelsPerMillimetreX = metadata->pixelsPerMillimetreY = 11.811;
    Bitmap in = noise(8, 6);
    in.metadata = metadata;
    writePicture(at("in.tif"), in);
    ASSERT_EQ(krlimage({"apply", at("in.tif"), "-o", at("out.tif"), "invert(#RGB)"}).code, 0);
    const Bitmap out = readPicture(at("out.tif"));
    ASSERT_TRUE(out.metadata);
    EXPECT_EQ(out.metadata->colourProfile, metadata->colourProfile);
    EXPECT_NEAR(out.metadata->pixelsPerMillimetreX, 11.811, 0.001);
    EXPECT_EQ(out.pixels[5].alpha, in.pixels[5].alpha);
}

TEST_F(Conversion, ReportsABrokenPictureInOneLine) {
    writePicture(at("whole.png"), noise(64, 64));
    const std::string whole = contentOf(at("whole.png"));
    for (const size_t kept : {size_t{20}, whole.size() / 2}) {
        const std::string broken = text("broken.png", whole.substr(0, kept));
        const CliResult done = krlimage({"apply", broken, "-o", at("out.png"), "invert(#RGB)"});
        EXPECT_EQ(done.code, 1);
        EXPECT_EQ(countOf(done.err, "\n"), 1u) << done.err;
        EXPECT_TELLS(done.err, "broken.png");
        EXPECT_FALSE(std::filesystem::exists(at("out.png")));
    }
}

TEST_F(Conversion, ReportsTheRightReasonForEachBrokenPicture) {
    std::filesystem::create_directories(folder / "in");
    for (const std::string compression : {"deflate", "lzw"}) {
        WriteOptions options;
        options.compression = compression;
        writePicture(at("whole.tif"), noise(64, 64), options);
        std::string content = contentOf(at("whole.tif"));
        content.replace(content.size() / 2, 200, std::string(200, '\xFF'));
        for (int i = 0; i < 40; ++i) text("in/" + compression + std::to_string(i) + ".tif", content);
    }
    const CliResult done = krlimage({"apply", at("in"), "-o", at("out"), "-j", "8", "invert(#RGB)"});
    EXPECT_EQ(countOf(done.err, ".tif: ZIPDecode: "), 40u) << done.err;
    EXPECT_EQ(countOf(done.err, ".tif: source input: Using code"), 40u) << done.err;
}

}  // namespace
}  // namespace krl::player

#endif
