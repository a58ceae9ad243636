#include "player/pictures/Delivery.h"
#include "player/pictures/Geometry.h"
#include "player/pictures/PictureFiles.h"
#include "player/pictures/PictureMetadata.h"
#include "tests/player/CliRun.h"

namespace krl::player {
namespace {

class Deliveries : public CliTest {
protected:
    /// The picture that `apply` writes with these options; the call changes nothing.
    Bitmap delivered(const std::string& in, std::vector<std::string> options,
                     const std::string& out = "out.pam") {
        options.insert(options.begin(), {"apply", in, "-o", at(out), "brightness(0)"});
        const CliResult done = krlimage(options);
        EXPECT_EQ(done.code, 0) << done.err;
        return readPicture(at(out));
    }
    static std::pair<int32_t, int32_t> sizeOf(const Bitmap& picture) {
        return {picture.width, picture.height};
    }
    using Size = std::pair<int32_t, int32_t>;
};

TEST_F(Deliveries, HaveTheSizeThatIsAskedFor) {
    const std::string in = picture("in.pam", 40, 20);
    EXPECT_EQ(sizeOf(delivered(in, {"--resize", "10x15"})), Size(10, 15));
    EXPECT_EQ(sizeOf(delivered(in, {"--resize", "10"})), Size(10, 5));
    EXPECT_EQ(sizeOf(delivered(in, {"--resize", "x10"})), Size(20, 10));
    EXPECT_EQ(sizeOf(delivered(in, {"--resize", "50%"})), Size(20, 10));
    EXPECT_EQ(sizeOf(delivered(in, {"--resize", "50%x100%"})), Size(20, 20));
    EXPECT_EQ(sizeOf(delivered(picture("thin.pam", 3, 100), {"--resize", "50%"})), Size(2, 50));
    EXPECT_EQ(sizeOf(delivered(in, {"--fit", "30x30"})), Size(30, 15));
    EXPECT_EQ(sizeOf(delivered(in, {"--fill", "30x30"})), Size(30, 30));
    EXPECT_EQ(sizeOf(delivered(in, {"--crop", "10x50%"})), Size(10, 10));
    EXPECT_EQ(sizeOf(delivered(in, {"--rotate", "90", "--crop", "10x40", "--resize", "200%"})), Size(20, 80));
}

TEST_F(Deliveries, AreCutWhereTheyAreAskedToBe) {
    const std::string in = picture("in.pam", 8, 6);
    const Bitmap before = readPicture(in);
    const Bitmap corner = delivered(in, {"--crop", "3x2+5+4"}), middle = delivered(in, {"--crop", "2x2"});
    EXPECT_EQ(corner.row(0)[0], before.row(4)[5]);
    EXPECT_EQ(corner.row(1)[2], before.row(5)[7]);
    EXPECT_EQ(middle.row(0)[0], before.row(2)[3]);
    const CliResult refused = krlimage({"apply", in, "-o", at("no.pam"), "sepia", "--crop", "5x2+5+0"});
    EXPECT_EQ(refused.code, 1);
    EXPECT_EQ(refused.err,
              "krlimage: " + in + ": cannot crop 5 by 2 pixels at 5, 0: the picture is 8 by 6 pixels\n");
    for (const char* outside : {"3x2+5+5", "3x2+6+4", "9x2", "3x7"})
        EXPECT_EQ(krlimage({"apply", in, "-o", at("no.pam"), "sepia", "--crop", outside}).code, 1) << outside;
    EXPECT_FALSE(std::filesystem::exists(at("no.pam")));
}

TEST_F(Deliveries, TurnWithoutALoss) {
    const std::string in = picture("in.pam", 3, 2);
    const Bitmap before = readPicture(in), right = delivered(in, {"--rotate", "90"});
    EXPECT_EQ(sizeOf(right), Size(2, 3));
    EXPECT_EQ(right.row(0)[0], before.row(1)[0]);
    EXPECT_EQ(right.row(2)[1], before.row(0)[2]);
    EXPECT_EQ(delivered(in, {"--rotate", "-270"}).pixels, right.pixels);
    EXPECT_EQ(delivered(in, {"--rotate", "180"}).row(1)[2], before.row(0)[0]);
    EXPECT_EQ(delivered(in, {"--rotate", "360"}).pixels, before.pixels);
}

TEST_F(Deliveries, RefuseTextsThatAreNoSizes) {
    for (const char* text : {"", "x", "0x5", "-3", "10xx5", "5%%", "1.2.3", "ten", "0%"})
        EXPECT_FALSE(DeliverySize::read(text)) << text;
    for (const char* text : {"", "10", "10x10+5", "10x10+5+", "10x10-5-5", "x10"})
        EXPECT_FALSE(DeliveryCrop::read(text)) << text;
    const CliResult both =
        krlimage({"apply", picture("in.pam"), "-o", at("out.pam"), "sepia", "--fit", "9x9", "--fill", "9x9"});
    EXPECT_EQ(both.code, 2);
    const CliResult none = krlimage({"apply", at("in.pam"), "-o", at("out.pam"), "sepia", "--fit", "ten"});
    EXPECT_EQ(none.code, 2);
    EXPECT_TELLS(none.err, "--fit: expected WxH, got ten");
}

#if defined(KRL_WITH_VIPS)
/// A photograph in small: smooth, with a little noise.
Bitmap gradient(int32_t width, int32_t height) {
    Bitmap picture{width, height, std::vector<Pixel>(size_t(width) * size_t(height)), nullptr};
    Random random(3);
    for (int32_t y = 0; y < height; ++y)
        for (int32_t x = 0; x < width; ++x)
            picture.row(y)[x] = {uint8_t(x + random.next() % 4), uint8_t(y + random.next() % 4),
                                 uint8_t(x / 2 + y / 2), 255};
    return picture;
}

TEST_F(Deliveries, TurnByAnyAngleOnATransparentGround) {
    writePicture(at("in.png"), gradient(40, 20));
    const Bitmap turned = delivered(at("in.png"), {"--rotate", "45"}, "out.png");
    EXPECT_NEAR(turned.width, 42, 2);
    EXPECT_EQ(turned.pixels.front().alpha, 0);
    EXPECT_EQ(turned.row(turned.height / 2)[turned.width / 2].alpha, 255);
}

TEST_F(Deliveries, KeepTheChromaOfAJpegUnlessAsked) {
    writePicture(at("in.png"), gradient(64, 64));
    const auto chromaOf = [&](const std::string& name) { return readPicture(at(name)).metadata->chroma; };
    delivered(at("in.png"), {"--chroma", "420"}, "half.jpg");
    delivered(at("in.png"), {"--chroma", "444"}, "full.jpg");
    EXPECT_EQ(chromaOf("half.jpg"), "4:2:0");
    EXPECT_EQ(chromaOf("full.jpg"), "4:4:4");
    delivered(at("half.jpg"), {}, "out.jpg");
    EXPECT_EQ(chromaOf("out.jpg"), "4:2:0");
    delivered(at("full.jpg"), {"--quality", "50"}, "out.jpg");
    EXPECT_EQ(chromaOf("out.jpg"), "4:4:4");
    delivered(at("full.jpg"), {"--chroma", "420"}, "out.jpg");
    EXPECT_EQ(chromaOf("out.jpg"), "4:2:0");
}

TEST_F(Deliveries, PackAsTheFormatAllows) {
    writePicture(at("in.png"), gradient(64, 64));
    delivered(at("in.png"), {"--compression", "none"}, "none.tif");
    delivered(at("in.png"), {"--compression", "zstd"}, "zstd.tif");
    EXPECT_LT(std::filesystem::file_size(at("zstd.tif")), std::filesystem::file_size(at("none.tif")));
    delivered(at("in.png"), {"--compression", "0"}, "zero.png");
    EXPECT_GT(std::filesystem::file_size(at("zero.png")), size_t{64 * 64 * 3});
    EXPECT_EQ(delivered(at("in.png"), {"--compression", "lossless"}, "out.webp").pixels,
              readPicture(at("in.png")).pixels);
    const auto errorOf = [&](const std::string& out, const std::string& option, const std::string& value) {
        const CliResult done = krlimage({"apply", at("in.png"), "-o", at(out), "sepia", option, value});
        EXPECT_EQ(done.code, 1);
        EXPECT_FALSE(std::filesystem::exists(at(out)));
        return done.err;
    };
    EXPECT_TELLS(errorOf("no.webp", "--compression", "lzw"),
                 "compression lzw is not for WebP, which has lossless\n");
    EXPECT_TELLS(errorOf("no.jpg", "--compression", "9"), "compression 9 is not for JPEG\n");
    EXPECT_TELLS(errorOf("no.tif", "--compression", "9"), "which has none, packbits, lzw, deflate or zstd\n");
    EXPECT_TELLS(errorOf("no.png", "--chroma", "420"),
                 "chroma 420 is for JPEG, AVIF and HEIC, not for PNG\n");
}

TEST_F(Deliveries, PackPhotographsAndDrawingsEachInItsOwnWay) {
    Bitmap drawing{400, 300, std::vector<Pixel>(400 * 300, Pixel{255, 255, 255, 255}), nullptr};
    for (int32_t y = 0; y < 300; y += 7)
        for (int32_t x = y % 23; x < 400; x += 3 + y % 11) drawing.row(y)[x] = {0, 0, 0, 255};
    writePicture(at("drawing.png"), drawing);
    writePicture(at("photo.png"), gradient(400, 300));
    // Each is twice as large in the other's way.
    EXPECT_LT(std::filesystem::file_size(at("photo.png")), 200'000u);
    EXPECT_LT(std::filesystem::file_size(at("drawing.png")), 2'500u);
}

TEST_F(Deliveries, LeaveMetadataOutWhenStripped) {
    auto metadata = std::make_shared<PictureMetadata>();
    metadata->xmp = {'<', 'x', '/', '>'};
    metadata->texts = {{"Title", "Barn"}};
    Bitmap in = gradient(8, 8);
    in.metadata = metadata;
    writePicture(at("in.png"), in);
    const Bitmap kept = delivered(at("in.png"), {"--strip", "--keep-metadata"}, "kept.png");
    EXPECT_EQ(kept.metadata->xmp, metadata->xmp);
    const Bitmap stripped = delivered(at("in.png"), {"--strip"}, "stripped.png");
    EXPECT_TRUE(stripped.metadata->xmp.empty());
    EXPECT_TRUE(stripped.metadata->texts.empty());
    const CliResult silent = krlimage({"apply", at("in.png"), "-o", at("out.pam"), "sepia", "--strip"});
    EXPECT_EQ(silent.err, "");
}

TEST_F(Deliveries, ConvertColoursToAProfile) {
    writePicture(at("in.png"), gradient(16, 16));
    const CliResult refused =
        krlimage({"apply", at("in.png"), "-o", at("no.png"), "sepia", "--profile", text("p.icc", "none")});
    EXPECT_EQ(refused.code, 1);
    EXPECT_TELLS(refused.err, "p.icc is no colour profile of red, green and blue\n");
    // The library's own profile of another space.
    const Bitmap wide = delivered(at("in.png"), {"--profile", "p3"}, "p3.png");
    EXPECT_FALSE(wide.metadata->colourProfile.empty());
    EXPECT_NE(wide.pixels, readPicture(at("in.png")).pixels);
    const Bitmap back = delivered(at("p3.png"), {"--profile", "srgb"}, "srgb.png");
    for (size_t i = 0; i < back.pixels.size(); ++i)
        ASSERT_NEAR(back.pixels[i].green, readPicture(at("in.png")).pixels[i].green, 2) << i;
    EXPECT_EQ(delivered(at("p3.png"), {"--profile", "keep"}, "kept.png").metadata->colourProfile,
              wide.metadata->colourProfile);
    const CliResult unconverted =
        krlimage({"apply", at("p3.png"), "-o", at("no.pam"), "sepia", "--profile", "srgb"});
    EXPECT_EQ(unconverted.code, 1);
    EXPECT_TELLS(unconverted.err, "PAM is written without converting to another colour profile\n");
    EXPECT_FALSE(std::filesystem::exists(at("no.pam")));
}
#endif

class Placements : public CliTest {
protected:
    Bitmap composed(const std::string& placement) {
        const CliResult done =
            krlimage({"apply", at("in.pam"), "-o", at("out.pam"),
                      "composite(image(\"" + at("over.pam") + "\"), #normal, " + placement + ")"});
        EXPECT_EQ(done.code, 0) << done.err;
        return readPicture(at("out.pam"));
    }
    static Bitmap plain(int32_t width, int32_t height, Pixel colour) {
        return {width, height, std::vector<Pixel>(size_t(width) * size_t(height), colour), nullptr};
    }
    static constexpr Pixel kGround{10, 20, 30, 255}, kOver{200, 150, 100, 255};
    /// The columns and rows that the second picture covers: first and last.
    static std::vector<int32_t> coverOf(const Bitmap& picture) {
        std::vector<int32_t> cover = {picture.width, picture.height, -1, -1};
        for (int32_t y = 0; y < picture.height; ++y)
            for (int32_t x = 0; x < picture.width; ++x)
                if (picture.row(y)[x] != kGround)
                    cover = {std::min(cover[0], x), std::min(cover[1], y), std::max(cover[2], x),
                             std::max(cover[3], y)};
        return cover;
    }
};

TEST_F(Placements, PutASecondPictureOfAnotherSizeIn) {
    writePicture(at("in.pam"), plain(20, 10, kGround)), writePicture(at("over.pam"), plain(4, 4, kOver));
    using Cover = std::vector<int32_t>;
    EXPECT_EQ(coverOf(composed("place: point(1, 2)")), (Cover{1, 2, 4, 5}));
    EXPECT_EQ(coverOf(composed("place: point(50%, 50%)")), (Cover{10, 5, 13, 8}));
    EXPECT_EQ(coverOf(composed("place: point(-2, 8)")), (Cover{0, 8, 1, 9}));
    EXPECT_EQ(coverOf(composed("fit: #none")), (Cover{8, 3, 11, 6}));
    EXPECT_EQ(coverOf(composed("fit: #contain")), (Cover{5, 0, 14, 9}));
    EXPECT_EQ(coverOf(composed("fit: #cover")), (Cover{0, 0, 19, 9}));
    EXPECT_EQ(coverOf(composed("fit: #stretch, scale: 0.5")), (Cover{5, 2, 14, 6}));
    EXPECT_EQ(coverOf(composed("scale: 2, place: point(0, 0)")), (Cover{0, 0, 7, 7}));
    EXPECT_EQ(coverOf(composed("place: point(100, 0)")), (Cover{20, 10, -1, -1}));
}

TEST_F(Placements, ComposeAsByHand) {
    writePicture(at("in.pam"), noise(20, 10)), writePicture(at("over.pam"), noise(4, 4, 9));
    const Bitmap small = readPicture(at("over.pam"));
    Bitmap ground = plain(20, 10, {0, 0, 0, 0});
    for (int32_t y = 0; y < 4; ++y) std::copy_n(small.row(y), 4, ground.row(y + 3) + 7);
    writePicture(at("ground.pam"), ground);
    const Bitmap placed = composed("place: point(7, 3)");
    const CliResult byHand = krlimage({"apply", at("in.pam"), "-o", at("hand.pam"),
                                       "composite(image(\"" + at("ground.pam") + "\"), #normal)"});
    ASSERT_EQ(byHand.code, 0) << byHand.err;
    EXPECT_EQ(placed.pixels, readPicture(at("hand.pam")).pixels);
}

TEST_F(Placements, AreRefusedWhereTheyMeanNothing) {
    writePicture(at("in.pam"), plain(20, 10, kGround)), writePicture(at("over.pam"), plain(4, 4, kOver));
    const auto errorOf = [&](const std::string& call) {
        const CliResult done = krlimage({"apply", at("in.pam"), "-o", at("no.pam"), call});
        EXPECT_EQ(done.code, 1) << call;
        return done.err;
    };
    const std::string over = "composite(image(\"" + at("over.pam") + "\"), #normal, ";
    EXPECT_TELLS(errorOf(over + "fit: #wide)"),
                 "fit: expected #none, #contain, #cover or #stretch, got #wide");
    EXPECT_TELLS(errorOf(over + "scale: 0)"), "scale: expected a number above 0, up to 100, got 0");
    EXPECT_TELLS(errorOf(over + "place: 5)"), "place: expected a point, got 5");
    EXPECT_TELLS(errorOf("sepia(fit: #cover)"), "sepia");
}

}  // namespace
}  // namespace krl::player
