#include "c/CallingTest.h"
#include "catalogue/Catalogue.h"
#include "catalogue/Notation.h"
#include "methods/Stage.h"
#include "player/host/Objects.h"

/// Every method gives the same through the C interface as through the plug-in's door.
namespace krl::test {
namespace {

using player::Value;

constexpr int32_t kWidth = 12, kHeight = 8, kSeed = 1, kSecondSeed = 77;

/// How the C side keeps its pictures.
struct Form {
    int32_t order;
    size_t padding;
};

std::string bytesOf(const std::vector<Pixel>& pixels) {
    return std::string(reinterpret_cast<const char*>(pixels.data()), pixels.size() * sizeof(Pixel));
}

/// The pixels of a picture as BGRA without padding.
std::string bytesOf(const krl_picture& picture) {
    std::string bytes;
    for (int32_t y = 0; y < picture.height; ++y) {
        const auto* row = static_cast<const char*>(picture.pixels) + picture.row_bytes * y;
        for (int32_t x = 0; x < picture.width; ++x) {
            const char* p = row + ptrdiff_t{x} * 4;
            const bool isSwapped = picture.order == KRL_RGBA;
            bytes += {isSwapped ? p[2] : p[0], p[1], isSwapped ? p[0] : p[2], p[3]};
        }
    }
    return bytes;
}

/// The pixels of `pixels` as a canvas of another form.
std::unique_ptr<Canvas> canvasOf(const std::vector<Pixel>& pixels, int32_t width, Form form) {
    const auto height = int32_t(pixels.size()) / width;
    auto canvas = std::make_unique<Canvas>(width, height, form.order, form.padding, 5);
    for (int32_t y = 0; y < height; ++y)
        for (int32_t x = 0; x < width; ++x) {
            Pixel p = pixels[size_t(y * width + x)];
            if (form.order == KRL_RGBA) std::swap(p.red, p.blue);
            std::memcpy(canvas->row(y) + ptrdiff_t{x} * 4, &p, sizeof p);
        }
    return canvas;
}

class SameBytes : public testing::TestWithParam<const krl_method_info*> {
protected:
    const krl_method_info& info() const { return *GetParam(); }
    const Method& method() const { return *catalogue().find(info().name); }

    /// What a result says, in one text; pictures as their bytes.
    std::string textOf(Stage& stage, const Value& value) const {
        if (value.isInteger()) return realNotation(value.integer());
        if (value.isNumber()) return realNotation(value.number());
        if (value.is(player::Kind::Colour)) return writeNotation(value.colour());
        if (const auto* image = value.as<player::ImageObject>()) return bytesOf(image->bitmap.pixels);
        EXPECT_TRUE(value.is(player::Kind::Symbol)) << "a kind that this test does not know";
        return stage.embeddedHost().symbols.spelling(value.symbol());
    }

    std::string textOf(const krl_value* value) const {
        double number = 0;
        if (krl_get_real(value, &number) == KRL_OK) return realNotation(number);
        krl_picture picture = {sizeof picture, nullptr, 0, 0, 0, 0};
        if (krl_get_picture(value, &picture) == KRL_OK) return bytesOf(picture);
        if (krl_get_text(value)) return krl_get_text(value);
        std::string text(krl_write(value, nullptr, 0), ' ');
        krl_write(value, text.data(), text.size() + 1);
        return text;
    }

    std::vector<std::string> entriesOf(Stage& stage, const Answer& answer) const {
        std::vector<std::string> entries;
        if (const auto* list = answer.result.as<player::ListObject>())
            for (const Value& item : list->items) entries.push_back(textOf(stage, item));
        if (const auto* list = answer.result.as<player::PropertyListObject>())
            for (const auto& [key, value] : list->entries) {
                const std::string& name = stage.embeddedHost().symbols.spelling(key.symbol());
                if (name != "error") entries.push_back(name + textOf(stage, value));
            }
        return entries;
    }

    std::vector<std::string> entriesOf(const krl_value* tree) const {
        std::vector<std::string> entries;
        for (size_t i = 0; i < krl_count(tree); ++i) {
            const krl_value* key = krl_key(tree, i);
            entries.push_back((key ? krl_get_text(key) : "") + textOf(krl_item(tree, i)));
        }
        return entries;
    }

    struct Outcome {
        std::string error;
        std::vector<std::string> entries;
        std::vector<std::string> pictures;  ///< the loaded one and the second ones

        bool operator==(const Outcome&) const = default;
    };

    static bool isPictureList(const Argument& argument) {
        return argument.kind == ArgumentKind::Value && std::strstr(argument.example, "image(");
    }

    Outcome throughTheDoor(int32_t bands) const {
        Stage stage;
        stage.load(kWidth, kHeight, kSeed);
        stage.setBands(bands);
        std::vector<Value> arguments;
        for (const Argument& argument : method().arguments())
            arguments.push_back(isPictureList(argument)                ? doorPictures(stage)
                                : argument.kind == ArgumentKind::Value ? stage.evaluate(argument.example)
                                                                       : stage.example(argument));
        const Answer answer = stage.call(method(), arguments);
        Outcome outcome{answer.error, entriesOf(stage, answer), {bytesOf(stage.pixels())}};
        for (const Value& argument : arguments)
            if (const auto* image = argument.as<player::ImageObject>())
                outcome.pictures.push_back(bytesOf(image->bitmap.pixels));
        return outcome;
    }

    Value doorPictures(Stage& stage) const {
        Value list = stage.evaluate("[]");
        for (int32_t i = 0; i < 4; ++i)
            list.as<player::ListObject>()->items.push_back(stage.image(kWidth, kHeight, kSecondSeed + i));
        return list;
    }

    Outcome throughC(int32_t bands, Form form) const {
        Stage stage;  // for its pictures
        stage.load(kWidth, kHeight, kSeed);
        const auto canvas = canvasOf(stage.pixels(), kWidth, form);
        std::vector<std::unique_ptr<Canvas>> seconds;
        std::vector<ValuePointer> values;
        std::vector<krl_argument> arguments;
        const auto second = [&](const Value& image) {
            seconds.push_back(canvasOf(image.as<player::ImageObject>()->bitmap.pixels, kWidth, form));
            return krl_picture_value(&seconds.back()->picture());
        };
        for (const Argument& argument : method().arguments()) {
            krl_value* value = nullptr;
            if (argument.kind == ArgumentKind::SecondImage) value = second(stage.example(argument));
            if (isPictureList(argument)) {
                value = krl_list();
                const Value images = doorPictures(stage);
                for (const Value& image : images.as<player::ListObject>()->items)
                    krl_list_add(value, second(image));
            }
            values.emplace_back(value);
            arguments.push_back({argument.name, value});
        }
        const EnginePointer engine(krl_engine_new(bands));
        krl_result* made = nullptr;
        krl_call(engine.get(), &canvas->picture(), info().name, arguments.data(), arguments.size(), &made);
        const ResultPointer result(made);
        Outcome outcome{
            krl_result_error(made), entriesOf(krl_result_value(made)), {bytesOf(canvas->picture())}};
        if (info().flags & KRL_NEEDS_SECOND_PICTURE)
            for (const auto& picture : seconds) outcome.pictures.push_back(bytesOf(picture->picture()));
        return outcome;
    }
};

TEST_P(SameBytes, AsThroughTheDoorInEveryFormOfPicture) {
    const Outcome expected = throughTheDoor(1);
    for (const Form form : {Form{KRL_BGRA, 0}, Form{KRL_RGBA, 0}, Form{KRL_BGRA, 7}, Form{KRL_RGBA, 8}}) {
        for (const int32_t bands : {0, 1}) {
            const Outcome found = throughC(bands, form);
            EXPECT_EQ(found.error, expected.error);
            EXPECT_TRUE(found.entries == expected.entries) << "other results";
            EXPECT_TRUE(found.pictures == expected.pictures)
                << "other pixels, order " << form.order << ", padding " << form.padding;
        }
    }
}

TEST_P(SameBytes, AsThroughTheDoorOnSeveralBands) {
    EXPECT_TRUE(throughC(3, {KRL_RGBA, 0}) == throughTheDoor(3));
}

INSTANTIATE_TEST_SUITE_P(C, SameBytes, testing::ValuesIn(callableMethods()),
                         [](const auto& method) { return std::string(method.param->name); });

}  // namespace
}  // namespace krl::test
