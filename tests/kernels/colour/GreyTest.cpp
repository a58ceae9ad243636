#include <gtest/gtest.h>

#include "core/LookupTables.h"
#include "kernels/colour/Grey.h"
#include "support/Picture.h"

namespace krl::test {
namespace {

TEST(Means, AreExactForEverySum) {
    for (uint32_t sum = 0; sum <= 767; ++sum) EXPECT_EQ(int32_t(thirdOf(sum)), sharedTables().meanOf3[sum]);
}

TEST(Means, ReplaceAllColoursAndLeaveAlpha) {
    const Picture source = Picture::random(300, 20, 7);
    const Picture result = source.after([](ImageEngine& e) { return forEachSpan(e, takeMeans); });
    EXPECT_TRUE(sameAlpha(result, source));
    for (size_t i = 0; i < source.pixels().size(); ++i) {
        const Pixel& was = source.pixels()[i];
        const auto mean = uint8_t((was.blue + was.green + was.red) / 3);
        EXPECT_EQ(result.pixels()[i], (Pixel{mean, mean, mean, was.alpha}));
    }
}

TEST(Means, AreHandedOnBatchByBatch) {
    Picture picture = Picture::random(5000, 3, 7);
    ptrdiff_t seen = 0;
    const auto count = [&](const Pixel* first, const Pixel* last) { seen += last - first; };
    EXPECT_EQ(picture.apply([&](ImageEngine& e) { return recolourByMean(e, count); }), kStatusOk);
    EXPECT_EQ(seen, 15000);
}

TEST(Luma, IsTheSumOfTheThreeTables) {
    const LookupTables& t = sharedTables();
    for (int red = 0; red < 256; red += 5)
        for (int green = 0; green < 256; green += 3)
            for (int blue = 0; blue < 256; ++blue)
                ASSERT_EQ(lumaOf(red, green, blue),
                          double{t.lumaBlue[blue]} + t.lumaGreen[green] + t.lumaRed[red]);
}

}  // namespace
}  // namespace krl::test
