#include <gtest/gtest.h>

#include "host/Identifiers.h"
#include "methods/Stage.h"
#include "player/host/Objects.h"
#include "player/host/Service.h"

/// The gradient creates a host image and reports which of the host's operations failed.
namespace krl::test {
namespace {

using host::HostInterface;
using host::HostStatus;
using host::ScriptValue;
using player::ImageObject;
using player::PropertyListObject;
using player::Service;
using player::Value;

constexpr HostStatus kRefused = static_cast<HostStatus>(0x80040099u);

class GradientMethod : public testing::Test {
protected:
    Value colours(std::initializer_list<std::pair<int32_t, Colour>> stops) {
        Value list = stage_.embeddedHost().heap.make<PropertyListObject>();
        for (const auto& [percent, colour] : stops)
            list.as<PropertyListObject>()->entries.push_back({Value::integer(percent), colourValue(colour)});
        return list;
    }

    Value colourValue(Colour colour) {
        Argument argument;
        argument.kind = ArgumentKind::Colour;
        argument.colourExample = colour;
        return stage_.example(argument);
    }

    Value ramp() { return colours({{0, Colour(0, 0, 0)}, {100, Colour(200, 100, 50)}}); }

    Answer paint(int32_t width, int32_t height, const char* type, const Value& list) {
        return stage_.call("krlImageRGBGradient",
                           {stage_.integer(width), stage_.integer(height), stage_.symbol(type), list});
    }

    Service& service(const host::Identifier& id) {
        HostInterface* face = stage_.embeddedHost().service(id);
        host::unknown::Release::call(face);
        return Service::of(face);
    }

    static const ImageObject* pictureOf(const Answer& answer) {
        const auto* result = answer.result.as<PropertyListObject>();
        if (!result || result->entries.size() != 2) return nullptr;
        return result->entries[1].value.as<ImageObject>();
    }

    Stage stage_;
};

HostStatus KRL_HOST_CALL noImage(HostInterface*, int32_t, int32_t, int32_t, int32_t, int32_t, ScriptValue*) {
    return kRefused;
}
HostStatus KRL_HOST_CALL noLock(HostInterface*, const ScriptValue*, host::ImageLock*) { return kRefused; }

/// The host's original operation, called by the failing ones below.
host::images::UnlockImage::Function gUnlock;
host::values::ReleaseValue::Function gRelease;

HostStatus KRL_HOST_CALL lateUnlock(HostInterface* self, const ScriptValue* image) {
    gUnlock(self, image);
    return kRefused;
}

bool gImageMade = false;
host::images::CreateImage::Function gCreate;
ScriptValue gImage;

HostStatus KRL_HOST_CALL watchedCreate(HostInterface* self, int32_t width, int32_t height, int32_t depth,
                                       int32_t alphaDepth, int32_t last, ScriptValue* out) {
    const HostStatus status = gCreate(self, width, height, depth, alphaDepth, last, out);
    gImage = *out;
    gImageMade = status == host::kHostOk;
    return status;
}

HostStatus KRL_HOST_CALL lateRelease(HostInterface* self, ScriptValue* value) {
    const bool ours = gImageMade && value->words[0] == gImage.words[0] && value->words[1] == gImage.words[1];
    const HostStatus status = gRelease(self, value);
    return ours ? kRefused : status;
}

template <class Op>
typename Op::Function replace(Service& service, typename Op::Function with) {
    const auto before = reinterpret_cast<typename Op::Function>(service.operations[Op::slot]);
    service.set<Op>(with);
    return before;
}

}  // namespace

TEST_F(GradientMethod, ReturnsANewPictureAndKeepsTheLoadedOne) {
    stage_.load(7, 5);
    const std::vector<Pixel> loaded = stage_.pixels();
    const Answer answer = paint(5, 2, "linear", ramp());
    EXPECT_TRUE(answer.reported);
    EXPECT_EQ(answer.error, "");
    const ImageObject* picture = pictureOf(answer);
    ASSERT_NE(picture, nullptr);
    EXPECT_EQ(picture->bitmap.width, 5);
    EXPECT_EQ(picture->bitmap.height, 2);
    EXPECT_EQ(picture->bitmap.pixels[4].red, 160);
    EXPECT_EQ(picture->bitmap.pixels[9].green, 80);
    EXPECT_EQ(stage_.pixels(), loaded);
}

// 33 percent of 10 columns is column 3.3, truncated to 3.
TEST_F(GradientMethod, TruncatesPositionsToWholeColumns) {
    const Answer answer = paint(10, 1, "linear", colours({{33, Colour(9, 9, 9)}, {60, Colour(90, 90, 90)}}));
    const ImageObject* picture = pictureOf(answer);
    ASSERT_NE(picture, nullptr);
    EXPECT_EQ(picture->bitmap.pixels[3].red, 9);
    EXPECT_EQ(picture->bitmap.pixels[4].red, 36);
    EXPECT_EQ(picture->bitmap.pixels[6].red, 90);
}

TEST_F(GradientMethod, NeedsNoPicture) {
    const Answer answer = paint(3, 1, "curved", colours({}));
    const ImageObject* picture = pictureOf(answer);
    ASSERT_NE(picture, nullptr);
    EXPECT_EQ(picture->bitmap.pixels[2].blue, 0);
}

TEST_F(GradientMethod, ComparesItsTypeBeforeItReadsColours) {
    EXPECT_EQ(paint(3, 1, "straight", stage_.string("x")).error,
              "RGB Gradient invalid input quality (Image)");
    EXPECT_EQ(paint(3, 1, "linear", stage_.string("x")).error, "RGB Gradient input failure (Image)");
    Value bad = ramp();
    bad.as<PropertyListObject>()->entries[1].value = stage_.string("no colour");
    EXPECT_EQ(paint(3, 1, "linear", bad).error, "RGB Gradient input failure (Image)");
}

TEST_F(GradientMethod, ReportsWhichHostOperationFailed) {
    Service& images = service(host::ids::kImages);
    EXPECT_EQ(paint(-3, 1, "linear", ramp()).error, "Failed to create new image (Image)");
    gCreate = replace<host::images::CreateImage>(images, noImage);
    EXPECT_EQ(paint(3, 1, "linear", ramp()).error, "Failed to create new image (Image)");
    images.set<host::images::CreateImage>(gCreate);

    const auto lock = replace<host::images::LockImage>(images, noLock);
    EXPECT_EQ(paint(3, 1, "linear", ramp()).error, "Failed to lock new image pixels (Image)");
    images.set<host::images::LockImage>(lock);

    gUnlock = replace<host::images::UnlockImage>(images, lateUnlock);
    EXPECT_EQ(paint(3, 1, "linear", ramp()).error, "Failed to unlock new image pixels (Image)");
    images.set<host::images::UnlockImage>(gUnlock);

    Service& values = service(host::ids::kValues);
    gCreate = replace<host::images::CreateImage>(images, watchedCreate);
    gRelease = replace<host::values::ReleaseValue>(values, lateRelease);
    EXPECT_EQ(paint(3, 1, "linear", ramp()).error, "Failed to release new image (Image)");
    values.set<host::values::ReleaseValue>(gRelease);
    images.set<host::images::CreateImage>(gCreate);

    EXPECT_EQ(stage_.locks(), 0);
    EXPECT_TRUE(stage_.leavesNothing());
}

}  // namespace krl::test
