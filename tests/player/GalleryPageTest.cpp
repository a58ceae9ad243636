#include <gtest/gtest.h>

#include "player/cli/GalleryPage.h"

namespace krl::player {
namespace {

const GalleryOriginal kOriginal{"a<b>&\"c\"", "original.webp", "thumbnails/original.webp", 48, 32};

/// How often `part` occurs in `text`.
size_t occurrences(const std::string& text, const std::string& part) {
    size_t count = 0;
    for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size()))
        ++count;
    return count;
}

TEST(GalleryPage, EscapesEveryTextThatComesFromOutside) {
    const std::string page = galleryPage({kOriginal}, {}, "");
    EXPECT_EQ(occurrences(page, "a&lt;b&gt;&amp;&quot;c&quot;"), 2u);  // title and heading
    EXPECT_EQ(page.find("a<b"), std::string::npos);
    const std::string card =
        galleryPage({kOriginal}, {{"Tone & more", "n>1", "s<2", "c(\"x\")", "r&d", "p.webp", "t.webp"}}, "");
    for (const char* escaped : {"<h3>n&gt;1</h3>", "<p>s&lt;2</p>", "<code>c(&quot;x&quot;)</code>",
                                "<p class=\"answer\">r&amp;d</p>", "Tone &amp; more <small>1</small>"})
        EXPECT_EQ(occurrences(card, escaped), 1u) << escaped;
}

TEST(GalleryPage, ShowsTheThumbnailAndOpensThePicture) {
    const std::string page = galleryPage(
        {kOriginal}, {{"Tone", "invert", "", "invert(#RGB)", "", "invert.webp", "thumbnails/i.webp"}}, "");
    EXPECT_EQ(occurrences(page, "data-picture=\"invert.webp\""), 1u);
    EXPECT_EQ(occurrences(page,
                          "<img class=\"after\" loading=\"lazy\" decoding=\"async\" alt=\"invert\" "
                          "src=\"thumbnails/i.webp\">"),
              1u);
    EXPECT_EQ(occurrences(page,
                          "<img class=\"before\" loading=\"lazy\" alt=\"\" "
                          "src=\"thumbnails/original.webp\">"),
              1u);
    EXPECT_EQ(occurrences(page, "aspect-ratio: 48 / 32"), 1u);
}

TEST(GalleryPage, GroupsCardsByTheirHeadingsInTheOrderOfTheFirst) {
    const auto card = [](const char* group, const char* name) {
        return GalleryCard{group, name, "", "", "", "", ""};
    };
    const std::string page = galleryPage(
        {kOriginal}, {card("Tone", "a"), card("Blur", "b"), card("Tone", "c")}, "3 of 4 <methods>");
    EXPECT_EQ(occurrences(page, "<p>3 of 4 &lt;methods&gt; on a&lt;b&gt;"), 1u);
    EXPECT_EQ(occurrences(page, "<section>"), 2u);
    EXPECT_EQ(occurrences(page, "<h2 id=\"Tone\">Tone <small>2</small></h2>"), 1u);
    EXPECT_LT(page.find("<h3>c</h3>"), page.find("<h2 id=\"Blur\">"));
    EXPECT_EQ(occurrences(page, "This picture is unchanged."), 3u);
}

TEST(GalleryPage, ComparesEachCardWithItsOwnOriginal) {
    const GalleryOriginal logo{"logo.png", "before-logo.webp", "thumbnails/before-logo.webp", 30, 30};
    GalleryCard card{"Alpha", "alphaCrop", "", "", "", "alphaCrop.webp", "thumbnails/alphaCrop.webp"};
    card.original = 1;
    const std::string page = galleryPage({kOriginal, logo}, {card}, "");
    EXPECT_EQ(occurrences(page,
                          "aspect-ratio: 30 / 30\" data-picture=\"alphaCrop.webp\" "
                          "data-before=\"before-logo.webp\""),
              1u);
    EXPECT_EQ(occurrences(page, "src=\"thumbnails/before-logo.webp\""), 1u);
    EXPECT_EQ(occurrences(page, "On logo.png, which it is made for."), 1u);
}

TEST(GalleryPage, NamesItsDialogAndLoadsNothingBeforeItIsSeen) {
    const std::string page = galleryPage(
        {kOriginal}, {{"Tone", "invert", "", "invert(#RGB)", "", "invert.webp", "thumbnails/i.webp"}}, "");
    EXPECT_EQ(occurrences(page, "<dialog aria-labelledby=\"shown\">"), 1u);
    EXPECT_EQ(occurrences(page, "<button class=\"close\" aria-label=\"Close\">"), 1u);
    EXPECT_EQ(occurrences(page, " src=\""), occurrences(page, "loading=\"lazy\""));
}

}  // namespace
}  // namespace krl::player
