#pragma once

#include <string>
#include <vector>

namespace krl::player {

/// One effect on the contact sheet.
struct GalleryCard {
    std::string group;
    std::string name;  ///< as the command line takes it
    std::string summary;
    std::string call;     ///< to copy
    std::string answer;   ///< what it gave, where that is more than success, or why it failed
    std::string picture;  ///< file names; empty for a method that leaves the picture as it is
    std::string thumbnail;
};

/// What stands before every effect.
struct GalleryOriginal {
    std::string name;
    std::string picture;
    std::string thumbnail;
    int32_t width = 0, height = 0;
};

/// The contact sheet as a page that needs nothing but its pictures.
std::string galleryPage(const GalleryOriginal& original, const std::vector<GalleryCard>& cards);

}  // namespace krl::player
