#include "catalogue/Catalogue.h"
#include "catalogue/ExampleCall.h"
#include "core/Faults.h"
#include "player/cli/CatalogueCalls.h"
#include "player/pictures/FileAccess.h"
#include "player/pictures/Formats.h"
#include "player/pictures/PictureMetadata.h"
#include "player/pictures/PictureStream.h"
#include "player/pictures/PixelLimit.h"
#include "tests/player/CliRun.h"

#if !defined(_WIN32)
#include <sys/resource.h>

#include <csignal>
#endif
#if defined(KRL_WITH_VIPS)
#include <png.h>

#include "tests/player/JpegOf.h"
#endif

/// Pictures that go from file to file in strips, compared with those that are read and written whole.
namespace krl::player {
namespace {

constexpr int32_t kWidth = 61, kHeight = 97;
constexpr size_t kStripPixels = 61 * 7;  // so that the last strip is shorter

#if defined(KRL_WITH_PNG_JPEG)
const std::vector<std::string> kNames = {"a.pam", "a.png", "a.jpg"};
#else
const std::vector<std::string> kNames = {"a.pam"};
#endif

/// The call of a method's example; nothing for one that has a second picture.
std::optional<ReadyCall> exampleOf(const Method& method) {
    if (method.needsSecondPicture()) return std::nullopt;
    ReadyCall call{method, {}, {}};
    for (const Argument& argument : method.arguments())
        call.arguments.push_back(exampleValue(argument, {kWidth, kHeight, {}}));
    return call;
}

std::vector<ReadyCall> examples() {
    std::vector<ReadyCall> calls;
    for (const Method* method : catalogue().methods())
        if (const auto call = method->isPerPixel() ? exampleOf(*method) : std::nullopt)
            calls.push_back(*call);
    return calls;
}

std::string shown(const std::vector<CallOutcome>& outcomes) {
    std::string all;
    for (const CallOutcome& outcome : outcomes) all += outcome.shown + outcome.error + '\n';
    return all;
}

class PictureStreams : public CliTest {
protected:
    std::string written(const std::string& name, const Bitmap& picture,
                        const WriteOptions& options = {}) const {
        writePicture(at(name), picture, options);
        return at(name);
    }

    /// The bytes of the file that calls make of a picture as a whole, and their results.
    std::string whole(const std::string& input, const std::string& name, std::span<const ReadyCall> calls,
                      const WriteOptions& options = {}) {
        PictureFrames frames = readFrames(input, FrameChoice::First);
        shown_ = shown(calls_.apply(frames.pictures.front(), calls));
        writeFramesOf(input, at("whole-" + name), frames, options);
        return contentOf(at("whole-" + name));
    }

    /// The same in strips.
    std::string streamed(const std::string& input, const std::string& name, std::span<const ReadyCall> calls,
                         const WriteOptions& options = {}, unsigned threads = 3) {
        PictureStream stream(input, at("strips-" + name), options, {kStripPixels, threads});
        if (!stream.isPossible()) return "no strips";
        const bool isThrough = stream.run([&](Bitmap& strip) {
            ++strips_;
            const std::string results = shown(calls_.applyToStrip(strip, calls));
            EXPECT_EQ(results, shown_);
            return true;
        });
        if (!isThrough) return "given up";
        stream.commit();
        return contentOf(at("strips-" + name));
    }

    void expectSame(const std::string& input, const std::string& name, std::span<const ReadyCall> calls,
                    const WriteOptions& options = {}) {
        const std::string expected = whole(input, name, calls, options);
        for (const unsigned threads : {1u, 2u, 3u})
            EXPECT_TRUE(streamed(input, name, calls, options, threads) == expected)
                << input << " to " << name << " on " << threads << " threads";
    }

    std::string failure(const std::string& input, const std::string& name, unsigned threads) {
        try {
            return "written: " + std::to_string(streamed(input, name, {}, {}, threads).size());
        } catch (const PictureError& error) {
            return error.what();
        }
    }

    static std::string wholeFailure(const std::string& input) {
        try {
            readPicture(input);
        } catch (const PictureError& error) {
            return error.what();
        }
        return "";
    }

    CatalogueCalls calls_{ThreadChoice::One};
    std::string shown_;
    size_t strips_ = 0;
};

TEST_F(PictureStreams, HaveTheBytesOfWholePicturesForEveryMethodThatTreatsPixelsAlone) {
    const std::vector<ReadyCall> calls = examples();
    ASSERT_GT(calls.size(), 30u);
    size_t next = 0;
    for (const std::string& from : kNames) written(from, noise(kWidth, kHeight));
    for (const ReadyCall& call : calls) {
        SCOPED_TRACE(call.method.shortName());
        ASSERT_TRUE(canRunOnStrips(call));
        expectSame(at(kNames[next % kNames.size()]), "a.pam", {&call, 1});
        const std::vector<ReadyCall> pair = {call, calls[++next % calls.size()]};
        expectSame(at(kNames[next % kNames.size()]), "a.pam", pair);
    }
    EXPECT_GT(strips_, calls.size() * 10);
}

TEST_F(PictureStreams, HaveTheBytesOfWholePicturesInEveryFormat) {
    const std::vector<ReadyCall> all = examples();
    const std::span<const ReadyCall> few(all.data(), 3);
    WriteOptions packed;
    packed.compression = "9", packed.depth = 16;
    for (const bool isOpaque : {true, false}) {
        Bitmap picture = noise(kWidth, kHeight);
        if (isOpaque)
            for (Pixel& p : picture.pixels) p.alpha = 255;
        for (const std::string& from : kNames)
            for (const std::string& to : kNames) {
                const std::string input = written(from, picture);
                expectSame(input, to, {});
                expectSame(input, to, few);
                if (to == "a.png") expectSame(input, to, few, packed);
            }
    }
}

TEST_F(PictureStreams, RunMoreCallsThanGoTogether) {
    std::vector<ReadyCall> calls = examples();
    for (const ReadyCall& call : examples()) calls.push_back(call);
    ASSERT_GT(calls.size(), 2 * kMostFused);
    expectSame(written("a.pam", noise(kWidth, kHeight)), "a.pam", calls);
}

TEST_F(PictureStreams, ReadPortableMaps) {
    std::string grey = "P5 61 97 255\n", colour = "P6 61 97 1000\n";
    for (int32_t i = 0; i < kWidth * kHeight; ++i) {
        grey += static_cast<char>(i % 251);
        for (int32_t byte = 0; byte < 6; ++byte) colour += static_cast<char>(byte % 2 ? i % 241 : i % 4);
    }
    expectSame(text("a.pgm", grey), "a.pam", {});
    expectSame(text("a.ppm", colour), "a.pam", {});
}

/// Whether calls with second pictures, parts of the picture, or a look at neighbours stay out.
TEST_F(PictureStreams, AreNotForCallsThatLookFurther) {
    const ReadyCall sepia = *exampleOf(*catalogue().find("sepia"));
    EXPECT_TRUE(canRunOnStrips(sepia));
    EXPECT_FALSE(canRunOnStrips(*exampleOf(*catalogue().find("fastGaussianBlur"))));
    ReadyCall half = sepia;
    half.extent.mix = 0.5;
    EXPECT_FALSE(canRunOnStrips(half));
    ReadyCall composite{*catalogue().find("composite"), {}, {}};
    composite.arguments.push_back(krl::Picture::blank(kWidth, kHeight));
    EXPECT_FALSE(canRunOnStrips(composite));
}

TEST_F(PictureStreams, ReportDamageWithTheWordsOfWholePictures) {
    for (const std::string& from : kNames) {
        const std::string path = written(from, noise(kWidth, kHeight)), bytes = contentOf(path);
        std::string spoiled = bytes;
        for (size_t i = 0; i < 40; ++i) spoiled[bytes.size() / 2 + i] = char(0x55);
        for (const std::string& damaged :
             {bytes.substr(0, bytes.size() / 2), bytes.substr(0, bytes.size() - 3), spoiled}) {
            text(from, damaged);
            const std::string expected = wholeFailure(path);
            const size_t before = files();
            for (const unsigned threads : {1u, 2u, 3u}) {
                if (!expected.empty()) {
                    EXPECT_EQ(failure(path, "b.pam", threads), expected) << from;
                    EXPECT_EQ(files(), before);
                }
                EXPECT_EQ(std::count(expected.begin(), expected.end(), '\n'), 0);
            }
            EXPECT_TRUE(!expected.empty() || damaged == spoiled) << from;
        }
    }
}

TEST_F(PictureStreams, LeaveNothingBehindWhenTheyAreGivenUp) {
    const std::string path = written("a.pam", noise(kWidth, kHeight));
    for (const unsigned threads : {1u, 2u, 3u})
        for (int strip = 0; strip < 8; ++strip) {
            const WriteOptions options;
            int left = strip;
            {
                PictureStream stream(path, at("b.pam"), options, {kStripPixels, threads});
                EXPECT_FALSE(stream.run([&](Bitmap&) { return left-- > 0; }));
            }
            PictureStream stream(path, at("b.pam"), options, {kStripPixels, threads});
            left = strip;
            EXPECT_THROW(stream.run([&](Bitmap&) { return left-- > 0 ? true : throw std::bad_alloc(); }),
                         std::bad_alloc);
        }
    EXPECT_EQ(files(), 1u);
}

TEST_F(PictureStreams, RunWhereNoThreadsStart) {
    const std::string path = written("a.pam", noise(kWidth, kHeight));
    const std::string expected = whole(path, "a.pam", examples());
    for (const int32_t granted : {0, 1}) {
        faults().threads = granted;
        faults().lasting = true;
        EXPECT_TRUE(streamed(path, "a.pam", examples()) == expected) << granted;
        faults() = {};
    }
}

#if !defined(_WIN32)
/// Reading comes first, so damage is reported even if the disk was full before.
TEST_F(PictureStreams, ReportAFullDisk) {
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    const std::string name = kNames.size() > 1 ? "in.png" : "in.pam";  // a PNG is found damaged late
    for (const std::string& to : kNames)
        for (const unsigned threads : {1u, 2u, 3u}) {
            const std::string path = written(name, noise(kWidth, kHeight));
            const std::string cut = text("cut", contentOf(path).substr(0, contentOf(path).size() * 3 / 4));
            const size_t before = files();
            rlimit usual{};
            getrlimit(RLIMIT_FSIZE, &usual);
            const rlimit small{4096, usual.rlim_max};
            setrlimit(RLIMIT_FSIZE, &small);
            const std::string full = failure(path, to, threads), damaged = failure(cut, to, threads);
            setrlimit(RLIMIT_FSIZE, &usual);
            EXPECT_EQ(full, "cannot write " + at("strips-" + to) + ": File too large");
            EXPECT_EQ(damaged, wholeFailure(cut));
            EXPECT_EQ(files(), before);
        }
    std::signal(SIGXFSZ, handler);
}
#endif

TEST_F(PictureStreams, ReportAFolderThatIsMissing) {
    const std::string path = written("in.pam", noise(kWidth, kHeight));
    EXPECT_EQ(failure(path, "missing/a.pam", 3),
              "cannot write " + at("strips-missing/a.pam") + ": No such file or directory");
}

TEST_F(PictureStreams, LeaveSmallAndOversizedPicturesToOthers) {
    const std::string path = written("a.pam", noise(kWidth, kHeight));
    const WriteOptions options;
    const auto isPossible = [&](size_t stripPixels) {
        return PictureStream(path, at("b.pam"), options, {stripPixels, 1}).isPossible();
    };
    EXPECT_TRUE(isPossible(kWidth * kHeight / 3));
    EXPECT_FALSE(isPossible(kWidth * kHeight));
    const PixelLimit limit(kWidth * kHeight - 1);
    EXPECT_FALSE(isPossible(kWidth * kHeight / 3));
}

#if defined(KRL_WITH_PNG_JPEG)
/// How a PNG is packed depends on all of its pixels.
TEST_F(PictureStreams, PackPngAsThePictureTurnsOut) {
    const Pixel blue{200, 30, 10, 255};
    Bitmap photo = noise(kWidth, kHeight), drawing = photo;
    for (Pixel& p : photo.pixels) p.alpha = 255;
    std::fill(drawing.pixels.begin(), drawing.pixels.end(), blue);
    const size_t count = photo.pixels.size();
    for (size_t parts = 0; parts <= 10; ++parts)
        for (const bool isDrawingFirst : {true, false})
            for (const size_t clear : {count, size_t{0}, count / 2, count - 1}) {
                Bitmap mixed = isDrawingFirst ? drawing : photo;
                const Bitmap& rest = isDrawingFirst ? photo : drawing;
                const auto from = static_cast<std::ptrdiff_t>(count * parts / 10);
                std::copy(rest.pixels.begin() + from, rest.pixels.end(), mixed.pixels.begin() + from);
                if (clear < count) mixed.pixels[clear].alpha = 7;
                SCOPED_TRACE(std::to_string(parts) + ' ' + std::to_string(clear));
                expectSame(written("in.pam", mixed), "a.png", {});
            }
}

std::shared_ptr<PictureMetadata> someMetadata() {
    auto metadata = std::make_shared<PictureMetadata>();
    metadata->xmp = {'<', 'x', '>'};
    metadata->texts = {{"Title", "A picture"}};
    metadata->pixelsPerMillimetreX = metadata->pixelsPerMillimetreY = 6;
    return metadata;
}

TEST_F(PictureStreams, PreserveMetadata) {
    Bitmap picture = noise(kWidth, kHeight);
    picture.metadata = someMetadata();
    WriteOptions stripped;
    stripped.isStripped = true;
    for (const std::string from : {"a.png", "a.jpg"})
        for (const std::string to : {"a.png", "a.jpg"}) {
            const std::string input = written(from, picture);
            expectSame(input, to, {});
            expectSame(input, to, {}, stripped);
            EXPECT_EQ(readPicture(at("strips-" + to)).metadata->xmp.empty(), true);
        }
    const std::string input = written("a.png", picture);
    streamed(input, "a.png", {});
    EXPECT_EQ(readPicture(at("strips-a.png")).metadata->texts.size(), 1u);
}

/// A chunk of text, moved behind the pixels as other programs write it.
TEST_F(PictureStreams, AreNotForPngWithTextBehindThePixels) {
    Bitmap picture = noise(kWidth, kHeight);
    picture.metadata = someMetadata();
    const std::string bytes = contentOf(written("a.png", picture));
    const auto chunk = [&](const char* type) { return bytes.find(type) - 4; };
    const size_t words = chunk("tEXt"), pixels = chunk("IDAT"), end = chunk("IEND");
    const std::string moved = bytes.substr(0, words) + bytes.substr(pixels, end - pixels) +
                              bytes.substr(words, pixels - words) + bytes.substr(end);
    EXPECT_NE(streamed(text("a.png", bytes), "a.png", {}), "no strips");
    EXPECT_EQ(streamed(text("a.png", moved), "a.png", {}), "no strips");
}

/// EXIF data of nothing but an orientation.
TEST_F(PictureStreams, AreNotForPicturesThatAreTurned) {
    const std::string start("Exif\0\0II*\0\x8\0\0\0\1\0\x12\1\3\0\1\0\0\0", 24), end("\0\0\0\0\0\0\0", 7);
    for (const char orientation : std::string("\1\2\6")) {
        const std::string exif = start + orientation + end;
        Bitmap picture = noise(kWidth, kHeight);
        auto metadata = std::make_shared<PictureMetadata>();
        metadata->exif.assign(exif.begin(), exif.end());
        picture.metadata = metadata;
        const std::string input = written("a.jpg", picture);
        EXPECT_EQ(streamed(input, "b.png", {}) == "no strips", orientation != 1) << int(orientation);
        if (orientation == 1)
            for (const char* name : {"b.jpg", "b.png"}) expectSame(input, name, {});
    }
}

TEST_F(PictureStreams, AreNotForAnotherColourSpaceOrFormat) {
    const std::string path = written("a.png", noise(kWidth, kHeight));
    WriteOptions converted;
    converted.profile = at("other.icc");
    EXPECT_EQ(streamed(path, "a.png", {}, converted), "no strips");
    WriteOptions impossible;
    impossible.depth = 16;
    EXPECT_EQ(streamed(path, "a.jpg", {}, impossible), "no strips");
    EXPECT_EQ(streamed(path, "a.unknown", {}), "no strips");
}
#endif

#if defined(KRL_WITH_VIPS)
TEST_F(PictureStreams, AreNotForInterlacedAndProgressivePictures) {
    std::vector<uint8_t> row(size_t{kWidth} * 3, 90);
    for (const bool isWhole : {false, true}) {
        std::FILE* file = std::fopen(at("a.png").c_str(), "wb");
        png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
        png_infop info = png_create_info_struct(png);
        png_init_io(png, file);
        png_set_IHDR(png, info, kWidth, kHeight, 8, PNG_COLOR_TYPE_RGB,
                     isWhole ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                     PNG_FILTER_TYPE_DEFAULT);
        png_write_info(png, info);
        std::vector<png_bytep> rows(kHeight, row.data());
        png_write_image(png, rows.data());
        png_write_end(png, info);
        png_destroy_write_struct(&png, &info);
        std::fclose(file);

        const auto change = [&](jpeg_compress_struct& jpeg) {
            if (isWhole) jpeg_simple_progression(&jpeg);
        };
        test::writeJpeg(at("a.jpg"), kWidth, kHeight, {.change = change});
        for (const char* name : {"a.png", "a.jpg"})
            EXPECT_EQ(streamed(at(name), "b.pam", {}) == "no strips", isWhole) << name;
    }
}
#endif

}  // namespace
}  // namespace krl::player
