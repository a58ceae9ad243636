#pragma once

#include <cstdint>
#include <vector>

#include "Scene.h"
#include "catalogue/Method.h"
#include "player/host/Xtra.h"
#include "player/lingo/Interpreter.h"

namespace krl::bench {

struct Size {
    int32_t width, height;
};

/// A plug-in in the embedded host with the landscape loaded.
class Stage {
public:
    Stage(player::PlugInLibrary plugIn, Size size, bool oneBand);
    ~Stage();
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;

    /// As it was loaded.
    const player::Bitmap& original() const { return clean_; }
    std::vector<player::Value> examples(const Method& method);

    /// Restores the original picture.
    void restore();
    void call(const Method& method, const std::vector<player::Value>& arguments);
    /// Milliseconds of a call on the original picture.
    double timed(const Method& method, const std::vector<player::Value>& arguments);
    double timedPass();
    int64_t pixelCount() const { return int64_t(clean_.width) * clean_.height; }

private:
    void send(const char* name, const player::Value& argument);
    int32_t bands() const { return beside_.getThreadCount(); }
    uint8_t* bytes();

    player::SessionOptions options_;
    player::EmbeddedHost host_{uint64_t{4} << 30};
    player::Xtra xtra_;
    player::Interpreter interpreter_;
    player::Bitmap clean_;
    player::Value picture_, instance_;
    ImageEngine beside_;  ///< works on the same pixels, to time a pass
};

}  // namespace krl::bench
