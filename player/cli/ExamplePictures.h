#pragma once

#include <filesystem>
#include <map>
#include <string>

#include "catalogue/Method.h"
#include "player/lingo/Session.h"
#include "player/pictures/Picture.h"

/// The small pictures in the method reference: what every effect does to a picture that comes with the
/// program.
namespace krl::player {

/// Whether there is something to show of a method.
bool hasExamplePicture(const Method& method);

/// The picture's file, from the folder of the reference page: `pictures/methods/brightness.jpg`.
std::string examplePictureFile(const Method& method);

/// Where a user finds the picture: its file, or what it is called beside the reference page.
std::string examplePictureAddress(const Method& method);

/// Draws example pictures, and keeps the samples that it has read for the next.
class ExamplePainter {
public:
    ExamplePainter();

    /// The picture before the method's example call and after it, side by side. Throws `CommandError`.
    Bitmap picture(const Method& method);

private:
    struct Sample {
        Bitmap whole, small;
    };
    const Sample& sample(const std::string& name);

    Session session_;
    std::map<std::string, Sample> samples_;
};

/// The picture's line in the list of those that the reference page has: the hash of its pixels, and its name.
std::string examplePictureLine(const Method& method, const Bitmap& picture);

/// Writes those pictures and the list of them, both below the folder of the page. A picture that is as listed
/// stays as it is.
void writeExamplePictures(const std::filesystem::path& folder);

}  // namespace krl::player
