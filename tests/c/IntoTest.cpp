#include <algorithm>
#include <map>
#include <tuple>

#include "c/CallingTest.h"

/// Calls and looks from one picture into another, in tiles and in whole.
namespace krl::test {
namespace {

struct FreeLook {
    void operator()(krl_look* look) const { krl_look_free(look); }
};
using LookPointer = std::unique_ptr<krl_look, FreeLook>;

struct Size {
    int32_t width, height;
};
/// Of several tiles: of whole rows, and of parts of them.
constexpr Size kSizes[] = {{519, 157}, {70001, 2}};

/// The form of a picture in memory.
struct Form {
    int32_t order;
    size_t padding;
};
constexpr Form kForms[] = {{KRL_BGRA, 0}, {KRL_RGBA, 0}, {KRL_BGRA, 12}, {KRL_RGBA, 4}};

/// The pixels as BGRA without padding.
std::vector<uint8_t> pixelsOf(Canvas& canvas) {
    const krl_picture& picture = canvas.picture();
    std::vector<uint8_t> pixels;
    for (int32_t y = 0; y < picture.height; ++y)
        pixels.insert(pixels.end(), canvas.row(y), canvas.row(y) + ptrdiff_t{picture.width} * 4);
    for (size_t i = 0; picture.order == KRL_RGBA && i < pixels.size(); i += 4)
        std::swap(pixels[i], pixels[i + 2]);
    return pixels;
}

void setPixels(Canvas& canvas, const std::vector<uint8_t>& pixels) {
    const krl_picture& picture = canvas.picture();
    for (int32_t y = 0; y < picture.height; ++y)
        for (int32_t x = 0; x < picture.width; ++x)
            for (size_t c = 0; c < 4; ++c) {
                const size_t to = picture.order == KRL_RGBA && c != 3 ? 2 - c : c;
                canvas.row(y)[size_t(x) * 4 + to] =
                    pixels[(size_t(y) * size_t(picture.width) + size_t(x)) * 4 + c];
            }
}

/// Random pixels, the same for every picture of this size.
const std::vector<uint8_t>& randomPixels(const Size& size, int32_t seed) {
    static std::map<std::tuple<int32_t, int32_t, int32_t>, std::vector<uint8_t>> known;
    std::vector<uint8_t>& pixels = known[{size.width, size.height, seed}];
    if (pixels.empty()) pixels = Canvas(size.width, size.height, KRL_BGRA, 0, seed).bytes();
    return pixels;
}

/// A picture of random pixels, the same in every form.
std::unique_ptr<Canvas> noise(const Size& size, const Form& form, int32_t seed) {
    auto canvas = std::make_unique<Canvas>(size.width, size.height, form.order, form.padding, 0);
    setPixels(*canvas, randomPixels(size, seed));
    return canvas;
}

bool worksPerPixel(const krl_method_info* method) { return method->flags & KRL_WORKS_PER_PIXEL; }

std::vector<const krl_method_info*> rewritingMethods() {
    std::vector<const krl_method_info*> found = callableMethods();
    std::erase_if(found, [](const auto* method) { return !(method->flags & KRL_REWRITES_PICTURE); });
    return found;
}

/// The arguments of a call of `method`, with `second` for every picture.
class Arguments {
public:
    Arguments(const krl_method_info& method, int variant, Canvas& second) {
        for (size_t i = 0; i < method.argument_count; ++i) {
            const krl_picture& picture = second.picture();
            const bool isPicture = method.arguments[i]->kind == KRL_KIND_PICTURE;
            values_.emplace_back(isPicture ? krl_picture_value(&picture)
                                           : variantOf(method, i, variant, picture.width, picture.height));
        }
    }
    void replace(size_t index, krl_value* value) { values_[index].reset(value); }
    size_t count() const { return values_.size(); }
    std::vector<krl_argument> list() const {
        std::vector<krl_argument> arguments;
        for (const ValuePointer& value : values_) arguments.push_back({nullptr, value.get()});
        return arguments;
    }
    /// The call as a text, in which pictures are `image("second")`.
    std::string text(const krl_method_info& method) const {
        std::string call = std::string(method.name) + "(", divider;
        for (const ValuePointer& value : values_) {
            std::string written(krl_write(value.get(), nullptr, 0) + 1, ' ');
            krl_write(value.get(), written.data(), written.size());
            written.pop_back();
            const bool isPicture = krl_kind(value.get()) == KRL_KIND_PICTURE;
            call += std::exchange(divider, ", ") + (isPicture ? "image(\"second\")" : written);
        }
        return call + ")";
    }

private:
    std::vector<ValuePointer> values_;
};

std::vector<uint8_t> calledInPlace(const krl_method_info& method, int variant, const Size& size) {
    const auto picture = noise(size, kForms[0], 1), second = noise(size, kForms[0], 2);
    const EnginePointer engine(krl_engine_new(1));
    const Arguments arguments(method, variant, *second);
    EXPECT_EQ(krl_call(engine.get(), &picture->picture(), method.name, arguments.list().data(),
                       arguments.count(), nullptr),
              KRL_OK)
        << method.name;
    return pixelsOf(*picture);
}

TEST(Into, GivesTheBytesOfACallOnACopyInEveryForm) {
    for (const krl_method_info* method : rewritingMethods())
        for (int variant = 0; variant < (worksPerPixel(method) ? 4 : 1); ++variant) {
            const Size size = worksPerPixel(method) ? kSizes[variant % 2] : Size{37, 23};
            const std::vector<uint8_t> expected = calledInPlace(*method, variant, size);
            for (int form = 0; form < 4; ++form) {
                const auto from = noise(size, kForms[form], 1),
                           to = noise(size, kForms[(form + variant) % 4], 3),
                           second = noise(size, kForms[(form + 1) % 4], 2);
                const std::vector<uint8_t> before = from->bytes();
                const EnginePointer engine(
                    krl_engine_new(method->flags & KRL_DEPENDS_ON_BANDS ? 1 : 1 + 2 * (form % 2)));
                const Arguments arguments(*method, variant, *second);
                EXPECT_EQ(krl_call_into(engine.get(), &from->picture(), &to->picture(), method->name,
                                        arguments.list().data(), arguments.count(), nullptr),
                          KRL_OK)
                    << method->name;
                EXPECT_TRUE(pixelsOf(*to) == expected) << method->name << ' ' << variant << ' ' << form;
                EXPECT_TRUE(from->bytes() == before) << method->name;
            }
        }
}

TEST(Into, KeepsWhatIsBetweenTheRowsOfTheOtherPicture) {
    const EnginePointer engine(krl_engine_new(1));
    for (const char* call : {"invert", "fastGaussianBlur(2)"}) {
        Canvas from(5, 4), to(5, 4, KRL_RGBA, 6);
        const std::vector<uint8_t> before = to.bytes();
        ASSERT_EQ(krl_apply_into(engine.get(), &from.picture(), &to.picture(), call, nullptr), KRL_OK);
        for (size_t i = 0; i < before.size(); ++i)
            if (i % 26 >= 20) {
                EXPECT_EQ(to.bytes()[i], before[i]) << call;
            }
    }
}

/// Rewrites in place what is in another form.
TEST(Into, TakesTheSamePictureTwice) {
    const Size size = kSizes[0];
    for (const char* call :
         {"hueShift(40)", "invert(#RGB, mix: 0.5, region: rect(3, 40, 400, 150), feather: 9)"}) {
        const EnginePointer engine(krl_engine_new(2));
        const auto expected = noise(size, kForms[0], 1);
        ASSERT_EQ(krl_apply(engine.get(), &expected->picture(), call, nullptr), KRL_OK);
        for (const Form& form : kForms) {
            const auto canvas = noise(size, form, 1), other = noise(size, form, 1);
            EXPECT_EQ(krl_apply(engine.get(), &canvas->picture(), call, nullptr), KRL_OK);
            EXPECT_TRUE(pixelsOf(*canvas) == pixelsOf(*expected)) << call;
            krl_picture from = other->picture();
            other->picture().order = KRL_BGRA;
            EXPECT_EQ(krl_apply_into(engine.get(), &from, &other->picture(), call, nullptr), KRL_OK);
            EXPECT_TRUE(pixelsOf(*other) == pixelsOf(*expected)) << call;
        }
    }
}

/// A mask in any form, and a region beyond the picture.
TEST(Into, KeepsTheChangeWithinItsExtent) {
    const Size size = kSizes[0];
    const EnginePointer engine(krl_engine_new(3));
    const auto callOn = [&](Canvas& from, Canvas& to, Canvas& mask) {
        const ValuePointer share(krl_picture_value(&mask.picture())),
            region(krl_parse("rect(-2147483647, 7, 500, 2000000000)", nullptr, 0)), feather(krl_integer(30));
        const krl_argument arguments[] = {
            {"mask", share.get()}, {"region", region.get()}, {"feather", feather.get()}};
        const auto call = &from == &to ? krl_call(engine.get(), &to.picture(), "sepia", arguments, 3, nullptr)
                                       : krl_call_into(engine.get(), &from.picture(), &to.picture(), "sepia",
                                                       arguments, 3, nullptr);
        EXPECT_EQ(call, KRL_OK);
        return pixelsOf(to);
    };
    const auto expected = noise(size, kForms[0], 1), mask = noise(size, kForms[0], 4);
    callOn(*expected, *expected, *mask);
    for (const Form& form : kForms) {
        const auto from = noise(size, form, 1), to = noise(size, kForms[1], 5),
                   sameMask = noise(size, form, 4);
        EXPECT_TRUE(callOn(*from, *to, *sameMask) == pixelsOf(*expected));
    }
}

/// The second picture is the one that is written, and the first one begins a row further up.
TEST(Into, ReadsWhatItOverwritesFirst) {
    const EnginePointer engine(krl_engine_new(2));
    std::vector<std::vector<uint8_t>> outcomes;
    for (const bool isShared : {false, true}) {
        Canvas memory(300, 401), first(300, 401), second(300, 401);
        krl_picture from = (isShared ? memory : first).picture(), to = memory.picture();
        krl_picture other = (isShared ? memory : second).picture();
        from.height = to.height = other.height = 400;
        for (krl_picture* shifted : {&to, &other})
            shifted->pixels = static_cast<uint8_t*>(shifted->pixels) + shifted->row_bytes;
        const ValuePointer value(krl_picture_value(&other));
        const krl_argument argument = {nullptr, value.get()};
        EXPECT_EQ(krl_call_into(engine.get(), &from, &to, "composite", &argument, 1, nullptr), KRL_OK);
        outcomes.emplace_back(memory.bytes().begin() + 1200, memory.bytes().end());
    }
    EXPECT_TRUE(outcomes[0] == outcomes[1]);
}

/// What a failure says.
struct Failure {
    krl_code code;
    std::string message, error;
    bool operator==(const Failure&) const = default;
};
std::ostream& operator<<(std::ostream& out, const Failure& failure) {
    return out << failure.code << ": " << failure.message << " (" << failure.error << ')';
}

template <class Call>
Failure failureOf(const Call& call) {
    krl_result* made = nullptr;
    const krl_code code = call(&made);
    const ResultPointer result(made);
    return {code, krl_result_message(made), krl_result_error(made)};
}

TEST(Into, FailsAsACallInPlaceDoesAndWritesNothing) {
    const EnginePointer engine(krl_engine_new(2));
    int failures = 0;
    for (const krl_method_info* method : rewritingMethods()) {
        if (!worksPerPixel(method)) continue;
        for (size_t i = 0; i < method->argument_count; ++i)
            for (const char* text : {"VOID", "#none", "-2000000000", "[:]", "[#a: 1]", "[1: 2]"}) {
                Canvas from(20, 10), to(20, 10, KRL_RGBA, 0, 3), second(20, 10, KRL_BGRA, 0, 2);
                const std::vector<uint8_t> before = to.bytes();
                Arguments arguments(*method, 0, second);
                arguments.replace(i, krl_parse(text, nullptr, 0));
                const Failure into = failureOf([&](krl_result** result) {
                    return krl_call_into(engine.get(), &from.picture(), &to.picture(), method->name,
                                         arguments.list().data(), arguments.count(), result);
                });
                const Failure inPlace = failureOf([&](krl_result** result) {
                    return krl_call(engine.get(), &from.picture(), method->name, arguments.list().data(),
                                    arguments.count(), result);
                });
                EXPECT_EQ(into, inPlace) << method->name;
                if (into.code == KRL_OK) continue;
                ++failures;
                EXPECT_EQ(to.bytes(), before) << method->name << ' ' << text;
            }
    }
    EXPECT_GT(failures, 100);
}

TEST(Into, RefusesWhatIsNoPairOfPictures) {
    const EnginePointer engine(krl_engine_new(1));
    Canvas small(3, 3), large(4, 3);
    const auto failed = [&](krl_picture* from, krl_picture* to) {
        return failureOf(
            [&](krl_result** result) { return krl_apply_into(engine.get(), from, to, "invert", result); });
    };
    EXPECT_EQ(failed(&small.picture(), &large.picture()),
              (Failure{KRL_BAD_PICTURE, "invert: the two pictures have different sizes", ""}));
    EXPECT_EQ(failed(nullptr, &large.picture()).code, KRL_BAD_PICTURE);
    EXPECT_EQ(failed(&small.picture(), nullptr).code, KRL_BAD_PICTURE);
    const LookPointer look(krl_look_new());
    EXPECT_EQ(krl_look_apply_into(engine.get(), look.get(), &small.picture(), &large.picture(), nullptr),
              KRL_BAD_PICTURE);
    EXPECT_EQ(krl_look_apply_into(engine.get(), look.get(), nullptr, &large.picture(), nullptr),
              KRL_BAD_PICTURE);
}

TEST(Into, EndsWithItsEngine) {
    const EnginePointer engine(krl_engine_new(2));
    krl_engine_cancel(engine.get());
    Canvas from(20, 10), to(20, 10, KRL_RGBA);
    const auto inPlace = failureOf(
        [&](krl_result** result) { return krl_apply(engine.get(), &from.picture(), "invert", result); });
    const auto into = failureOf([&](krl_result** result) {
        return krl_apply_into(engine.get(), &from.picture(), &to.picture(), "invert", result);
    });
    EXPECT_EQ(into, inPlace);
    EXPECT_EQ(into.code, KRL_CANCELLED);
}

/// Calls of one look: some that treat every pixel alone, and between them at most one that does not.
struct Chain {
    std::vector<std::pair<const krl_method_info*, int>> calls;
};

std::vector<Chain> chains() {
    std::vector<const krl_method_info*> methods = rewritingMethods();
    std::erase_if(methods, [](const auto* method) { return !worksPerPixel(method); });
    const krl_method_info* const blur = krl_find_method("fastGaussianBlur");
    std::vector<Chain> made;
    for (size_t i = 0; i < methods.size(); ++i) {
        Chain& chain = made.emplace_back();
        for (size_t k = 0; k < 1 + i % 5; ++k)
            chain.calls.push_back({methods[(i + k * 7) % methods.size()], int((i + k) % 4)});
        if (i % 3 == 1)
            chain.calls.insert(chain.calls.begin() + ptrdiff_t(i % chain.calls.size()), {blur, 0});
    }
    return made;
}

/// The calls of a chain one after another on the whole picture.
std::vector<uint8_t> oneByOne(const Chain& chain, const Size& size) {
    const auto picture = noise(size, kForms[0], 1), second = noise(size, kForms[0], 2);
    const EnginePointer engine(krl_engine_new(1));
    for (const auto& [method, variant] : chain.calls) {
        const Arguments arguments(*method, variant, *second);
        EXPECT_EQ(krl_call(engine.get(), &picture->picture(), method->name, arguments.list().data(),
                           arguments.count(), nullptr),
                  KRL_OK)
            << method->name;
    }
    return pixelsOf(*picture);
}

LookPointer lookOf(const Chain& chain, Canvas& second) {
    LookPointer look(krl_look_new());
    for (const auto& [method, variant] : chain.calls) {
        const std::string call = Arguments(*method, variant, second).text(*method);
        EXPECT_EQ(krl_look_add_call(look.get(), call.c_str(), nullptr), KRL_OK) << call;
    }
    EXPECT_EQ(krl_look_set_picture(look.get(), "second", &second.picture()), KRL_OK);
    return look;
}

TEST(Into, RunsTheCallsOfALookAsOneByOne) {
    size_t number = 0;
    for (const Chain& chain : chains()) {
        const Size size = kSizes[++number % 2];
        const std::vector<uint8_t> expected = oneByOne(chain, size);
        for (size_t form = 0; form < 4; ++form) {
            const auto from = noise(size, kForms[form], 1), to = noise(size, kForms[(form + number) % 4], 3),
                       second = noise(size, kForms[(form + 1) % 4], 2);
            const EnginePointer engine(krl_engine_new(1 + 2 * int32_t(number % 2)));
            const LookPointer look = lookOf(chain, *second);
            EXPECT_EQ(
                krl_look_apply_into(engine.get(), look.get(), &from->picture(), &to->picture(), nullptr),
                KRL_OK);
            EXPECT_TRUE(pixelsOf(*to) == expected) << number << ' ' << form;
            EXPECT_EQ(krl_look_apply(engine.get(), look.get(), &from->picture(), nullptr), KRL_OK);
            EXPECT_TRUE(pixelsOf(*from) == expected) << number << ' ' << form;
        }
    }
}

TEST(Into, CopiesForALookWithoutCalls) {
    const EnginePointer engine(krl_engine_new(1));
    const LookPointer look(krl_look_new());
    Canvas from(7, 5), to(7, 5, KRL_RGBA, 4, 2);
    EXPECT_EQ(krl_look_apply_into(engine.get(), look.get(), &from.picture(), &to.picture(), nullptr), KRL_OK);
    EXPECT_EQ(pixelsOf(to), pixelsOf(from));
}

/// A call that is refused as it runs, among others that would run together.
TEST(Into, SaysWhichCallOfALookFailed) {
    const EnginePointer engine(krl_engine_new(1));
    krl_look* made = nullptr;
    const char* text =
        "krlimage look 1\ntitle: T\n\ninvert\nsepia\ncomposite(image(\"small\"), #normal)\ninvert\n";
    ASSERT_EQ(krl_look_read(text, &made, nullptr), KRL_OK);
    const LookPointer look(made);
    Canvas from(20, 10, KRL_RGBA), to(20, 10), small(2, 2);
    ASSERT_EQ(krl_look_set_picture(look.get(), "small", &small.picture()), KRL_OK);
    krl_result* result = nullptr;
    const Failure failure = failureOf([&](krl_result** out) {
        const krl_code code =
            krl_look_apply_into(engine.get(), look.get(), &from.picture(), &to.picture(), &result);
        EXPECT_EQ(krl_result_line(result), 6);
        *out = result;
        return code;
    });
    EXPECT_EQ(failure, (Failure{KRL_METHOD_FAILED, "line 6: composite: Failed Composite function (Image)",
                                "Failed Composite function (Image)"}));
}

/// In place and red first, as it came, whatever ran before the failure.
TEST(Into, LeavesTheOrderOfAPictureWhoseLookFailed) {
    const EnginePointer engine(krl_engine_new(1));
    Canvas small(2, 2);
    for (const std::string before :
         {"invert\n", "invert\ninvert\n", "fastGaussianBlur(2)\ninvert\ninvert\n"}) {
        const std::string calls = "krlimage look 1\ntitle: T\n\n" + before;
        std::vector<std::vector<uint8_t>> outcomes;
        for (const char* last : {"composite(image(\"small\"), #normal)\n", ""}) {
            krl_look* made = nullptr;
            ASSERT_EQ(krl_look_read((calls + last).c_str(), &made, nullptr), KRL_OK);
            const LookPointer look(made);
            krl_look_set_picture(look.get(), "small", &small.picture());
            Canvas canvas(20, 10, KRL_RGBA);
            EXPECT_EQ(krl_look_apply(engine.get(), look.get(), &canvas.picture(), nullptr),
                      *last ? KRL_METHOD_FAILED : KRL_OK);
            outcomes.push_back(canvas.bytes());
        }
        EXPECT_EQ(outcomes[0], outcomes[1]) << before;
    }
}

}  // namespace
}  // namespace krl::test
