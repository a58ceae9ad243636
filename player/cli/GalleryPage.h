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
    size_t original = 0;  ///< index of the picture that it is compared with
};

/// A picture that effects are compared with.
struct GalleryOriginal {
    std::string name;
    std::string picture;
    std::string thumbnail;
    int32_t width = 0, height = 0;
};

/// The contact sheet as a self-contained HTML page. The first original is the picture that the gallery is of;
/// `counts` says how much there is, `106 of 112 methods and 17 looks`.
std::string galleryPage(const std::vector<GalleryOriginal>& originals, const std::vector<GalleryCard>& cards,
                        const std::string& counts);

}  // namespace krl::player
