#include "c/CallingTest.h"
#include "catalogue/Catalogue.h"

/// Looks through the C interface.
namespace krl::test {
namespace {

struct FreeLook {
    void operator()(krl_look* look) const { krl_look_free(look); }
};
using LookPointer = std::unique_ptr<krl_look, FreeLook>;

LookPointer lookOf(const std::string& lines) {
    krl_look* look = nullptr;
    EXPECT_EQ(krl_look_read(("krlimage look 1\ntitle: T\n" + lines + '\n').c_str(), &look, nullptr), KRL_OK);
    return LookPointer(look);
}

class Looks : public testing::Test {
protected:
    Looks() : engine_(krl_engine_new(0)) {}

    krl_code apply(const krl_look* look, Canvas& canvas) {
        krl_result* result = nullptr;
        const krl_code code = krl_look_apply(engine_.get(), look, &canvas.picture(), &result);
        result_.reset(result);
        return code;
    }
    std::string message() const { return krl_result_message(result_.get()); }

    EnginePointer engine_;
    ResultPointer result_;
};

TEST_F(Looks, GiveTheSameWhateverTheFormOfThePicture) {
    const LookPointer look = lookOf("hueShift(40, 80)\nfastGaussianBlur(20%, #RGB, mix: 0.5)\nsepia");
    Canvas plain(12, 9), turned(12, 9, KRL_RGBA, 5);
    for (int32_t y = 0; y < 9; ++y)
        for (int32_t x = 0; x < 12; ++x) {
            const uint8_t* from = plain.row(y) + x * 4;
            uint8_t* to = turned.row(y) + x * 4;
            to[0] = from[2], to[1] = from[1], to[2] = from[0], to[3] = from[3];
        }
    ASSERT_EQ(apply(look.get(), plain), KRL_OK) << message();
    ASSERT_EQ(apply(look.get(), turned), KRL_OK) << message();
    for (int32_t y = 0; y < 9; ++y)
        for (int32_t x = 0; x < 12; ++x) {
            const uint8_t *a = plain.row(y) + x * 4, *b = turned.row(y) + x * 4;
            ASSERT_TRUE(a[0] == b[2] && a[1] == b[1] && a[2] == b[0] && a[3] == b[3]) << x << ' ' << y;
        }
}

TEST_F(Looks, ReadThePicturesThatTheyName) {
    const LookPointer look = lookOf("composite(image(\"paper\"))");
    ASSERT_EQ(krl_look_picture_count(look.get()), 1u);
    EXPECT_STREQ(krl_look_picture_name(look.get(), 0), "paper");
    Canvas picture(6, 4), paper(6, 4, KRL_RGBA, 3, 8), expected(6, 4);
    EXPECT_EQ(apply(look.get(), picture), KRL_BAD_LOOK);
    EXPECT_EQ(message(), "line 3: there is no picture paper");
    EXPECT_EQ(krl_result_line(result_.get()), 3);
    EXPECT_EQ(picture.bytes(), expected.bytes());
    ASSERT_EQ(krl_look_set_picture(look.get(), "paper", &paper.picture()), KRL_OK);
    ASSERT_EQ(apply(look.get(), picture), KRL_OK) << message();
    const ValuePointer value(krl_picture_value(&paper.picture()));
    const krl_argument arguments[] = {{"foreground", value.get()}};
    ASSERT_EQ(krl_call(engine_.get(), &expected.picture(), "composite", arguments, 1, nullptr), KRL_OK);
    EXPECT_EQ(picture.bytes(), expected.bytes());
}

TEST_F(Looks, HandOutANewPicture) {
    const LookPointer look = lookOf("halfSize\ninvert(#RGB)");
    Canvas picture(8, 6, KRL_RGBA);
    ASSERT_EQ(apply(look.get(), picture), KRL_OK) << message();
    char text[100];
    krl_write(krl_result_value(result_.get()), text, sizeof text);
    EXPECT_STREQ(text, "[#picture: image(4, 3, 32)]");
}

TEST_F(Looks, ReportWhatIsWrongAndWhere) {
    krl_look* look = nullptr;
    krl_result* result = nullptr;
    EXPECT_EQ(krl_look_read("krlimage look 1\ntitle: T\n\nglorify(3)\n", &look, &result), KRL_BAD_LOOK);
    EXPECT_EQ(look, nullptr);
    EXPECT_EQ(krl_result_line(result), 4);
    EXPECT_STREQ(krl_result_message(result), "line 4: no method is called glorify");
    EXPECT_STREQ(krl_code_text(KRL_BAD_LOOK), "bad look");
    krl_result_free(result);

    const LookPointer made = lookOf("parameter a: 5\nbrightness($a)");
    EXPECT_EQ(krl_look_set(made.get(), "b", "5", nullptr), KRL_BAD_LOOK);
    EXPECT_EQ(krl_look_set(made.get(), "a", "#x", &result), KRL_BAD_LOOK);
    EXPECT_STREQ(krl_result_message(result), "a: brightness: brightnessInt: expected an integer, got #x");
    krl_result_free(result);
    EXPECT_EQ(krl_look_add_call(made.get(), "invert\nload", nullptr), KRL_BAD_LOOK);
    EXPECT_EQ(krl_look_add_parameter(made.get(), "a", "1", nullptr, nullptr, nullptr, nullptr), KRL_BAD_LOOK);
    EXPECT_EQ(krl_look_call_count(made.get()), 1u);
}

TEST_F(Looks, ReportAMethodThatFailed) {
    const LookPointer look = lookOf("invert(#RGB)\ncomposite(image(1, 1, 32), #normal)");
    Canvas picture(6, 4);
    EXPECT_EQ(apply(look.get(), picture), KRL_METHOD_FAILED);
    EXPECT_STREQ(krl_result_error(result_.get()), "Failed Composite function (Image)");
    EXPECT_EQ(krl_result_line(result_.get()), 4);
}

TEST_F(Looks, TakeNullsForErrors) {
    Canvas picture(6, 4);
    const LookPointer look = lookOf("invert");
    krl_look* none = nullptr;
    EXPECT_EQ(krl_look_read(nullptr, &none, nullptr), KRL_BAD_USE);
    EXPECT_EQ(krl_look_read("", nullptr, nullptr), KRL_BAD_USE);
    EXPECT_EQ(krl_look_apply(nullptr, look.get(), &picture.picture(), nullptr), KRL_BAD_USE);
    EXPECT_EQ(krl_look_apply(engine_.get(), nullptr, &picture.picture(), nullptr), KRL_BAD_USE);
    EXPECT_EQ(krl_look_apply(engine_.get(), look.get(), nullptr, nullptr), KRL_BAD_PICTURE);
    EXPECT_EQ(krl_look_set(nullptr, "a", "1", nullptr), KRL_BAD_USE);
    EXPECT_EQ(krl_look_set(look.get(), nullptr, "1", nullptr), KRL_BAD_USE);
    EXPECT_EQ(krl_look_add_call(look.get(), nullptr, nullptr), KRL_BAD_USE);
    EXPECT_EQ(krl_look_set_picture(look.get(), "a", nullptr), KRL_BAD_PICTURE);
    EXPECT_EQ(krl_look_parameter(look.get(), 0, nullptr), KRL_BAD_USE);
    EXPECT_STREQ(krl_look_title(nullptr), "");
    EXPECT_EQ(krl_look_write(nullptr, nullptr, 0), 0u);
    EXPECT_EQ(krl_shipped_look_text(krl_shipped_look_count()), nullptr);
    krl_look_free(nullptr);
}

/// In whatever form the pictures are.
TEST_F(Looks, PutSecondPicturesInTheirPlaceWithSingleCalls) {
    const LookPointer look = lookOf("composite(image(\"over\"), #normal, fit: #cover, scale: 0.5)");
    Canvas a(20, 10), b(20, 10, KRL_BGRA, 12), over(6, 4, KRL_RGBA, 3, 8);
    ASSERT_EQ(krl_look_set_picture(look.get(), "over", &over.picture()), KRL_OK);
    ASSERT_EQ(apply(look.get(), a), KRL_OK) << message();
    for (int32_t y = 0; y < 10; ++y) std::memcpy(b.row(y), Canvas(20, 10).row(y), 80);
    const ValuePointer second(krl_picture_value(&over.picture())), half(krl_real(0.5)),
        mode(krl_symbol("normal")), fit(krl_symbol("cover"));
    const krl_argument arguments[] = {
        {nullptr, second.get()}, {nullptr, mode.get()}, {"fit", fit.get()}, {"scale", half.get()}};
    ASSERT_EQ(krl_call(engine_.get(), &b.picture(), "composite", arguments, 4, nullptr), KRL_OK);
    for (int32_t y = 0; y < 10; ++y) EXPECT_EQ(std::memcmp(a.row(y), b.row(y), 80), 0) << y;
    EXPECT_NE(a.bytes(), Canvas(20, 10).bytes());
}

TEST_F(Looks, ShareWhereAndHowMuchWithSingleCalls) {
    Canvas a(20, 10), b(20, 10);
    const LookPointer look = lookOf("invert(#RGB, region: rect(10%, 10%, 90%, 90%), feather: 2, mix: 0.7)");
    ASSERT_EQ(apply(look.get(), a), KRL_OK) << message();
    krl_result* result = nullptr;
    ASSERT_EQ(krl_apply(engine_.get(), &b.picture(),
                        "invert(#RGB, region: rect(2, 1, 18, 9), feather: 2, mix: 0.7)", &result),
              KRL_OK);
    krl_result_free(result);
    EXPECT_EQ(a.bytes(), b.bytes());
    EXPECT_NE(a.bytes(), Canvas(20, 10).bytes());
    EXPECT_EQ(krl_apply(engine_.get(), &b.picture(), "invert(#RGB, mix: 5)", nullptr), KRL_WRONG_KIND);
    EXPECT_EQ(krl_apply(engine_.get(), &b.picture(), "halfSize(mix: 0.5)", nullptr), KRL_NO_SUCH_ARGUMENT);
}

}  // namespace
}  // namespace krl::test
