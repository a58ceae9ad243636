#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <iterator>
#include <set>

#include "catalogue/Catalogue.h"
#include "player/cli/ExamplePictures.h"
#include "player/cli/SideBySide.h"
#include "tests/player/CliRun.h"

namespace krl::player {
namespace {

namespace fs = std::filesystem;

const fs::path kDocs = fs::path(KRL_SOURCE_DIR) / "docs";

std::string contentOf(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

std::vector<const Method*> shownMethods() {
    std::vector<const Method*> shown;
    for (const Method* method : catalogue().methods())
        if (hasExamplePicture(*method)) shown.push_back(method);
    return shown;
}

/// The mean difference of a level.
double distanceOf(const Bitmap& a, const Bitmap& b) {
    double sum = 0;
    for (size_t i = 0; i < a.pixels.size(); ++i)
        for (size_t part = 0; part < 3; ++part) sum += std::abs(a.pixels[i][part] - b.pixels[i][part]);
    return sum / double(a.pixels.size()) / 3;
}

TEST(ExamplePictures, AreOfEveryEffectAndOfNothingElse) {
    const std::string page = contentOf(kDocs / "methods.md");
    std::set<std::string> names = {"pictures.txt"};
    for (const Method* method : catalogue().methods()) {
        const std::string file = examplePictureFile(*method);
        const bool isShown = page.find("](" + file + ")") != std::string::npos;
        EXPECT_EQ(isShown, hasExamplePicture(*method)) << method->name();
        EXPECT_TRUE(isShown || !method->rewritesPicture()) << method->name();
        if (hasExamplePicture(*method)) names.insert(method->shortName() + ".jpg");
    }
    EXPECT_GT(names.size(), 90u);
    std::set<std::string> found;
    for (const fs::directory_entry& entry : fs::directory_iterator(kDocs / "pictures/methods"))
        found.insert(entry.path().filename().string());
    EXPECT_EQ(found, names);
}

/// What the effects do today.
const std::vector<Bitmap>& pictures() {
    static const std::vector<Bitmap> made = [] {
        const std::vector<const Method*> methods = shownMethods();
        std::vector<Bitmap> all(methods.size());
        workSideBySide(methods.size(), 0, [&]() -> Worker {
            const auto painter = std::make_shared<ExamplePainter>();
            return [&, painter](size_t i) { all[i] = painter->picture(*methods[i]); };
        });
        return all;
    }();
    return made;
}

/// By their bytes before they are packed, which may differ with the library.
TEST(ExamplePictures, AreUpToDate) {
    const std::vector<const Method*> methods = shownMethods();
    std::string list;
    for (size_t i = 0; i < methods.size(); ++i) list += examplePictureLine(*methods[i], pictures()[i]);
    EXPECT_TRUE(list == contentOf(kDocs / "pictures/methods/pictures.txt"))
        << "regenerate them with: ./run docs -o docs";
}

#if defined(KRL_WITH_PNG_JPEG)
TEST(ExamplePictures, AreInTheirFiles) {
    const std::vector<const Method*> methods = shownMethods();
    for (size_t i = 0; i < methods.size(); ++i) {
        const Bitmap packed = readPicture(kDocs / examplePictureFile(*methods[i]));
        ASSERT_EQ(packed.width, pictures()[i].width) << methods[i]->name();
        ASSERT_EQ(packed.height, pictures()[i].height) << methods[i]->name();
        EXPECT_LT(distanceOf(packed, pictures()[i]), 12) << methods[i]->name();
    }
}
#endif

TEST(ExamplePictures, ShowADifference) {
    const std::vector<const Method*> methods = shownMethods();
    for (size_t i = 0; i < methods.size(); ++i) {
        const Bitmap& both = pictures()[i];
        bool differs = both.width != 2 * 240 + 6;
        for (int32_t y = 0; y < both.height && !differs; ++y)
            differs = !std::equal(both.row(y), both.row(y) + 240, both.row(y) + 246);
        EXPECT_TRUE(differs) << methods[i]->name();
    }
}

TEST(ExamplePictures, AreNamedByHelp) {
    EXPECT_TELLS(krlimage({"help", "sepia"}).out,
                 "\nPicture\n  " + (kDocs / "pictures/methods/sepia.jpg").string() + "\n");
    EXPECT_EQ(krlimage({"help", "stopTimer"}).out.find("Picture\n"), std::string::npos);
}

}  // namespace
}  // namespace krl::player
