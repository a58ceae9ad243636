#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <set>
#include <thread>

#include "c/CallingTest.h"
#include "frei0r/LoadedModule.h"

/// Every frei0r module gives the bytes of the C interface.
namespace krl::test {
namespace {

/// The rules by which methods become modules, once more and in other words.
bool isModule(const krl_method_info& method) {
    const bool isForScriptsAlone = method.flags & (KRL_MANAGES_ENGINE | KRL_INERT);
    const bool rewrites = method.flags & (KRL_REWRITES_PICTURE | KRL_CHANGES_SECOND_PICTURE);
    const bool makesAnySize = method.flags == KRL_MAKES_PICTURE && method.argument_count >= 2 &&
                              std::strcmp(method.arguments[0]->name, "width") == 0;
    return !isForScriptsAlone && (rewrites || makesAnySize);
}

std::vector<const krl_method_info*> moduleMethods() {
    std::vector<const krl_method_info*> found = callableMethods();
    found.erase(std::remove_if(found.begin(), found.end(),
                               [](const krl_method_info* method) { return !isModule(*method); }),
                found.end());
    return found;
}

Frame randomFrame(int32_t width, int32_t height, int32_t seed) {
    const Canvas canvas(width, height, KRL_BGRA, 0, seed);
    Frame frame(size_t(width) * size_t(height));
    std::memcpy(frame.data(), canvas.bytes().data(), canvas.bytes().size());
    return frame;
}

bool isSource(const krl_method_info& method) { return method.flags & KRL_MAKES_PICTURE; }

struct Size {
    int32_t width, height;
};

krl_picture pictureOver(Frame& frame, Size size) {
    return {sizeof(krl_picture), frame.data(), size.width, size.height, ptrdiff_t{size.width} * 4, KRL_BGRA};
}

/// What the C interface makes of two frames; `values` has one for each argument that is not left out.
Frame expected(const krl_method_info& method, Size size, const Frame& first, Frame second,
               std::vector<ValuePointer> values) {
    Frame out = first;
    const krl_picture picture = pictureOver(out, size), beside = pictureOver(second, size);
    const bool isLoaded = method.flags & KRL_REWRITES_PICTURE;
    bool isFirstPicture = true;
    std::vector<krl_argument> arguments;
    values.resize(method.argument_count);
    for (size_t i = 0; i < method.argument_count; ++i) {
        const krl_argument_info& argument = *method.arguments[i];
        if (argument.kind == KRL_KIND_PICTURE) {
            values[i].reset(krl_picture_value(isFirstPicture && !isLoaded ? &picture : &beside));
            isFirstPicture = false;
        }
        if (isSource(method) && i < 2) values[i].reset(krl_integer(i ? size.height : size.width));
        arguments.push_back({argument.name, values[i].get()});
    }
    const EnginePointer engine(krl_engine_new(1));
    krl_result* result = nullptr;
    EXPECT_EQ(krl_call(engine.get(), isLoaded ? &picture : nullptr, method.name, arguments.data(),
                       arguments.size(), &result),
              KRL_OK)
        << krl_result_message(result);
    const ResultPointer owner(result);
    if (!isSource(method)) return out;
    krl_picture made = {sizeof made, nullptr, 0, 0, 0, 0};
    EXPECT_EQ(krl_get_picture(krl_find(krl_result_value(result), "buffer"), &made), KRL_OK);
    std::memcpy(out.data(), made.pixels, out.size() * 4);
    return out;
}

TEST(Frei0r, ModulesAreThoseOfTheCatalogue) {
    std::set<std::string> expected, found;
    for (const krl_method_info* method : moduleMethods())
        expected.insert(std::string("krl_") + method->name + ".so");
    for (const auto& entry : std::filesystem::directory_iterator(KRL_FREI0R_MODULES))
        found.insert(entry.path().filename());
    EXPECT_EQ(found, expected);
    EXPECT_GT(found.size(), 80u);
    EXPECT_TRUE(found.count("krl_vignette.so"));
    EXPECT_TRUE(found.count("krl_RGBGradient.so"));
    EXPECT_TRUE(found.count("krl_reinterlace.so"));
    EXPECT_FALSE(found.count("krl_halfSize.so")) << "changes the size";
    EXPECT_FALSE(found.count("krl_broadcastCombine.so"));
}

/// What is in a file that describes modules.
std::string descriptionIn(const std::string& file) {
    std::ifstream in(KRL_FREI0R_MODULES "/../share/" + file);
    EXPECT_TRUE(in) << file;
    return {std::istreambuf_iterator<char>(in), {}};
}

TEST(Frei0r, DescriptionsForKdenliveHaveEveryField) {
    for (const krl_method_info* method : moduleMethods()) {
        if (isSource(*method)) continue;
        const bool isMixer = method->flags & KRL_NEEDS_SECOND_PICTURE;
        const std::string text =
            descriptionIn(std::string("kdenlive/") + (isMixer ? "transitions" : "effects") + "/frei0r_krl_" +
                          method->name + ".xml");
        EXPECT_NE(text.find(std::string(" tag=\"frei0r.krl_") + method->name + "\""), std::string::npos);
        const LoadedModule module(method->name);
        for (const f0r_param_info_t& parameter : module.parameters) {
            const bool hasField = parameter.type != kFrei0rString && parameter.type != kFrei0rPosition;
            const bool isFound =
                text.find(std::string("<parameter name=\"") + parameter.name + "\"") != std::string::npos;
            EXPECT_EQ(isFound, hasField) << method->name << ": " << parameter.name;
        }
    }
}

TEST(Frei0r, DescriptionsForMltHaveEveryParameter) {
    for (const krl_method_info* method : moduleMethods()) {
        const char* const type = isSource(*method)                          ? "producer"
                                 : method->flags & KRL_NEEDS_SECOND_PICTURE ? "transition"
                                                                            : "filter";
        const std::string text =
            descriptionIn(std::string("mlt-7/frei0r/") + type + "_frei0r.krl_" + method->name + ".yml");
        EXPECT_NE(text.find(std::string("identifier: frei0r.krl_") + method->name + "\n"), std::string::npos);
        const LoadedModule module(method->name);
        size_t found = 0;
        for (const f0r_param_info_t& parameter : module.parameters) {
            found = text.find(std::string("  - identifier: ") + parameter.name + "\n", found);
            EXPECT_NE(found, std::string::npos) << method->name << ": " << parameter.name;
        }
    }
    const std::string composite = descriptionIn("mlt-7/frei0r/transition_frei0r.krl_composite.yml");
    EXPECT_NE(composite.find("      - multiply\n"), std::string::npos) << "the choices by name";
}

TEST(Frei0r, ModulesSayWhatTheyAre) {
    for (const krl_method_info* method : moduleMethods()) {
        const LoadedModule module(method->name);
        ASSERT_TRUE(module);
        EXPECT_EQ(module.info.name, std::string("krl_") + method->name);
        EXPECT_STREQ(module.info.explanation, method->summary);
        EXPECT_EQ(module.info.color_model, kFrei0rBgra8888);
        EXPECT_EQ(module.info.frei0r_version, 1);
        EXPECT_EQ(module.info.plugin_type, isSource(*method)                          ? kFrei0rSource
                                           : method->flags & KRL_NEEDS_SECOND_PICTURE ? kFrei0rMixer2
                                                                                      : kFrei0rFilter);
        std::set<std::string> names;
        for (const f0r_param_info_t& parameter : module.parameters) {
            EXPECT_TRUE(names.insert(parameter.name).second) << method->name << ": " << parameter.name;
            EXPECT_NE(parameter.explanation, nullptr);
        }
    }
}

TEST(Frei0r, DefaultsGiveTheExampleInEverySize) {
    for (const krl_method_info* method : moduleMethods()) {
        const LoadedModule module(method->name);
        ASSERT_TRUE(module);
        for (const Size size : {Size{96, 64}, Size{37, 29}, Size{9, 3}, Size{130, 101}}) {
            const Frame first = randomFrame(size.width, size.height, 1),
                        second = randomFrame(size.width, size.height, 2);
            Player player(module, size.width, size.height);
            const Frame wanted = expected(*method, size, first, second, {});
            EXPECT_EQ(player.play(first, second), wanted) << method->name << " at " << size.width;
            EXPECT_EQ(player.play(first, second), wanted) << method->name << ", the second frame";
        }
    }
}

/// Moves every parameter that is a number away from its default, and gives the values that it then stands
/// for.
class OtherSettings {
public:
    OtherSettings(const krl_method_info& method, const LoadedModule& module, Player& player, Size size)
        : method_(method), player_(player), size_(size), values_(method.argument_count) {
        size_t next = 0;
        for (size_t i = 0; i < method.argument_count; ++i) {
            const bool isSize = isSource(method) && i < 2;
            if (!isSize && method.arguments[i]->kind != KRL_KIND_PICTURE) move(i, next++, module.parameters);
        }
    }
    std::vector<ValuePointer> values() { return std::move(values_); }

private:
    void move(size_t index, size_t parameter, const std::vector<f0r_param_info_t>& parameters) {
        const krl_argument_info& argument = *method_.arguments[index];
        EXPECT_STREQ(parameters[parameter].name, argument.name);
        switch (argument.kind) {
            case KRL_KIND_INTEGER:
            case KRL_KIND_REAL: {
                EXPECT_EQ(parameters[parameter].type, kFrei0rDouble);
                const double number = argument.from + 0.25 * (argument.to - argument.from);
                player_.set(parameter, 0.25);
                values_[index].reset(argument.kind == KRL_KIND_REAL
                                         ? krl_real(number)
                                         : krl_integer(int32_t(std::lround(number))));
                break;
            }
            case KRL_KIND_SYMBOL: {
                const bool isSwitch = parameters[parameter].type == kFrei0rBool;
                const size_t last = argument.choice_count - 1;
                player_.set(parameter, 1.0);
                values_[index].reset(krl_symbol(isSwitch ? "true" : argument.choices[last]));
                break;
            }
            case KRL_KIND_COLOUR:
                EXPECT_EQ(parameters[parameter].type, kFrei0rColor);
                player_.set(parameter, f0r_param_color_t{0.2f, 0.4f, 1});
                values_[index].reset(krl_colour(51, 102, 255));
                break;
            case KRL_KIND_POINT:
                EXPECT_EQ(parameters[parameter].type, kFrei0rPosition);
                player_.set(parameter, f0r_param_position_t{0.25, 0.75});
                values_[index].reset(krl_point(size_.width / 4, size_.height * 3 / 4));
                break;
            case KRL_KIND_COLOUR_LIST: {
                EXPECT_EQ(parameters[parameter].type, kFrei0rString);
                const char* text = "[0: rgb(9, 80, 160), 100: rgb(250, 20, 30)]";
                player_.set(parameter, text);
                values_[index].reset(krl_parse(text, nullptr, 0));
                break;
            }
            default:
                EXPECT_EQ(parameters[parameter].type, kFrei0rString);
        }
    }

    const krl_method_info& method_;
    Player& player_;
    Size size_;
    std::vector<ValuePointer> values_;
};

TEST(Frei0r, ParametersReachEveryArgument) {
    constexpr Size kSize = {64, 48};
    const Frame first = randomFrame(64, 48, 1), second = randomFrame(64, 48, 2);
    for (const krl_method_info* method : moduleMethods()) {
        const LoadedModule module(method->name);
        ASSERT_TRUE(module);
        Player player(module, 64, 48);
        player.play(first, second);
        OtherSettings settings(*method, module, player, kSize);
        EXPECT_EQ(player.play(first, second), expected(*method, kSize, first, second, settings.values()))
            << method->name;
    }
}

TEST(Frei0r, DefaultsSetAgainChangeNothing) {
    const Frame first = randomFrame(67, 43, 1), second = randomFrame(67, 43, 2);
    for (const krl_method_info* method : moduleMethods()) {
        const LoadedModule module(method->name);
        ASSERT_TRUE(module);
        Player player(module, 67, 43), fresh(module, 67, 43);
        for (size_t i = 0; i < module.parameters.size(); ++i) {
            const auto again = [&]<class Kind>(Kind other) {
                const Kind before = player.get<Kind>(i);
                player.set(i, other);
                player.set(i, before);
            };
            switch (module.parameters[i].type) {
                case kFrei0rColor:
                    again(f0r_param_color_t{0, 1, 0});
                    break;
                case kFrei0rPosition:
                    again(f0r_param_position_t{0, 0});
                    break;
                case kFrei0rString:
                    player.set(i, std::string(player.get<const char*>(i)).c_str());
                    break;
                default:
                    again(0.0);
            }
        }
        EXPECT_EQ(player.play(first, second), fresh.play(first, second)) << method->name;
    }
}

TEST(Frei0r, ChoicesAreTakenByNameToo) {
    const Frame first = randomFrame(20, 20, 1);
    const LoadedModule module("brightness");
    ASSERT_TRUE(module);
    ASSERT_STREQ(module.parameters[2].name, "colourOrAlphaName");
    Player byName(module, 20, 20), byNumber(module, 20, 20), plain(module, 20, 20);
    byName.set(2, "alpha");
    byNumber.set(1, 1.0);
    EXPECT_EQ(byName.play(first, first), byNumber.play(first, first));
    EXPECT_NE(byName.play(first, first), plain.play(first, first));
    byName.set(2, "");
    EXPECT_EQ(byName.play(first, first), plain.play(first, first));
}

/// What a piece of work writes to standard error.
template <class Work>
std::string complaintsOf(Work&& work) {
    ::testing::internal::CaptureStderr();
    work();
    return ::testing::internal::GetCapturedStderr();
}

TEST(Frei0r, ABadListIsReportedOnceAndLetsFramesPass) {
    const Frame first = randomFrame(20, 20, 1);
    const LoadedModule module("multiColourise");
    ASSERT_TRUE(module);
    Player player(module, 20, 20);
    const Frame good = player.play(first, first);
    for (const char* bad : {"[0: rgb(1, 2", "40", "[#a: 3]"}) {
        const std::string complaints = complaintsOf([&] {
            for (int frame = 0; frame < 3; ++frame) {
                player.set(0, bad);
                EXPECT_EQ(player.play(first, first), first) << bad;
            }
        });
        EXPECT_EQ(complaints.rfind("krl_multiColourise: ", 0), 0u) << complaints;
        EXPECT_NE(complaints.find("colourValues"), std::string::npos) << complaints;
        EXPECT_EQ(std::count(complaints.begin(), complaints.end(), '\n'), 1) << complaints;
    }
    player.set(0, "[0: rgb(24, 18, 60), 50: rgb(210, 90, 60), 100: rgb(255, 244, 200)]");
    EXPECT_EQ(player.play(first, first), good) << "works again";
}

TEST(Frei0r, ANumberBeyondItsRangeIsReportedAndCountsAsTheEnd) {
    const Frame first = randomFrame(20, 20, 1);
    const LoadedModule module("brightness");
    ASSERT_TRUE(module);
    Player player(module, 20, 20), last(module, 20, 20);
    last.set(0, 1.0);
    EXPECT_EQ(complaintsOf([&] { player.set(0, 5.0); }),
              "krl_brightness: brightnessInt: expected a number from 0 to 1, got 5\n");
    EXPECT_EQ(player.play(first, first), last.play(first, first));
    EXPECT_NE(complaintsOf([&] { player.set(0, std::nan("")); }), "");
    EXPECT_EQ(complaintsOf([&] { player.set(2, "Hue"); }),
              "krl_brightness: colourOrAlpha: expected one of RGB, Alpha, got Hue\n");
    EXPECT_EQ(player.play(first, first), first);
}

TEST(Frei0r, NoInstanceIsMadeForASizeThatCannotBe) {
    const LoadedModule module("invert");
    ASSERT_TRUE(module);
    for (const Size size : {Size{0, 5}, Size{40000, 40000}, Size{-1, -1}}) {
        const std::string complaints = complaintsOf(
            [&] { EXPECT_EQ(module.construct(unsigned(size.width), unsigned(size.height)), nullptr); });
        EXPECT_EQ(std::count(complaints.begin(), complaints.end(), '\n'), 1);
    }
}

TEST(Frei0r, EightInstancesRunAtOnce) {
    const LoadedModule modules[] = {LoadedModule("fastGaussianBlur"), LoadedModule("hueShift"),
                                    LoadedModule("twirl")};
    const auto chain = [&](const Frame& frame) {
        Frame now = frame;
        for (const LoadedModule& module : modules) {
            Player player(module, 200, 150);
            for (int pass = 0; pass < 3; ++pass) now = player.play(now, now);
        }
        return now;
    };
    const Frame first = randomFrame(200, 150, 1), wanted = chain(first);
    std::vector<Frame> outcomes(8);
    std::vector<std::thread> threads;
    for (Frame& outcome : outcomes) threads.emplace_back([&] { outcome = chain(first); });
    for (std::thread& thread : threads) thread.join();
    for (const Frame& outcome : outcomes) EXPECT_EQ(outcome, wanted);
}

}  // namespace
}  // namespace krl::test
