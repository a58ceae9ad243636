#include "player/pictures/PictureMetadata.h"
#include "tests/player/CliRun.h"

#if defined(KRL_WITH_VIPS)

#include <fcntl.h>
#include <png.h>
#include <unistd.h>

#include <fstream>
#include <sstream>

#include "core/Random.h"
#include "player/pictures/ExifData.h"
#include "player/pictures/Formats.h"
#include "tests/player/JpegOf.h"

/// The readers and writers that need no libvips, compared with libvips.
namespace krl::player {
namespace {

constexpr int32_t kWidth = 37, kHeight = 23;

Bitmap speckled(bool isOpaque = true) {
    Bitmap picture{kWidth, kHeight, std::vector<Pixel>(size_t(kWidth) * size_t(kHeight)), nullptr};
    Random random(7);
    for (size_t i = 0; i < picture.pixels.size(); ++i) {
        const auto level = [&](size_t step) { return uint8_t(i * step / 4 + random.next() % 32); };
        picture.pixels[i] = {level(1), level(2), level(3), isOpaque ? uint8_t{255} : level(5)};
    }
    return picture;
}

/// EXIF data of nothing but an orientation.
std::vector<uint8_t> exifWith(uint8_t orientation, bool isLittle) {
    const size_t mark = kExifMark.size();
    std::string exif(kExifMark);
    exif += isLittle ? std::string("II*\0\x8\0\0\0\1\0\x12\1\3\0\1\0\0\0\0\0\0\0\0\0\0\0", 26)
                     : std::string("MM\0*\0\0\0\x8\0\1\1\x12\0\3\0\0\0\1\0\0\0\0\0\0\0\0", 26);
    exif[mark + (isLittle ? 18 : 19)] = static_cast<char>(orientation);
    return {exif.begin(), exif.end()};
}

/// What libpng takes for a profile of red, green and blue: a header and one tag.
std::vector<uint8_t> profile() {
    std::vector<uint8_t> bytes(200);
    const auto put = [&](size_t place, std::string_view text) {
        std::copy(text.begin(), text.end(), bytes.begin() + static_cast<ptrdiff_t>(place));
    };
    bytes[3] = 200, bytes[8] = 2;
    bytes[131] = 1, bytes[139] = 144, bytes[143] = 56;
    put(12, "mntrRGB XYZ ");
    put(36, "acsp");
    put(132, "cprt");
    put(144, std::string_view("text\0\0\0\0Nobody has any rights in these few bytes of text.", 56));
    put(68, std::string_view("\0\0\xF6\xD6\0\1\0\0\0\0\xD3\x2D", 12));
    return bytes;
}

class PngJpeg : public CliTest {
protected:
    static std::optional<Bitmap> read(const std::string& path) {
        const InputFile file(path);
        const FormatReader* reader = readerFor(file);
        return reader ? std::optional(readWhole(*reader, file)) : std::nullopt;
    }

    static Bitmap readWithVips(const std::string& path) {
        const InputFile file(path);
        return std::move(player::readWithVips(file, FrameChoice::First).pictures.front());
    }

    std::string writtenWithVips(const std::string& name, const Bitmap& picture,
                                const WriteOptions& options = {}) const {
        AtomicFile file(at(name));
        writeWithVips(file, {{&picture, 1}, {}, 0}, *formatOf(name), options);
        file.commit();
        return at(name);
    }

    std::string written(const std::string& name, const Bitmap& picture,
                        const WriteOptions& options = {}) const {
        AtomicFile file(at(name));
        writeWhole(*writerFor(*formatOf(name)), file, picture, options);
        file.commit();
        return at(name);
    }

    /// A PNG of libpng's simplified interface, from as many levels as its format has.
    std::string pngOf(const std::string& name, uint32_t format) const {
        png_image image{};
        image.version = PNG_IMAGE_VERSION, image.format = format;
        image.width = kWidth, image.height = kHeight, image.colormap_entries = 200;
        std::vector<uint16_t> samples(size_t(kWidth) * size_t(kHeight) * 4), colours(200 * 4);
        Random random(3);
        for (uint16_t& sample : samples) sample = uint16_t(random.next() % 200 * 257 % 51200);
        for (uint16_t& colour : colours) colour = uint16_t(random.next());
        EXPECT_NE(png_image_write_to_file(&image, at(name).c_str(), 0, samples.data(), 0, colours.data()), 0);
        return at(name);
    }

    std::string jpegOf(const std::string& name, const test::JpegKind& kind) const {
        test::writeJpeg(at(name), kWidth, kHeight, kind);
        return at(name);
    }

    static void expectSameAsWithVips(const std::string& path) {
        SCOPED_TRACE(path);
        const std::optional<Bitmap> ours = read(path);
        ASSERT_TRUE(ours);
        const Bitmap theirs = readWithVips(path);
        EXPECT_EQ(ours->width, theirs.width);
        EXPECT_EQ(ours->pixels, theirs.pixels);
        EXPECT_EQ(ours->metadata->losses, theirs.metadata->losses);
        const InputFile file(path);
        const PictureSize size = readSizeWithVips(file);
        EXPECT_NE(kPngReader.isFormatOf(file), kJpegReader.isFormatOf(file));
        EXPECT_EQ(readerFor(file)->readSize(file).width, size.width);
        EXPECT_EQ(readerFor(file)->readSize(file).height, size.height);
    }

    std::string errorOf(const std::string& path) const {
        try {
            read(path);
        } catch (const PictureError& error) {
            return error.what();
        }
        return "";
    }

    static std::string contentOf(const std::string& path) {
        std::ostringstream content;
        content << std::ifstream(path, std::ios::binary).rdbuf();
        return content.str();
    }
};

TEST_F(PngJpeg, EveryKindOfPngHasThePixelsThatItHasWithVips) {
    expectSameAsWithVips(pngOf("rgb.png", PNG_FORMAT_RGB));
    expectSameAsWithVips(pngOf("rgba.png", PNG_FORMAT_RGBA));
    expectSameAsWithVips(pngOf("grey.png", PNG_FORMAT_GRAY));
    expectSameAsWithVips(pngOf("greya.png", PNG_FORMAT_GA));
    expectSameAsWithVips(pngOf("palette.png", PNG_FORMAT_RGBA_COLORMAP));
    expectSameAsWithVips(pngOf("deep.png", PNG_FORMAT_LINEAR_RGB_ALPHA));
    expectSameAsWithVips(pngOf("deepgrey.png", PNG_FORMAT_LINEAR_Y));
}

TEST_F(PngJpeg, EveryKindOfJpegHasThePixelsThatItHasWithVips) {
    for (const char* chroma : {"420", "444"}) {
        WriteOptions options;
        options.quality = 60, options.chroma = chroma;
        const std::string name = writtenWithVips(std::string(chroma) + ".jpg", speckled(), options);
        expectSameAsWithVips(name);
        EXPECT_EQ(read(name)->metadata->chroma, chroma == std::string("420") ? "4:2:0" : "4:4:4");
    }
    expectSameAsWithVips(jpegOf("grey.jpg", {1, JCS_GRAYSCALE}));
}

TEST_F(PngJpeg, WhatIsWrittenHasThePixelsThatItHasWithVips) {
    for (const bool isOpaque : {true, false}) {
        const Bitmap picture = speckled(isOpaque);
        const std::string png = written("a.png", picture);
        EXPECT_EQ(readWithVips(png).pixels, picture.pixels);
        for (const int quality : {50, 90, 95}) {
            WriteOptions options;
            options.quality = quality;
            const std::string jpeg = written("a.jpg", picture, options);
            const std::string theirs = writtenWithVips("b.jpg", picture, options);
            EXPECT_EQ(readWithVips(jpeg).pixels, readWithVips(theirs).pixels) << quality;
        }
    }
}

TEST_F(PngJpeg, SixteenBitsAreWrittenOnRequest) {
    WriteOptions options;
    options.depth = 16, options.compression = "9";
    const Bitmap picture = speckled(false);
    const std::string path = written("a.png", picture, options);
    EXPECT_EQ(contentOf(path)[24], 16);
    EXPECT_EQ(readWithVips(path).pixels, picture.pixels);
}

TEST_F(PngJpeg, PicturesAreTurnedUprightOnce) {
    for (const bool isLittle : {true, false})
        for (uint8_t orientation = 1; orientation <= 8; ++orientation) {
            auto metadata = std::make_shared<PictureMetadata>();
            metadata->exif = exifWith(orientation, isLittle);
            Bitmap picture = speckled();
            picture.metadata = metadata;
            const std::string path = written("turned.jpg", picture);
            expectSameAsWithVips(path);
            EXPECT_EQ(read(path)->width, orientation < 5 ? kWidth : kHeight);
            EXPECT_EQ(read(path)->metadata->exif, exifWith(1, isLittle));
            expectSameAsWithVips(written("turned.png", picture));
        }
}

TEST_F(PngJpeg, PicturesThatLibvipsTurnedAreNotTurnedAgain) {
    auto metadata = std::make_shared<PictureMetadata>();
    metadata->exif = exifWith(6, true);
    Bitmap picture = speckled();
    picture.metadata = metadata;
    writePicture(at("turned.webp"), picture);
    const Bitmap upright = readWithVips(at("turned.webp"));
    ASSERT_EQ(upright.width, kHeight);
    for (const char* name : {"upright.png", "upright.jpg"}) {
        SCOPED_TRACE(name);
        const std::string path = written(name, upright);
        expectSameAsWithVips(path);
        EXPECT_EQ(read(path)->width, kHeight);
    }
}

TEST_F(PngJpeg, ChromaAndResolutionAreThoseOfTheFile) {
    struct Kind {
        int across, down, unit;
        const char* chroma;
        double perMillimetre;
    };
    for (const Kind& kind :
         {Kind{1, 1, 1, "4:4:4", 254 / 25.4}, Kind{2, 1, 2, "4:4:4", 25.4}, Kind{2, 2, 0, "4:2:0", 0}}) {
        const auto change = [&](jpeg_compress_struct& jpeg) {
            jpeg.comp_info[0].h_samp_factor = kind.across, jpeg.comp_info[0].v_samp_factor = kind.down;
            jpeg.density_unit = static_cast<UINT8>(kind.unit);
            jpeg.X_density = jpeg.Y_density = 254;
        };
        const auto found = read(jpegOf("a.jpg", {.change = change}))->metadata;
        EXPECT_EQ(found->chroma, kind.chroma);
        EXPECT_NEAR(found->pixelsPerMillimetreX, kind.perMillimetre, 1e-9);
    }
}

TEST_F(PngJpeg, MetadataIsPreserved) {
    auto metadata = std::make_shared<PictureMetadata>();
    metadata->exif = exifWith(1, true);
    metadata->xmp = {'<', 'x', '/', '>'};
    metadata->iptc = {0x1C, 2, 0x69, 0, 1, '!'};
    metadata->texts = {{"Author", "Ada"}};
    metadata->colourProfile = profile();
    metadata->pixelsPerMillimetreX = metadata->pixelsPerMillimetreY = 300 / 25.4;
    Bitmap picture = speckled();
    picture.metadata = metadata;
    const std::string png = written("a.png", picture), jpeg = written("a.jpg", picture);
    for (const std::string& path : {png, jpeg}) {
        const Bitmap ours = *read(path), theirs = readWithVips(path);
        for (const PictureMetadata* found : {ours.metadata.get(), theirs.metadata.get()}) {
            SCOPED_TRACE(path);
            EXPECT_EQ(found->xmp, metadata->xmp);
            EXPECT_EQ(found->colourProfile, metadata->colourProfile);
            EXPECT_NEAR(found->pixelsPerMillimetreX, metadata->pixelsPerMillimetreX, 0.01);
            EXPECT_FALSE(found->exif.empty());
        }
        EXPECT_EQ(ours.metadata->exif, metadata->exif);
    }
    EXPECT_EQ(read(jpeg)->metadata->iptc, metadata->iptc);
    EXPECT_EQ(readWithVips(jpeg).metadata->iptc, metadata->iptc);
    ASSERT_EQ(read(png)->metadata->texts.size(), 1u);
    EXPECT_EQ(read(png)->metadata->texts[0].text, "Ada");
    EXPECT_EQ(readWithVips(png).metadata->texts[0].keyword, "Author");

    WriteOptions stripped;
    stripped.isStripped = true;
    for (const std::string& path :
         {written("b.png", picture, stripped), written("b.jpg", picture, stripped)}) {
        const Bitmap bare = *read(path);
        EXPECT_TRUE(bare.metadata->exif.empty() && bare.metadata->xmp.empty() && bare.metadata->iptc.empty());
        EXPECT_TRUE(bare.metadata->texts.empty());
        EXPECT_EQ(bare.metadata->colourProfile, metadata->colourProfile);
    }
}

/// EXIF data with a resolution of 300 by 150 dots, whose unit is given, and with a size of 9 by 9 pixels.
std::vector<uint8_t> cameraExif(uint8_t unit) {
    std::string exif(kExifMark);
    exif += std::string("II*\0\x8\0\0\0", 8);
    exif += std::string("\4\0\x1A\1\5\0\1\0\0\0\x3E\0\0\0\x1B\1\5\0\1\0\0\0\x46\0\0\0", 26);
    exif += std::string("\x28\1\3\0\1\0\0\0", 8) + static_cast<char>(unit) + std::string(3, '\0');
    exif += std::string("\x69\x87\4\0\1\0\0\0\x4E\0\0\0\0\0\0\0", 16);
    exif += std::string("\x2C\1\0\0\1\0\0\0\x96\0\0\0\1\0\0\0", 16);
    exif += std::string("\2\0\2\xA0\3\0\1\0\0\0\x9\0\0\0\3\xA0\4\0\1\0\0\0\x9\0\0\0\0\0\0\0", 30);
    return {exif.begin(), exif.end()};
}

TEST_F(PngJpeg, TheResolutionOfACameraIsThatInItsExifData) {
    Bitmap picture = speckled();
    for (const uint8_t unit : {uint8_t{2}, uint8_t{3}}) {
        auto metadata = std::make_shared<PictureMetadata>();
        metadata->exif = cameraExif(unit);
        picture.metadata = metadata;
        const std::string path = written("a.jpg", picture);
        const std::shared_ptr<const PictureMetadata> ours = read(path)->metadata;
        EXPECT_NEAR(ours->pixelsPerMillimetreX, 300 / (unit == 2 ? 25.4 : 10), 1e-9);
        EXPECT_NEAR(ours->pixelsPerMillimetreY, 150 / (unit == 2 ? 25.4 : 10), 1e-9);
        EXPECT_NEAR(readWithVips(path).metadata->pixelsPerMillimetreX, ours->pixelsPerMillimetreX, 0.01);
    }
}

TEST_F(PngJpeg, TheSizeInExifDataIsThatOfThePicture) {
    Bitmap picture = speckled();
    auto metadata = std::make_shared<PictureMetadata>();
    metadata->exif = cameraExif(2);
    picture.metadata = metadata;
    for (const std::string& path : {written("a.jpg", picture), written("a.png", picture)}) {
        const std::vector<uint8_t> exif = read(path)->metadata->exif;
        ASSERT_EQ(exif.size(), metadata->exif.size());
        const size_t sizes = exif.size() - 28;
        const auto entry = [&](size_t place) {
            return std::vector<uint8_t>(&exif[place], &exif[place] + 12);
        };
        EXPECT_EQ(entry(sizes), (std::vector<uint8_t>{2, 0xA0, 4, 0, 1, 0, 0, 0, kWidth, 0, 0, 0}));
        EXPECT_EQ(entry(sizes + 12), (std::vector<uint8_t>{3, 0xA0, 4, 0, 1, 0, 0, 0, kHeight, 0, 0, 0}));
        EXPECT_TRUE(std::equal(exif.begin(), exif.begin() + long(sizes), metadata->exif.begin()));
    }
}

TEST_F(PngJpeg, LibvipsDoesWhatTheyCannot) {
    const std::string inks = jpegOf("inks.jpg", {4, JCS_CMYK});
    EXPECT_EQ(readPicture(inks).pixels, readWithVips(inks).pixels);

    auto metadata = std::make_shared<PictureMetadata>();
    metadata->colourProfile = std::vector<uint8_t>(150, 'x');  // which libpng takes for no profile
    Bitmap picture = speckled();
    picture.metadata = metadata;
    writePicture(at("odd.png"), picture);
    const Bitmap again = readPicture(at("odd.png"));
    EXPECT_EQ(again.metadata->colourProfile, readWithVips(at("odd.png")).metadata->colourProfile);
    EXPECT_EQ(again.pixels, picture.pixels);
}

TEST_F(PngJpeg, LongRowsAndColumnsAreNoObstacle) {
    for (const bool isWide : {true, false}) {
        const int32_t most = 1'100'000;
        const Bitmap picture{isWide ? most : 1, isWide ? 1 : most, std::vector<Pixel>(size_t(most)), nullptr};
        EXPECT_EQ(read(written("long.png", picture))->pixels, picture.pixels);
    }
}

TEST_F(PngJpeg, AFullDiskIsReportedWithItsReason) {
    Bitmap noise{900, 900, std::vector<Pixel>(900 * 900, Pixel{1, 2, 3, 255}), nullptr};
    Random random(5);
    for (Pixel& p : noise.pixels) p.red = static_cast<uint8_t>(random.next());
    for (const char* name : {"a.png", "a.jpg"}) {
        AtomicFile file(at(name));
        const int full = ::open("/dev/full", O_WRONLY);
        ASSERT_GE(::dup2(full, file.descriptor()), 0);
        ::close(full);
        try {
            writeWhole(*writerFor(*formatOf(name)), file, noise, {});
            ADD_FAILURE() << name << " is written to a full disk";
        } catch (const PictureError& error) {
            EXPECT_EQ(error.what(), "cannot write " + at(name) + ": No space left on device");
        }
    }
}

TEST_F(PngJpeg, DamagedFilesAreRefusedInOneLine) {
    const std::string png = contentOf(written("a.png", speckled()));
    const std::string jpeg = contentOf(written("a.jpg", speckled()));
    for (const size_t bytes : {size_t{9}, size_t{40}, png.size() / 2, png.size() - 20})
        EXPECT_TELLS(errorOf(text("b.png", png.substr(0, bytes))), "b.png: it is damaged: ");
    for (const size_t bytes : {size_t{4}, size_t{200}, jpeg.size() / 2, jpeg.size() - 20})
        EXPECT_TELLS(errorOf(text("b.jpg", jpeg.substr(0, bytes))), "b.jpg: it is damaged: ");
    std::string wrong = png;
    wrong[wrong.size() / 2] = static_cast<char>(~wrong[wrong.size() / 2]);
    EXPECT_TELLS(errorOf(text("c.png", wrong)), "c.png: it is damaged: ");
    EXPECT_TELLS(errorOf(jpegOf("inks.jpg", {4, JCS_CMYK})), "colour or grey, not in CMYK");
}

TEST_F(PngJpeg, LargeSizesAreRefusedBeforeTheirMemoryIsTaken) {
    std::string jpeg = contentOf(written("a.jpg", speckled()));
    const size_t frame = jpeg.find("\xFF\xC0");
    ASSERT_NE(frame, std::string::npos);
    for (size_t i = 5; i < 9; ++i) jpeg[frame + i] = '\xFD';
    EXPECT_TELLS(errorOf(text("b.jpg", jpeg)), "is too large");
}

TEST_F(PngJpeg, OtherFilesAreNobodys) {
    EXPECT_FALSE(read(text("a.png", "")));
    EXPECT_FALSE(read(text("a.jpg", "\xFF\xD8 these are words")));
    EXPECT_FALSE(read(text("b.png", "\x89PNG\r\n words")));
}

}  // namespace
}  // namespace krl::player

#endif
