#pragma once

#include <string>
#include <vector>

#include "host/MethodRegistry.h"
#include "player/host/EmbeddedHost.h"
#include "player/host/Xtra.h"

namespace krl::test {

/// The name of the method behind a selector, 1 and up.
std::string methodName(int32_t selector);

/// The outcome of a method.
struct Answer {
    host::HostStatus status = 0;
    player::Value result;
    std::string error;      ///< the message under `error`; empty for 0
    bool reported = false;  ///< whether there is an `error` entry
};

/// The plug-in in the embedded host with an engine of `bands` bands and a picture: methods are
/// called through the plug-in interface, with values made from the registry.
class Stage {
public:
    explicit Stage(bool withEngine = true);
    ~Stage();

    /// Loads a fresh picture of random bytes.
    void load(int32_t width, int32_t height, int32_t seed = 1);
    void quit();
    void setBands(int32_t bands);
    const std::vector<Pixel>& pixels() const;

    /// A new picture of random bytes.
    player::Value image(int32_t width, int32_t height, int32_t seed);
    /// The registry's example of an argument, second images in the loaded picture's size.
    player::Value example(const Argument& argument);
    std::vector<player::Value> examples(const Method& method);

    /// The value of a Lingo expression.
    player::Value evaluate(const std::string& text);

    player::Value integer(int32_t number) { return player::Value::integer(number); }
    player::Value real(double number) { return host_.heap.number(number); }
    player::Value string(const char* text) { return host_.heap.string(text); }
    player::Value symbol(const char* name) { return player::Value::symbol(host_.symbols.symbol(name)); }

    Answer call(const Method& method, const std::vector<player::Value>& arguments);
    Answer call(const char* name, const std::vector<player::Value>& arguments = {});
    /// Makes a call like the host.
    host::HostStatus send(host::CallInfo& info);

    /// The host itself, for replacing operations by failing ones.
    player::EmbeddedHost& embeddedHost() { return host_; }

    /// Locks held on all images.
    int64_t locks() const { return host_.locks(); }
    /// Releases the instance and returns whether everything was released.
    bool leavesNothing();

private:
    ImageEngine* engine() const;
    Answer read(host::HostStatus status, player::Value result);

    player::EmbeddedHost host_;
    player::Xtra xtra_;
    player::Value instance_, picture_;
};

}  // namespace krl::test
