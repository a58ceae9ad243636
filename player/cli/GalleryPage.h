#pragma once

#include <string>
#include <vector>

namespace krl::player {

/// One effect on the contact sheet.
struct GalleryCard {
    std::string group;
    std::string name;  ///< without the prefix `krlImage`
    std::string summary;
    std::string call;     ///< shown with a copy button
    std::string answer;   ///< the result, if it is more than success, or the error
    std::string picture;  ///< file names; empty for a method that leaves the picture unchanged
    std::string thumbnail;
};

/// The picture that every effect is compared with.
struct GalleryOriginal {
    std::string name;
    std::string picture;
    std::string thumbnail;
    int32_t width = 0, height = 0;
};

/// The contact sheet as a self-contained HTML page.
std::string galleryPage(const GalleryOriginal& original, const std::vector<GalleryCard>& cards);

}  // namespace krl::player
