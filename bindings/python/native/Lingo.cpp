#include <cstring>
#include <map>
#include <optional>
#include <sstream>
#include <string>

#include "Values.h"
#include "player/lingo/Session.h"

/// Scripts on pictures in memory.
namespace krl::python {

namespace {

using player::Bitmap;

/// Of a tight BGRA array.
Bitmap bitmapOf(const Array& array) {
    const krl_picture picture = pictureOf(array, KRL_BGRA);
    Bitmap bitmap{picture.width, picture.height, {}, nullptr};
    bitmap.pixels.resize(size_t(picture.width) * size_t(picture.height));
    std::memcpy(bitmap.pixels.data(), picture.pixels, bitmap.pixels.size() * sizeof(Pixel));
    return bitmap;
}

Array arrayOf(const Bitmap& bitmap) {
    Array made =
        newArray({py::ssize_t{bitmap.height}, py::ssize_t{bitmap.width}, py::ssize_t{sizeof(Pixel)}});
    std::memcpy(made.mutable_data(), bitmap.pixels.data(), bitmap.pixels.size() * sizeof(Pixel));
    return made;
}

/// Runs `main` of a script file. Gives what it printed, its alerts, the pictures that it saved, and the error
/// that ended it: message, line, column, excerpt.
py::tuple runLingo(const std::string& script, const std::vector<std::string>& arguments,
                   const std::map<std::string, Array>& pictures, std::optional<uint64_t> steps) {
    player::PictureTable table;
    for (const auto& [name, array] : pictures) table.given[name] = bitmapOf(array);
    std::ostringstream output, alerts;
    std::optional<player::ScriptError> failure;
    {
        const py::gil_scoped_release unlocked;
        try {
            player::SessionOptions options;
            options.pictures = &table;
            if (steps) options.stepLimit = *steps;
            options.output = &output;
            options.alerts = &alerts;
            player::Session(options).run(script, arguments);
        } catch (const player::ScriptError& error) {
            failure = error;
        }
    }
    py::dict made;
    for (const auto& [name, bitmap] : table.saved) made[py::str(name)] = arrayOf(bitmap);
    py::object error = py::none();
    if (failure)
        error = py::make_tuple(failure->message(), failure->place().line, failure->place().column,
                               failure->excerpt());
    return py::make_tuple(output.str(), alerts.str(), made, error);
}

}  // namespace

void bindLingo(py::module_& module) { module.def("run_lingo", runLingo); }

}  // namespace krl::python
