#include <climits>
#include <cmath>

#include "c/CallingTest.h"

/// Nothing that a caller does wrong does more than give an error.
namespace krl::test {
namespace {

class BadInput : public testing::Test {
protected:
    BadInput() : engine_(krl_engine_new(2)), canvas_(6, 4), before_(canvas_.bytes()) {}
    ~BadInput() override { krl_result_free(result_); }

    krl_code call(const char* method, const std::vector<krl_argument>& arguments = {}) {
        krl_result_free(result_);
        return krl_call(engine_.get(), &canvas_.picture(), method, arguments.data(), arguments.size(),
                        &result_);
    }
    krl_code apply(const char* text) {
        krl_result_free(result_);
        return krl_apply(engine_.get(), &canvas_.picture(), text, &result_);
    }
    std::string message() const { return krl_result_message(result_); }
    std::string error() const { return krl_result_error(result_); }
    void expectUntouched() const { EXPECT_EQ(canvas_.bytes(), before_); }

    EnginePointer engine_;
    Canvas canvas_;
    const std::vector<uint8_t> before_;
    krl_result* result_ = nullptr;
};

TEST_F(BadInput, OfBandsGivesNoEngine) {
    EXPECT_EQ(krl_engine_new(-1), nullptr);
    EXPECT_EQ(krl_engine_new(KRL_MOST_BANDS + 1), nullptr);
    EXPECT_NE(EnginePointer(krl_engine_new(KRL_MOST_BANDS)), nullptr);
}

TEST_F(BadInput, OfNullsIsReported) {
    EXPECT_EQ(krl_call(nullptr, &canvas_.picture(), "invert", nullptr, 0, nullptr), KRL_BAD_USE);
    EXPECT_EQ(krl_apply(nullptr, &canvas_.picture(), "invert", nullptr), KRL_BAD_USE);
    EXPECT_EQ(call(nullptr), KRL_BAD_USE);
    EXPECT_EQ(apply(nullptr), KRL_BAD_USE);
    EXPECT_EQ(krl_call(engine_.get(), &canvas_.picture(), "brightness", nullptr, 1, nullptr), KRL_BAD_USE);
    expectUntouched();
    krl_engine_free(nullptr);
    krl_value_free(nullptr);
    krl_result_free(nullptr);
    EXPECT_EQ(krl_result_code(nullptr), KRL_OUT_OF_MEMORY);
    EXPECT_STREQ(krl_result_message(nullptr), "out of memory");
    EXPECT_STREQ(krl_result_error(nullptr), "");
    EXPECT_EQ(krl_result_value(nullptr), nullptr);
    EXPECT_EQ(krl_find_method(nullptr), nullptr);
    EXPECT_EQ(krl_example(nullptr, 0, 1, 1), nullptr);
}

TEST_F(BadInput, OfNamesIsReported) {
    EXPECT_EQ(call("brightnes"), KRL_NO_SUCH_METHOD);
    EXPECT_EQ(message(), "no method is called brightnes");
    EXPECT_EQ(call(""), KRL_NO_SUCH_METHOD);
    EXPECT_EQ(call("krlImage"), KRL_NO_SUCH_METHOD);
    EXPECT_EQ(call("quit"), KRL_NOT_CALLABLE);
    EXPECT_EQ(call("brightness", {{"amount", nullptr}}), KRL_NO_SUCH_ARGUMENT);
    EXPECT_EQ(message(), "brightness has no argument amount");
    EXPECT_EQ(error(), "");
    EXPECT_EQ(krl_find_method("brightnes"), nullptr);
    EXPECT_EQ(krl_example("brightness", 2, 1, 1), nullptr);
    expectUntouched();
}

TEST_F(BadInput, OfArgumentsIsReportedInTheWordsOfScriptsToo) {
    EXPECT_EQ(apply("brightness(1.5)"), KRL_WRONG_KIND);
    EXPECT_EQ(message(), "brightness: brightnessInt: expected an integer, got 1.5");
    EXPECT_EQ(error(), "Brightness input failure (Image)");
    EXPECT_EQ(apply("brightness(4, #Grey)"), KRL_NO_SUCH_CHOICE);
    EXPECT_EQ(error(), "Brightness invalid colourOrAlpha input (Image)");
    EXPECT_EQ(apply("brightness(4, #RGB, 5)"), KRL_TOO_MANY);
    EXPECT_EQ(apply("brightness(#brightnessInt: 1, #brightnessInt: 1)"), KRL_GIVEN_TWICE);
    EXPECT_EQ(apply("composite()"), KRL_MISSING);
    EXPECT_EQ(apply("composite(image(\"logo.png\"))"), KRL_WRONG_KIND);
    EXPECT_EQ(apply("composite(7)"), KRL_WRONG_KIND);
    EXPECT_EQ(apply("broadcastCombine([image(3, 2, 32)])"), KRL_WRONG_KIND);
    EXPECT_EQ(apply("interlace(#deinterlace, 5)"), KRL_METHOD_FAILED);
    EXPECT_EQ(error(), "Interlace invalid input fieldDominance (Image)");
    expectUntouched();
}

TEST_F(BadInput, OfCallTextsIsReported) {
    for (const char* text :
         {"brightness(", "brightness(4", "brightness(4))", "brightness(4)x", "brightness(4,)", "brightness(]",
          "brightness([", "brightness(1: 2)", "brightness(4, #)"}) {
        EXPECT_EQ(apply(text), KRL_BAD_TEXT) << text;
        EXPECT_NE(message(), "") << text;
    }
    for (const char* text : {"", "()", " ( ) "}) EXPECT_EQ(apply(text), KRL_NO_SUCH_METHOD) << text;
    EXPECT_EQ(apply(("brightness(" + std::string(100000, '[')).c_str()), KRL_BAD_TEXT);
    EXPECT_EQ(apply(("brightness(" + std::string(100000, '[') + ")").c_str()), KRL_BAD_TEXT);
    expectUntouched();
}

TEST_F(BadInput, OfPicturesIsReported) {
    const krl_picture good = canvas_.picture();
    const auto expectBad = [&](auto change) {
        canvas_.picture() = good;
        change(canvas_.picture());
        EXPECT_EQ(call("invert"), KRL_BAD_PICTURE);
        EXPECT_EQ(ValuePointer(krl_picture_value(&canvas_.picture())), nullptr);
    };
    expectBad([](krl_picture& p) { p.size = 0; });
    expectBad([](krl_picture& p) { p.size = sizeof(krl_picture) - 1; });
    expectBad([](krl_picture& p) { p.pixels = nullptr; });
    for (const int32_t side : {0, -1, INT_MIN}) {
        expectBad([=](krl_picture& p) { p.width = side; });
        expectBad([=](krl_picture& p) { p.height = side; });
    }
    expectBad([](krl_picture& p) { p.row_bytes = 23; });
    expectBad([](krl_picture& p) { p.row_bytes = 0; });
    expectBad([](krl_picture& p) { p.row_bytes = -24; });
    expectBad([](krl_picture& p) { p.row_bytes = PTRDIFF_MAX; });
    expectBad([](krl_picture& p) { p.row_bytes = PTRDIFF_MIN; });
    expectBad([](krl_picture& p) { p.width = p.height = INT_MAX, p.row_bytes = PTRDIFF_MAX; });
    expectBad([](krl_picture& p) { p.width = 1 << 30, p.row_bytes = ptrdiff_t{1} << 32; });
    expectBad([](krl_picture& p) { p.order = 2; });
    expectBad([](krl_picture& p) { p.order = -1; });
    EXPECT_EQ(krl_picture_value(nullptr), nullptr);
    expectUntouched();
}

TEST_F(BadInput, OfAMissingPictureIsReported) {
    EXPECT_EQ(krl_apply(engine_.get(), nullptr, "invert", nullptr), KRL_MISSING);
    for (const krl_method_info* method : callableMethods()) {
        krl_result* made = nullptr;
        const krl_code code = krl_call(engine_.get(), nullptr, method->name, nullptr, 0, &made);
        const ResultPointer result(made);
        if (method->flags & (KRL_REWRITES_PICTURE | KRL_NEEDS_SECOND_PICTURE)) {
            EXPECT_EQ(code, KRL_MISSING) << method->name;
        }
        if (method->flags == KRL_WORKS_WITHOUT_ENGINE) {
            EXPECT_EQ(code, KRL_OK) << method->name;
        }
        EXPECT_EQ(code == KRL_OK, std::string(krl_result_message(made)).empty()) << method->name;
    }
}

TEST_F(BadInput, OfValuesIsReported) {
    int32_t number = 5, other = 5;
    uint8_t level = 5;
    double real = 5;
    krl_picture picture = {sizeof picture, nullptr, 0, 0, 0, 0};
    const ValuePointer text(krl_text("words")), whole(krl_integer(1)), list(krl_list());
    EXPECT_EQ(krl_get_integer(text.get(), &number), KRL_WRONG_KIND);
    EXPECT_EQ(krl_get_real(text.get(), &real), KRL_WRONG_KIND);
    EXPECT_EQ(krl_get_colour(text.get(), &level, &level, &level), KRL_WRONG_KIND);
    EXPECT_EQ(krl_get_point(text.get(), &number, &other), KRL_WRONG_KIND);
    EXPECT_EQ(krl_get_picture(text.get(), &picture), KRL_WRONG_KIND);
    EXPECT_EQ(krl_get_integer(nullptr, &number), KRL_BAD_USE);
    EXPECT_EQ(krl_get_real(nullptr, &real), KRL_BAD_USE);
    EXPECT_EQ(krl_get_picture(nullptr, &picture), KRL_BAD_USE);
    EXPECT_EQ(krl_get_integer(whole.get(), nullptr), KRL_BAD_USE);
    EXPECT_EQ(krl_get_real(whole.get(), nullptr), KRL_BAD_USE);
    EXPECT_EQ(krl_get_colour(whole.get(), nullptr, &level, &level), KRL_BAD_USE);
    EXPECT_EQ(krl_get_point(whole.get(), nullptr, &number), KRL_BAD_USE);
    EXPECT_EQ(krl_get_picture(whole.get(), nullptr), KRL_BAD_USE);
    picture.size = 8;
    EXPECT_EQ(krl_get_picture(ValuePointer(krl_picture_value(&canvas_.picture())).get(), &picture),
              KRL_BAD_USE);
    EXPECT_EQ(number, 5);
    EXPECT_EQ(real, 5.0);
    EXPECT_EQ(krl_symbol(nullptr), nullptr);
    EXPECT_EQ(krl_text(nullptr), nullptr);
    EXPECT_EQ(krl_copy(nullptr), nullptr);
    EXPECT_EQ(krl_kind(nullptr), KRL_KIND_NOTHING);
    EXPECT_EQ(krl_get_text(whole.get()), nullptr);
    EXPECT_EQ(krl_get_text(nullptr), nullptr);
    EXPECT_EQ(krl_count(nullptr), 0u);
    EXPECT_EQ(krl_count(whole.get()), 0u);
    EXPECT_EQ(krl_item(list.get(), 0), nullptr);
    EXPECT_EQ(krl_item(nullptr, 0), nullptr);
    EXPECT_EQ(krl_key(list.get(), 0), nullptr);
    EXPECT_EQ(krl_find(list.get(), "a"), nullptr);
    EXPECT_EQ(krl_find(nullptr, "a"), nullptr);
    EXPECT_EQ(krl_find(list.get(), nullptr), nullptr);
}

TEST_F(BadInput, OfListsIsReported) {
    const ValuePointer whole(krl_integer(1)), list(krl_list()), properties(krl_property_list());
    EXPECT_EQ(krl_list_add(whole.get(), krl_integer(1)), KRL_WRONG_KIND);
    EXPECT_EQ(krl_list_add(nullptr, krl_integer(1)), KRL_BAD_USE);
    EXPECT_EQ(krl_list_add(list.get(), nullptr), KRL_BAD_USE);
    EXPECT_EQ(krl_list_add(list.get(), list.get()), KRL_BAD_USE);
    EXPECT_EQ(krl_list_add(nullptr, nullptr), KRL_BAD_USE);
    EXPECT_EQ(krl_property_list_add(list.get(), krl_symbol("a"), krl_integer(1)), KRL_WRONG_KIND);
    EXPECT_EQ(krl_property_list_add(nullptr, krl_symbol("a"), krl_integer(1)), KRL_BAD_USE);
    EXPECT_EQ(krl_property_list_add(properties.get(), nullptr, krl_integer(1)), KRL_BAD_USE);
    EXPECT_EQ(krl_property_list_add(properties.get(), krl_symbol("a"), nullptr), KRL_BAD_USE);
    EXPECT_EQ(krl_property_list_add(properties.get(), properties.get(), whole.get()), KRL_BAD_USE);
    EXPECT_EQ(krl_property_list_add(properties.get(), whole.get(), whole.get()), KRL_BAD_USE);
    EXPECT_EQ(krl_count(list.get()) + krl_count(properties.get()), 0u);
    krl_value* deep = krl_list();
    for (int i = 1; i < 64; ++i) {
        krl_value* outer = krl_list();
        ASSERT_EQ(krl_list_add(outer, deep), KRL_OK) << i;
        deep = outer;
    }
    EXPECT_EQ(krl_list_add(list.get(), deep), KRL_BAD_USE) << "the list would be 65 deep";
}

TEST_F(BadInput, OfValueTextsIsReportedAsFarAsThereIsRoom) {
    char problem[8] = "unset";
    EXPECT_EQ(krl_parse(nullptr, problem, sizeof problem), nullptr);
    EXPECT_STREQ(problem, "there i");
    EXPECT_EQ(krl_parse("[1", nullptr, 0), nullptr);
    EXPECT_EQ(krl_parse("", problem, 1), nullptr);
    EXPECT_STREQ(problem, "");
    EXPECT_EQ(krl_parse(std::string(100000, '[').c_str(), nullptr, 0), nullptr);
    EXPECT_EQ(krl_write(nullptr, problem, sizeof problem), 0u);
    EXPECT_EQ(krl_write(ValuePointer(krl_text("long words")).get(), problem, 3), 12u);
    EXPECT_STREQ(problem, "\"l");
}

TEST_F(BadInput, OfCodesHasAText) {
    EXPECT_STREQ(krl_code_text(-1), "unknown code");
    EXPECT_STREQ(krl_code_text(KRL_OUT_OF_MEMORY), "out of memory");
    EXPECT_STREQ(krl_code_text(KRL_CANCELLED), "cancelled");
    EXPECT_STREQ(krl_code_text(KRL_BAD_LOOK + 1), "unknown code");
}

/// Values of every kind, in turn for every argument of every method; second pictures of other sizes.
TEST_F(BadInput, OfEveryKindForEveryArgumentEndsWell) {
    Canvas small(1, 1, KRL_RGBA), large(40, 3, KRL_BGRA, 5);
    std::vector<ValuePointer> values;
    for (const char* text :
         {"VOID", "-2147483648", "2147483647", "0", "1e300", "-1.5", "#no_such", "\"text\"", "rgb(1, 2, 3)",
          "point(-2147483648, 2147483647)", "[]", "[:]", "[1, [2, #a], VOID]", "[#a: [:], 4: rgb(1, 2, 3)]",
          "[-2147483648: rgb(1, 2, 3), 2147483647: 4]"})
        values.emplace_back(krl_parse(text, nullptr, 0));
    values.emplace_back(krl_real(NAN));
    values.emplace_back(krl_real(INFINITY));
    values.emplace_back(krl_picture_value(&small.picture()));
    values.emplace_back(krl_picture_value(&large.picture()));
    krl_value* pictures = krl_list();
    for (int i = 0; i < 4; ++i)
        krl_list_add(pictures, krl_picture_value(i < 3 ? &small.picture() : &large.picture()));
    values.emplace_back(pictures);
    for (const krl_method_info* method : callableMethods()) {
        for (size_t varied = 0; varied < method->argument_count; ++varied)
            for (const ValuePointer& value : values) {
                ASSERT_NE(value, nullptr);
                // A new picture of a huge size may be made for real.
                int32_t whole = 0;
                if (method->flags & KRL_MAKES_PICTURE && krl_get_integer(value.get(), &whole) == KRL_OK)
                    continue;
                std::vector<krl_argument> arguments;
                for (size_t i = 0; i < method->argument_count; ++i) {
                    const bool isPicture = method->arguments[i]->kind == KRL_KIND_PICTURE;
                    arguments.push_back({nullptr, i == varied ? value.get()
                                                  : isPicture ? values[values.size() - 2].get()
                                                              : nullptr});
                }
                const krl_code code = call(method->name, arguments);
                EXPECT_EQ(code == KRL_OK, message().empty()) << method->name;
                EXPECT_NE(code, KRL_BAD_USE) << method->name;
            }
    }
}

}  // namespace
}  // namespace krl::test
