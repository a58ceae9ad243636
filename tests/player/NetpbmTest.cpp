#include "tests/player/CliRun.h"

namespace krl::player {
namespace {

class Netpbm : public CliTest {
protected:
    std::vector<Pixel> pixelsOf(const std::string& content) {
        return readPicture(text("a.ppm", content)).pixels;
    }
    std::string errorOf(const std::string& content) {
        try {
            pixelsOf(content);
        } catch (const PictureError& error) {
            return error.what();
        }
        return "";
    }
};

TEST_F(Netpbm, MapsOfGreyAndColourAreRead) {
    EXPECT_EQ(pixelsOf("P5\n2 1\n255\nA\xFF"), (std::vector<Pixel>{{65, 65, 65, 255}, {255, 255, 255, 255}}));
    EXPECT_EQ(pixelsOf("P6 # a comment\n# 9 9\n1\t2 255\nabcdef"),
              (std::vector<Pixel>{{'c', 'b', 'a', 255}, {'f', 'e', 'd', 255}}));
    EXPECT_EQ(pixelsOf(std::string("P5 2 1 65535\n\x12\x34\xFE\xFF", 17)),
              (std::vector<Pixel>{{0x12, 0x12, 0x12, 255}, {0xFE, 0xFE, 0xFE, 255}}));
    EXPECT_EQ(pixelsOf("P5 3 1 7\n\1\7\x9"),
              (std::vector<Pixel>{{36, 36, 36, 255}, {255, 255, 255, 255}, {255, 255, 255, 255}}));
}

TEST_F(Netpbm, BrokenMapsAreReportedInOneLine) {
    EXPECT_TELLS(errorOf("P5\n2 2\n255\nabc"), "a.ppm: it ends in row 2 of 2");
    EXPECT_TELLS(errorOf("P5\n2 x\n255\nabcd"), "expected a number in its header");
    EXPECT_TELLS(errorOf("P5\n2 2\n70000\nabcd"), "its largest sample must be from 1 to 65535");
    EXPECT_TELLS(errorOf("P6\n99999999 99999999\n255\n"), "is too large");
    EXPECT_TELLS(errorOf("P5"), "its largest sample");
    EXPECT_TELLS(errorOf("P3\n1 1 255\n1 2 3"),
                 "of the Netpbm formats, P5 (.pgm), P6 (.ppm) and P7 (.pam) can be read");
}

}  // namespace
}  // namespace krl::player
