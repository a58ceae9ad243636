#include <gtest/gtest.h>

#include <set>
#include <span>

#include "host/MessageTable.h"
#include "host/MessageTableText.h"
#include "methods/Stage.h"

/// The order in which methods read, compare, query and lock, as far as a host or a script can observe it.
namespace krl::host {
namespace {

using krl::test::Answer;
using krl::test::Stage;
using player::Value;

/// Two faults at once: an unknown symbol and a later argument of the wrong type.
struct TwoFaults {
    const char* method;
    size_t symbol, wrongKind;
    const char* message;
};

/// Calls each method with both faults and expects the message of the one that is detected first.
void expectTold(std::span<const TwoFaults> cases, bool callsSucceed) {
    Stage stage;
    stage.load(4, 3);
    for (const TwoFaults& faults : cases) {
        std::vector<Value> arguments = stage.examples(*findMethod(faults.method));
        arguments[faults.symbol] = stage.symbol("no_such_symbol_anywhere");
        arguments[faults.wrongKind] = stage.string("words");
        const Answer answer = stage.call(faults.method, arguments);
        EXPECT_EQ(answer.error, faults.message);
        EXPECT_EQ(answer.status == kHostOk, callsSucceed) << faults.method;
    }
}

TEST(Comparisons, PrecedeTheNextReadInTheseMethods) {
    const TwoFaults cases[] = {
        {"krlImageComposite", 1, 2, "Composite invalid input blendMethod (Image)"},
        {"krlImageWaves", 6, 7, "Waves invalid edge type input (Image)"},
        {"krlImageWaves", 7, 8, "Waves invalid quality input (Image)"},
        {"krlImageBlockWaves", 4, 5, "Block Waves invalid quality input (Image)"},
        {"krlImageCircularWaves", 4, 5, "Circular Waves invalid quality input (Image)"},
        {"krlImageTwirl", 1, 2, "Twirl invalid quality input (Image)"},
        {"krlImageGleamZoomComposite", 12, 13, "Gleam Zoom invalid input colourMethod (Image)"},
        {"krlImageChromaKey", 9, 10, "Chroma Key invalid input keep_remove option (Image)"},
        {"krlImageHueKey", 4, 5, "Hue Key invalid input keep_remove option (Image)"},
        {"krlImageSaturationKey", 4, 5, "Saturation Key invalid input keep_remove option (Image)"},
        {"krlImageValueKey", 4, 5, "Value Key invalid input keep_remove option (Image)"},
        {"krlImageColourDifference", 3, 4, "Colour Difference invalid input keep_remove option (Image)"},
        {"krlImageColourDifferenceExtended", 5, 6,
         "Colour Difference Extended invalid input keep_remove option (Image)"},
        {"krlImageAutoColorDifferenceCharger", 4, 5,
         "Auto Colour Difference Charger invalid input keep_remove option (Image)"},
        {"krlImageRGBGradient", 2, 3, "RGB Gradient invalid input quality (Image)"},
    };
    expectTold(cases, true);
}

TEST(Comparisons, FollowAllReadsInAllOtherMethods) {
    const TwoFaults cases[] = {
        {"krlImageRGBChannelSwap", 0, 1, "RGB Channel Swap input failure (Image)"},
        {"krlImageYUVBlur", 0, 1, "YUVBlur input failure (Image)"},
        {"krlImageDiffuse", 2, 3, "Diffuse input failure (Image)"},
        {"krlImageVignette", 0, 9, "Vignette input failure (Image)"},
        {"krlImageTones", 0, 2, "Tones input failure (Image)"},
        {"krlImageFishEye", 3, 5, "Fish Eye input failure (Image)"},
        {"krlImageInputMask", 1, 2, "Input Mask input failure (Image)"},
        {"krlImageGleamZoomComposite", 13, 14, "Gleam Zoom input failure (Image)"},
        {"krlImageGleamBlurComposite", 1, 10, "Gleam Blur input failure (Image)"},
    };
    expectTold(cases, false);
}

/// The items requested from the player.
std::vector<int32_t> askedItems;

HostStatus KRL_HOST_CALL tellItem(HostInterface*, int32_t item, HostInterface** answer) {
    askedItems.push_back(item);
    *answer = nullptr;
    return kHostOk;
}

TEST(HostQuery, IsMadeOnceBySixMethodsAndByNoOther) {
    const std::set<std::string> asking = {"krlImageCreateLookupTables",  "krlImageLoad",
                                          "krlImageComposite",           "krlImageInputMask",
                                          "krlImageLightSpillComposite", "krlImageReinterlace"};
    Stage stage;
    stage.embeddedHost().player.set<players::GetItem>(tellItem);
    stage.load(4, 3);
    for (const Method* method : methods()) {
        const std::vector<Value> arguments = stage.examples(*method);
        askedItems.clear();
        stage.call(*method, arguments);
        EXPECT_EQ(askedItems, std::vector<int32_t>(asking.count(method->name()), 1)) << method->name();
    }
}

TEST(HostQuery, ComesBeforeEveryTest) {
    Stage stage(false);
    stage.embeddedHost().player.set<players::GetItem>(tellItem);
    for (const char* name : {"krlImageLoad", "krlImageComposite"}) {
        askedItems.clear();
        EXPECT_NE(stage.call(name, {Value(), stage.string("words"), Value()}).error, "");
        EXPECT_EQ(askedItems, std::vector<int32_t>{1}) << name;
    }
}

/// Locks left by a call with second images of another size.
int64_t locksLeft(const char* name) {
    Stage stage;
    stage.load(4, 3);
    std::vector<Value> arguments = stage.examples(*findMethod(name));
    for (size_t i = 0; i < arguments.size(); ++i)
        if (findMethod(name)->arguments()[i].kind == ArgumentKind::SecondImage)
            arguments[i] = stage.image(2 + int32_t(i), 2 + int32_t(i), 1);
    EXPECT_EQ(stage.call(name, arguments).error, findMethod(name)->failedText());
    return stage.locks() - 1;
}

TEST(SecondImages, StayLockedAfterAFailedCompositeMaskOrSpill) {
    for (const char* name : {"krlImageComposite", "krlImageGleamBlurComposite", "krlImageGleamZoomComposite",
                             "krlImageLightSpillComposite", "krlImageInputMask"})
        EXPECT_EQ(locksLeft(name), 1) << name;
}

TEST(SecondImages, AreUnlockedHoweverAMapOrAReinterlaceEnds) {
    for (const char* name : {"krlImageDisplacementMapComposite", "krlImageReinterlace"})
        EXPECT_EQ(locksLeft(name), 0) << name;
}

TEST(Calls, WithoutAMethodLeaveTheResultUnchanged) {
    Stage stage;
    for (const int32_t selector : {0, -1, 113, 1000}) {
        CallInfo info;
        info.selector = selector;
        info.result.words[0] = 77;
        EXPECT_EQ(stage.send(info), kHostOk) << selector;
        EXPECT_EQ(info.result.words[0], 77) << selector;
    }
}

TEST(Calls, HoldThePlayerObjectsOnlyWhileTheyRun) {
    Stage stage;
    const int64_t before = stage.embeddedHost().references();
    stage.call("krlImageSepia");
    EXPECT_EQ(stage.embeddedHost().references(), before);
}

}  // namespace
}  // namespace krl::host
