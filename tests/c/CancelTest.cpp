#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <climits>
#include <ctime>
#include <string>
#include <thread>
#include <vector>

#include "krlimage.h"

/// Calls that are cancelled from another thread.
namespace krl::test {
namespace {

/// A picture with every byte drawn at random.
class Pixels {
public:
    Pixels(int32_t width, int32_t height)
        : bytes(size_t(width) * size_t(height) * 4), picture{sizeof(krl_picture), bytes.data(), width, height,
                                                             width * 4,           KRL_BGRA} {
        uint32_t state = 1;
        for (uint8_t& byte : bytes) {
            state = state * 1664525 + 1013904223;
            byte = static_cast<uint8_t>(state >> 24);
        }
    }
    Pixels(const Pixels&) = delete;
    Pixels& operator=(const Pixels&) = delete;

    std::vector<uint8_t> bytes;
    krl_picture picture;
};

/// Every method that can be called, with the arguments of its example.
template <class Visit>
void forEachMethod(Visit&& visit) {
    const krl_catalogue_info* all = krl_catalogue();
    for (size_t f = 0; f < all->family_count; ++f)
        for (size_t m = 0; m < all->families[f]->method_count; ++m) {
            const krl_method_info& method = *all->families[f]->methods[m];
            if (!(method.flags & KRL_MANAGES_ENGINE)) visit(method);
        }
}

/// The arguments of a call by name: a second picture wherever one is needed, otherwise the example.
class Arguments {
public:
    Arguments(const krl_method_info& method, Pixels& second) {
        for (size_t i = 0; i < method.argument_count; ++i) {
            const krl_argument_info& argument = *method.arguments[i];
            if (argument.kind == KRL_KIND_PICTURE) add(argument.name, krl_picture_value(&second.picture));
            if (argument.kind == KRL_KIND_ANY && std::string(method.name) == "broadcastCombine") {
                krl_value* frames = krl_list();
                for (int n = 0; n < 4; ++n) krl_list_add(frames, krl_picture_value(&second.picture));
                add(argument.name, frames);
            }
        }
    }
    ~Arguments() {
        for (krl_value* value : values_) krl_value_free(value);
    }
    Arguments(const Arguments&) = delete;
    Arguments& operator=(const Arguments&) = delete;

    void add(const char* name, krl_value* value) {
        values_.push_back(value);
        given.push_back({name, value});
    }

    std::vector<krl_argument> given;

private:
    std::vector<krl_value*> values_;
};

/// An engine of its own for each test.
class Cancelling : public testing::Test {
protected:
    ~Cancelling() override { krl_engine_free(engine); }

    krl_code call(const krl_method_info& method, Pixels& pixels, const Arguments& arguments) {
        return krl_call(engine, method.flags & KRL_REWRITES_PICTURE ? &pixels.picture : nullptr, method.name,
                        arguments.given.data(), arguments.given.size(), nullptr);
    }

    krl_engine* engine = krl_engine_new(2);
};

TEST_F(Cancelling, EndsEveryMethodBeforeItTouchesThePicture) {
    Pixels pixels(20, 10), second(20, 10);
    const std::vector<uint8_t> before = pixels.bytes;
    forEachMethod([&](const krl_method_info& method) {
        const Arguments arguments(method, second);
        krl_engine_cancel(engine);
        EXPECT_EQ(call(method, pixels, arguments), KRL_CANCELLED) << method.name;
        EXPECT_EQ(pixels.bytes, before) << method.name;
        krl_engine_resume(engine);
        EXPECT_NE(call(method, pixels, arguments), KRL_CANCELLED) << method.name;
        pixels.bytes = before;
    });
}

TEST_F(Cancelling, NamesTheMethodInTheMessageAndLeavesNothingForScripts) {
    Pixels pixels(4, 4);
    krl_engine_cancel(engine);
    krl_result* result = nullptr;
    EXPECT_EQ(krl_apply(engine, &pixels.picture, "invert", &result), KRL_CANCELLED);
    EXPECT_STREQ(krl_result_message(result), "invert: cancelled");
    EXPECT_STREQ(krl_result_error(result), "");
    krl_result_free(result);
    krl_engine_cancel(nullptr);
    krl_engine_resume(nullptr);
}

/// Runs `work` and cancels the engine from another thread after `delay`; returns for how many seconds of this
/// process's processor time the work went on, which other processes do not lengthen.
template <class Work>
double secondsToEnd(krl_engine* engine, std::chrono::milliseconds delay, const Work& work) {
    std::clock_t cancelled = 0;
    std::thread canceller([&] {
        std::this_thread::sleep_for(delay);
        cancelled = std::clock();
        krl_engine_cancel(engine);
    });
    work();
    const std::clock_t ended = std::clock();
    canceller.join();
    krl_engine_resume(engine);
    return static_cast<double>(std::max<std::clock_t>(ended - cancelled, 0)) / CLOCKS_PER_SEC;
}

// A slow machine needs seconds under sanitizers; without tests for cancellation these calls take minutes.
constexpr double kSoon = 4;

TEST_F(Cancelling, EndsSoonInTheMiddleOfALongCall) {
    Pixels pixels(900, 700);
    const char* const longCalls[] = {
        "radialBlur(4000000, point(400, 300), #RGB)",
        "radialBlur(1000000, point(-90000, 300), #RGBA)",
        "zoomBlur(2000000000, point(450, 350), #out, #RGBA)",
        "motionBlur(2000000000, 33, #double, #RGBA)",
        "lensFlare([#star: [#origin: point(450, 350), #radius: 2000.0, #count: 2000000000, #width: 900, "
        "#angle: 1.0, #brightness: 90.0, #transparency: 0, #colourList: [0: rgb(80, 220, 170)], "
        "#blendMethod: #screen]])",
        "lensFlare([#spike: [#origin: point(450, 350), #radius: 2000.0, #count: 2000000000, #seed: 3, "
        "#angle: 1.0, #brightness: 90.0, #transparency: 0, #colourList: [0: rgb(80, 220, 170)], "
        "#blendMethod: #screen]])",
        "lensFlare([#randomFan: [#origin: point(450, 350), #radius: 2000.0, #count: 2000000000, "
        "#aperture: 360, #seed: 3, #angle: 1.0, #brightness: 90.0, #transparency: 0, "
        "#colourList: [0: rgb(80, 220, 170)], #blendMethod: #screen]])"};
    for (const char* text : longCalls) {
        krl_code code = KRL_OK;
        const double time = secondsToEnd(engine, std::chrono::milliseconds(50),
                                         [&] { code = krl_apply(engine, &pixels.picture, text, nullptr); });
        EXPECT_TRUE(code == KRL_CANCELLED || code == KRL_OK) << text << ": " << krl_code_text(code);
        EXPECT_LT(time, kSoon) << text;
    }
}

TEST_F(Cancelling, EndsEveryMethodSoonAtTheFarEndOfItsNumbers) {
    Pixels pixels(1200, 900), second(1200, 900);
    forEachMethod([&](const krl_method_info& method) {
        Arguments arguments(method, second);
        for (size_t i = 0; i < method.argument_count; ++i) {
            const krl_argument_info& argument = *method.arguments[i];
            if (argument.kind == KRL_KIND_INTEGER) arguments.add(argument.name, krl_integer(100000000));
            if (argument.kind == KRL_KIND_REAL) arguments.add(argument.name, krl_real(1e8));
        }
        const double time =
            secondsToEnd(engine, std::chrono::milliseconds(10), [&] { call(method, pixels, arguments); });
        EXPECT_LT(time, kSoon) << method.name;
    });
}

}  // namespace
}  // namespace krl::test
