#include <gtest/gtest.h>

#include <algorithm>

#include "host/Identifiers.h"
#include "host/MessageTable.h"
#include "host/MessageTableText.h"
#include "methods/Stage.h"
#include "player/host/Objects.h"
#include "player/host/Service.h"

/// Pictures of a host with padded rows. Memory before and after a picture's block is neither written nor
/// read, for any number of bands.
namespace krl::host {
namespace {

using krl::test::Answer;
using krl::test::Stage;
using player::ImageObject;
using player::Service;
using player::Value;

/// The number of guard rows before and after each block.
constexpr int32_t kGuardRows = 3;
/// The padding of rows in pixels, and the resulting row length.
int32_t padding, paddedWidth;
/// The content of the guard rows.
Pixel guardPixel;

images::CreateImage::Function createTight;
images::LockImage::Function lockWhole;
images::QueryImage::Function queryWhole;

HostStatus KRL_HOST_CALL createGuarded(HostInterface* self, int32_t width, int32_t height, int32_t depth,
                                       int32_t alphaDepth, int32_t last, ScriptValue* out) {
    return createTight(self, width + padding, height + 2 * kGuardRows, depth, alphaDepth, last, out);
}

HostStatus KRL_HOST_CALL lockInside(HostInterface* self, const ScriptValue* value, ImageLock* lock) {
    const HostStatus status = lockWhole(self, value, lock);
    auto* image = static_cast<ImageObject*>(player::hostOf(self).heap.find(*value));
    if (status != kHostOk || !image) return status;
    const int32_t height = image->height();
    std::fill(image->bitmap.row(0), image->bitmap.row(kGuardRows), guardPixel);
    std::fill(image->bitmap.row(height - kGuardRows), image->bitmap.row(height), guardPixel);
    lock->pixels = reinterpret_cast<uint8_t*>(image->bitmap.row(kGuardRows));
    return status;
}

HostStatus KRL_HOST_CALL queryInside(HostInterface* self, const ScriptValue* value, ImageInfo* info) {
    const HostStatus status = queryWhole(self, value, info);
    if (info->width == paddedWidth) info->width -= padding;
    info->height -= 2 * kGuardRows;
    return status;
}

/// A stage whose pictures are all surrounded by guard rows.
class GuardedStage : public Stage {
public:
    GuardedStage() {
        HostInterface* face = embeddedHost().service(ids::kImages);
        unknown::Release::call(face);
        Service& service = Service::of(face);
        createTight = replace<images::CreateImage>(service, createGuarded);
        lockWhole = replace<images::LockImage>(service, lockInside);
        queryWhole = replace<images::QueryImage>(service, queryInside);
    }

private:
    template <class Op>
    static typename Op::Function replace(Service& service, typename Op::Function function) {
        const auto own = reinterpret_cast<typename Op::Function>(service.operations[Op::slot]);
        service.set<Op>(function);
        return own;
    }
};

class PaddedPictures : public testing::TestWithParam<int32_t> {
protected:
    const Method& method() const { return *methods()[size_t(GetParam() - 1)]; }
    bool has(ArgumentKind kind) const {
        return std::ranges::any_of(method().arguments(), [=](const Argument& a) { return a.kind == kind; });
    }

    /// Example arguments; second images have rows of `secondWidth` pixels.
    std::vector<Value> arguments(Stage& stage, int32_t secondWidth, int32_t wholeHeight) const {
        std::vector<Value> values;
        for (const Argument& argument : method().arguments()) {
            const bool isImage = argument.kind == ArgumentKind::SecondImage;
            values.push_back(isImage ? stage.image(secondWidth, wholeHeight, 77)
                             : argument.kind == ArgumentKind::Value ? stage.evaluate(argument.example)
                                                                    : stage.example(argument));
        }
        return values;
    }

    /// The method's picture without the guard rows, and its result.
    std::pair<std::vector<Pixel>, std::string> outcome(Stage& stage, int32_t width, int32_t height,
                                                       int32_t bands, bool tightSeconds) const {
        paddedWidth = width + padding;
        const int32_t wholeHeight = height + 2 * kGuardRows;
        stage.load(paddedWidth, wholeHeight, width * 100 + height);
        stage.setBands(bands);
        const Answer answer =
            stage.call(method(), arguments(stage, tightSeconds ? width : paddedWidth, wholeHeight));
        const std::vector<Pixel>& all = stage.pixels();
        const ptrdiff_t guard = ptrdiff_t(kGuardRows) * paddedWidth;
        const auto isGuard = [](const Pixel& p) { return p == guardPixel; };
        EXPECT_TRUE(std::all_of(all.begin(), all.begin() + guard, isGuard)) << "written before the block";
        EXPECT_TRUE(std::all_of(all.end() - guard, all.end(), isGuard)) << "written after the block";
        return {{all.begin() + guard, all.end() - guard}, answer.error};
    }

    void expectKeptToBlocks(bool tightSeconds) const {
        constexpr int32_t sizes[][2] = {{1, 1}, {1, 6}, {3, 3}, {5, 4}, {17, 9}};
        GuardedStage stage;
        for (const auto& [width, height] : sizes)
            for (padding = 0; padding < 4; ++padding)
                for (const int32_t bands : {1, 2, 4, 7}) {
                    SCOPED_TRACE(testing::Message() << width << 'x' << height << ", " << padding
                                                    << " pixels of padding, " << bands << " bands");
                    guardPixel = {0, 0, 0, 0};
                    const auto dark = outcome(stage, width, height, bands, tightSeconds);
                    guardPixel = {255, 255, 255, 255};
                    const auto light = outcome(stage, width, height, bands, tightSeconds);
                    EXPECT_EQ(dark.second, light.second);
                    EXPECT_TRUE(dark.first == light.first) << "the picture depends on the memory around it";
                }
    }
};

TEST_P(PaddedPictures, AreNeverLeftByAnyMethod) {
    if (method().managesTheEngine()) GTEST_SKIP() << "rewrites no pixels";
    expectKeptToBlocks(false);
    if (has(ArgumentKind::SecondImage)) expectKeptToBlocks(true);
}

INSTANTIATE_TEST_SUITE_P(Door, PaddedPictures,
                         testing::Range(1, static_cast<int32_t>(host::methods().size()) + 1),
                         [](const auto& selector) { return krl::test::methodName(selector.param); });

}  // namespace
}  // namespace krl::host
