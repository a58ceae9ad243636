#pragma once

#include <functional>
#include <string>

#include "catalogue/Method.h"
#include "catalogue/Value.h"

namespace krl {

/// For what picture an example call is written.
struct ExampleSetting {
    int32_t width = 960;
    int32_t height = 640;
    /// The Lingo text for a second image, given the sample's file name; `image("name")` when empty.
    std::function<std::string(const char* sample)> image;
};

/// One argument's example as a Lingo text: `40`, `1.2`, `#RGB`, `rgb(255, 128, 0)`, `point(480, 320)`,
/// `[0: rgb(0, 0, 0), 100: rgb(255, 255, 255)]`.
std::string exampleText(const Argument& argument, const ExampleSetting& setting = {});

/// The same as a value; a second picture is a reference to the sample by its file name.
Value exampleValue(const Argument& argument, const ExampleSetting& setting = {});

/// The call that shows a method: `krlImageBrightness(40, #RGB)`.
std::string exampleCall(const Method& method, const ExampleSetting& setting = {});

}  // namespace krl
