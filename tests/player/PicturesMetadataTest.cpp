#include "player/pictures/PictureMetadata.h"
#include "tests/player/CliRun.h"

#if defined(KRL_WITH_VIPS)

#include <tiffio.h>

#include "player/pictures/FileAccess.h"
#include "player/pictures/Iptc.h"
#include "player/pictures/PictureFiles.h"
#include "player/pictures/TiffMetadata.h"

namespace krl::player {
namespace {

namespace fs = std::filesystem;

using TiffFile = std::unique_ptr<TIFF, decltype(&TIFFClose)>;

const std::string kHeadline(
    "\x1C\x02\x69\x00\x05"
    "Barn!",
    10);

/// TIFF files are made and read by the library for them.
class Metadata : public CliTest {
protected:
    /// A picture with an author, a description, IPTC records, EXIF data and a place.
    std::string described(const std::string& name, const char* mode = "w") const {
        TiffFile file(TIFFOpen(at(name).c_str(), mode), &TIFFClose);
        TIFF* tiff = file.get();
        constexpr uint32_t kSide = 8;
        TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, kSide), TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, kSide);
        TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8), TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 3);
        TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
        TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
        TIFFSetField(tiff, TIFFTAG_ARTIST, "Ada"), TIFFSetField(tiff, TIFFTAG_COPYRIGHT, "Nobody at all");
        TIFFSetField(tiff, TIFFTAG_IMAGEDESCRIPTION, "A barn in the snow");
        std::string records = kHeadline;
        records.resize(12);
        TIFFSetField(tiff, TIFFTAG_RICHTIFFIPTC, uint32_t(records.size()), records.data());
        std::vector<uint8_t> row(kSide * 3, 90);
        for (uint32_t y = 0; y < kSide; ++y) TIFFWriteScanline(tiff, row.data(), y, 0);
        TIFFWriteDirectory(tiff);
        uint64_t exif = 0, gps = 0;
        TIFFCreateEXIFDirectory(tiff);
        TIFFSetField(tiff, EXIFTAG_FNUMBER, 2.8);
        TIFFSetField(tiff, EXIFTAG_DATETIMEORIGINAL, "2026:01:02 03:04:05");
        TIFFWriteCustomDirectory(tiff, &exif);
        TIFFCreateGPSDirectory(tiff);
        TIFFSetField(tiff, GPSTAG_LATITUDEREF, "N");
        TIFFWriteCustomDirectory(tiff, &gps);
        TIFFSetDirectory(tiff, 0);
        TIFFSetField(tiff, TIFFTAG_EXIFIFD, exif), TIFFSetField(tiff, TIFFTAG_GPSIFD, gps);
        TIFFRewriteDirectory(tiff);
        return at(name);
    }

    static std::string textIn(TIFF* tiff, uint32_t tag) {
        const char* text = nullptr;
        return TIFFGetField(tiff, tag, &text) == 1 ? text : "none";
    }

    void expectDescribed(const std::string& name) const {
        SCOPED_TRACE(name);
        const TiffFile file(TIFFOpen(at(name).c_str(), "r"), &TIFFClose);
        TIFF* tiff = file.get();
        ASSERT_NE(tiff, nullptr);
        EXPECT_EQ(textIn(tiff, TIFFTAG_ARTIST), "Ada");
        EXPECT_EQ(textIn(tiff, TIFFTAG_COPYRIGHT), "Nobody at all");
        EXPECT_EQ(textIn(tiff, TIFFTAG_IMAGEDESCRIPTION), "A barn in the snow");
        uint32_t bytes = 0;
        const char* records = nullptr;
        ASSERT_EQ(TIFFGetField(tiff, TIFFTAG_RICHTIFFIPTC, &bytes, &records), 1);
        ASSERT_GE(bytes, kHeadline.size());
        EXPECT_EQ(std::string(records, kHeadline.size()), kHeadline);
        uint64_t exif = 0, gps = 0;
        ASSERT_EQ(TIFFGetField(tiff, TIFFTAG_EXIFIFD, &exif), 1);
        ASSERT_EQ(TIFFGetField(tiff, TIFFTAG_GPSIFD, &gps), 1);
        ASSERT_EQ(TIFFReadEXIFDirectory(tiff, exif), 1);
        float aperture = 0;
        EXPECT_EQ(TIFFGetField(tiff, EXIFTAG_FNUMBER, &aperture), 1);
        EXPECT_NEAR(aperture, 2.8, 1e-6);
        EXPECT_EQ(textIn(tiff, EXIFTAG_DATETIMEORIGINAL), "2026:01:02 03:04:05");
        ASSERT_EQ(TIFFReadGPSDirectory(tiff, gps), 1);
        EXPECT_EQ(textIn(tiff, GPSTAG_LATITUDEREF), "N");
    }

    CliResult apply(const std::string& in, const std::string& out,
                    const std::vector<std::string>& more = {}) const {
        std::vector<std::string> words = {"apply", at(in), "-o", at(out), "invert(#RGB)"};
        words.insert(words.end(), more.begin(), more.end());
        CliResult done = krlimage(words);
        EXPECT_EQ(done.code, 0) << done.err;
        return done;
    }
};

TEST_F(Metadata, IsPreservedFromTiffToTiff) {
    for (const char* order : {"wl", "wb", "wl8", "wb8"}) {
        described("in.tif", order);
        EXPECT_EQ(apply("in.tif", "out.tif").err, "");
        expectDescribed("out.tif");
        fs::remove(at("in.tif"));
    }
}

TEST_F(Metadata, IsPreservedThroughOtherFormats) {
    described("in.tif");
    EXPECT_EQ(apply("in.tif", "a.jpg").err, "");
    EXPECT_TELLS(contentOf(at("a.jpg")), std::string("Photoshop 3.0\0008BIM\4\4\0\0", 22));
    EXPECT_TELLS(contentOf(at("a.jpg")), kHeadline);
    EXPECT_EQ(apply("a.jpg", "a.tif").err, "");
    expectDescribed("a.tif");
    EXPECT_EQ(apply("in.tif", "b.png").err,
              "krlimage: note: " + at("in.tif") + " loses IPTC records, which PNG does not hold\n");
    EXPECT_TELLS(contentOf(at("b.png")), "A barn in the snow");
}

TEST_F(Metadata, OfAFormatWithoutAnyIsReportedAsLost) {
    described("in.tif");
    const CliResult done = apply("in.tif", "out.pam");
    EXPECT_TELLS(done.err, "loses EXIF data, which PAM does not hold\n");
    EXPECT_TELLS(done.err, "loses IPTC records, which PAM does not hold\n");
}

TEST_F(Metadata, LeavesPixelsAsTheyAre) {
    described("in.tif");
    apply("in.tif", "out.tif");
    EXPECT_EQ(readPicture(at("out.tif")).pixels, std::vector<Pixel>(64, Pixel{165, 165, 165, 255}));
    const TiffFile file(TIFFOpen(at("out.tif").c_str(), "r"), &TIFFClose);
    EXPECT_EQ(TIFFNumberOfDirectories(file.get()), 1);
}

/// Tags that point anywhere, also at themselves, end in less data.
class BrokenTiff : public Metadata, public testing::WithParamInterface<const char*> {};

INSTANTIATE_TEST_SUITE_P(Metadata, BrokenTiff, testing::Values("wl", "wb8"));

TEST_P(BrokenTiff, IsReadAsFarAsItGoes) {
    const std::string whole = contentOf(described("in.tif", GetParam()));
    for (size_t size = 0; size < whole.size(); size += 7) {
        const std::vector<uint8_t> found =
            readTiffFacts(InputFile(text("cut.tif", whole.substr(0, size)))).exif;
        EXPECT_LE(found.size(), whole.size());
    }
    for (size_t at = 8; at < whole.size(); ++at) {
        std::string broken = whole;
        broken[at] = '\x7F';
        readTiffFacts(InputFile(text("broken.tif", broken)));
    }
}

TEST_F(Metadata, OfIptcIsFoundInEveryWrapping) {
    const std::vector<uint8_t> records(kHeadline.begin(), kHeadline.end());
    EXPECT_EQ(bareIptc(records), records);
    const std::vector<uint8_t> wrapped = iptcForJpeg(records);
    EXPECT_EQ(bareIptc(wrapped), records);
    // Another resource first, with a name of odd length and data of odd length.
    std::string two("Photoshop 3.0\0008BIM\x03\xED\x02hi\0\0\0\0\3abc\0", 32);
    two.append(wrapped.begin() + 14, wrapped.end());
    EXPECT_EQ(bareIptc({two.begin(), two.end()}), records);
    for (size_t size = 0; size < two.size(); ++size)
        EXPECT_LE(bareIptc({two.begin(), two.begin() + ptrdiff_t(size)}).size(), records.size());
    EXPECT_TRUE(iptcForJpeg({}).empty());
    EXPECT_FALSE(hasMoreThanIptc({two.begin(), two.end()})) << "a resolution, which is kept elsewhere";
    two[18] = 7, two[19] = char(0xD0);
    EXPECT_TRUE(hasMoreThanIptc({two.begin(), two.end()})) << "a path";
    EXPECT_FALSE(hasMoreThanIptc(records));
}

TEST_F(Metadata, ThatIsNotKeptIsReported) {
    described("in.tif");
    apply("in.tif", "a.jpg");
    std::string jpeg = contentOf(at("a.jpg"));
    // Add a path to the segment with the IPTC records, whose length is in front of it.
    const size_t wrapper = jpeg.find("Photoshop 3.0"), records = wrapper + 14;
    const std::string path("8BIM\x07\xD0\0\0\0\0\0\2ab", 14);
    jpeg.insert(records, path);
    jpeg[wrapper - 1] = char(jpeg[wrapper - 1] + int(path.size()));
    text("b.jpg", jpeg);
    EXPECT_EQ(apply("b.jpg", "c.jpg").err,
              "krlimage: note: " + at("b.jpg") +
                  " loses resources beside the IPTC records, such as guides and paths, which are not kept\n");
    EXPECT_TELLS(contentOf(at("c.jpg")), kHeadline);
    EXPECT_EQ(apply("b.jpg", "d.jpg", {"--strip"}).err, "") << "nothing is to be kept";
}

TEST_F(Metadata, ThatIsTooLongForASegmentIsReported) {
    auto metadata = std::make_shared<PictureMetadata>();
    metadata->exif.assign(65534, 1);
    metadata->xmp.assign(65505, 'x');
    Bitmap in = noise(8, 6);
    in.metadata = metadata;
    const std::vector<std::string> losses = {"EXIF data of 65534 bytes, which JPEG does not hold",
                                             "XMP data of 65505 bytes, which JPEG does not hold"};
    EXPECT_EQ(lossesOfWriting("a.jpg", {{in}, {}, 0}, {}), losses);
    metadata->exif.pop_back(), metadata->xmp.pop_back();
    EXPECT_TRUE(lossesOfWriting("a.jpg", {{in}, {}, 0}, {}).empty());
    writePicture(at("a.jpg"), in);
    EXPECT_EQ(readPicture(at("a.jpg")).metadata->xmp, metadata->xmp);
}

TEST_F(Metadata, KeepsTheTextsOfAPng) {
    auto metadata = std::make_shared<PictureMetadata>();
    metadata->texts = {{"Title", "Barn"}, {"Comment", "In the snow"}};
    Bitmap in = noise(8, 6);
    in.metadata = metadata;
    writePicture(at("in.png"), in);
    apply("in.png", "out.png");
    const Bitmap out = readPicture(at("out.png"));
    ASSERT_EQ(out.metadata->texts.size(), 2u);
    EXPECT_EQ(out.metadata->texts[0].keyword, "Title");
    EXPECT_EQ(out.metadata->texts[1].text, "In the snow");
    EXPECT_TELLS(apply("in.png", "out.webp").err, "loses texts, which WebP does not hold");
}

class Frames : public Metadata {
protected:
    /// Three frames, each of one colour.
    std::string animation(const std::string& name) const {
        PictureFrames frames;
        for (const uint8_t level : {uint8_t(0), uint8_t(120), uint8_t(255)})
            frames.pictures.push_back(
                {16, 9, std::vector<Pixel>(16 * 9, Pixel{level, level, level, 255}), {}});
        frames.delays = {40, 80, 120};
        frames.loops = 3;
        writeFramesOf(at("none"), at(name), frames, {});
        return at(name);
    }
};

TEST_F(Frames, AreAllRewrittenWhereTheFormatHasThem) {
    for (const std::string extension : {"gif", "webp"}) {
        animation("in." + extension);
        EXPECT_EQ(apply("in." + extension, "out." + extension).err, "");
        const PictureFrames out = readFrames(at("out." + extension), FrameChoice::All);
        ASSERT_EQ(out.pictures.size(), 3u) << extension;
        for (size_t i = 0; i < 3; ++i) EXPECT_EQ(out.pictures[i].height, 9);
        EXPECT_NEAR(out.pictures[0].pixels[7].green, 255, 3);
        EXPECT_NEAR(out.pictures[1].pixels[7].green, 135, 3);
        EXPECT_NEAR(out.pictures[2].pixels[7].green, 0, 3);
        EXPECT_EQ(out.delays, (std::vector<int32_t>{40, 80, 120}));
        EXPECT_EQ(out.loops, 3);
    }
    animation("in.tif");
    EXPECT_EQ(apply("in.tif", "out.tif").err, "");
    EXPECT_EQ(readFrames(at("out.tif"), FrameChoice::All).pictures.size(), 3u);
}

TEST_F(Frames, AreReportedWhereTheyAreLost) {
    animation("in.gif");
    const std::string lost =
        "krlimage: note: " + at("in.gif") + " loses all but the first of 3 pages or frames\n";
    EXPECT_EQ(apply("in.gif", "out.png").err, lost);
    EXPECT_EQ(apply("in.gif", "one.gif", {"--first-frame"}).err, lost);
    EXPECT_EQ(readFrames(at("one.gif"), FrameChoice::All).pictures.size(), 1u);
}

/// Pages of several sizes are no animation.
TEST_F(Frames, OfSeveralSizesAreReadUpToTheFirst) {
    writePicture(at("a.tif"), noise(8, 6));
    TiffFile file(TIFFOpen(described("b.tif").c_str(), "a"), &TIFFClose);
    TIFFSetField(file.get(), TIFFTAG_IMAGEWIDTH, 3), TIFFSetField(file.get(), TIFFTAG_IMAGELENGTH, 2);
    TIFFSetField(file.get(), TIFFTAG_BITSPERSAMPLE, 8), TIFFSetField(file.get(), TIFFTAG_SAMPLESPERPIXEL, 1);
    TIFFSetField(file.get(), TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
    uint8_t row[3] = {1, 2, 3};
    for (uint32_t y = 0; y < 2; ++y) TIFFWriteScanline(file.get(), row, y, 0);
    file.reset();
    EXPECT_TELLS(apply("b.tif", "out.tif").err, "loses all but the first of 2 pages or frames");
    EXPECT_EQ(readPicture(at("out.tif")).width, 8);
}

TEST_F(Frames, FailTogether) {
    animation("in.gif");
    const CliResult done =
        krlimage({"apply", at("in.gif"), "-o", at("out.gif"), "composite(image(1, 1, 32), #normal)"});
    EXPECT_EQ(done.code, 1);
    EXPECT_FALSE(fs::exists(at("out.gif")));
}

TEST_F(Metadata, SamplesOfSixteenBitsAreWrittenWhereAsked) {
    picture("in.png");
    for (const char* name : {"out.png", "out.tif"}) {
        apply("in.png", name, {"--depth", "16"});
        const Bitmap read = readPicture(at(name));
        EXPECT_EQ(read.metadata->losses.size(), 1u) << name;
        apply("in.png", "plain.png");
        EXPECT_EQ(read.pixels, readPicture(at("plain.png")).pixels) << name;
    }
    const CliResult refused =
        krlimage({"apply", at("in.png"), "-o", at("out.jpg"), "--depth", "16", "sepia"});
    EXPECT_EQ(refused.code, 1);
    EXPECT_TELLS(refused.err, "out.jpg: JPEG has 8 bits a sample; PNG and TIFF have 16\n");
    EXPECT_FALSE(fs::exists(at("out.jpg")));
}

}  // namespace
}  // namespace krl::player

#endif
