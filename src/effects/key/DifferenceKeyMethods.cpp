#include "catalogue/Call.h"
#include "catalogue/Catalogue.h"
#include "effects/key/DifferenceKeys.h"
#include "effects/key/SpillSuppression.h"

/// Bindings of the colour-difference keys and the spill suppression.
namespace krl {

namespace {

std::vector<SymbolChoice> backings() {
    return {{"green", KeyColour::Green}, {"blue", KeyColour::Blue}, {"red", KeyColour::Red}};
}

std::vector<SymbolChoice> automaticBackings() {
    return {{"auto", KeyColour::Auto}, {"green", KeyColour::Green}, {"blue", KeyColour::Blue}};
}

constexpr const char* kKeepMeaning = "keep only takes opacity away, remove only gives it back";
constexpr const char* kInvertMeaning = "with keep, false clears the backing and true all but the backing";
constexpr const char* kAutoColourMeaning = "the backing that was found or given, #green or #blue";

std::vector<SymbolChoice> keepOrRemove() { return {{"keep", true}, {"remove", false}}; }
std::vector<SymbolChoice> invertOrNot() { return {{"false", false}, {"true", true}}; }

/// Colour and `keepRemove` are compared once the latter is read, before `invert` is.
void addGivenBackings(Catalogue& catalogue) {
    catalogue.add(
        method("krlImageColourDifference", colourDifference)
            .summary("Keys on how far the backing's colour stands above the other two.")
            .symbol("differenceColour", backings(), refused("Colour Difference invalid input colour (Image)"),
                    "colour of the backing")
            .integer("blackValue", {.from = 0, .to = 255, .example = 20},
                     "difference up to which a pixel is the subject")
            .integer("whiteValue", {.from = 0, .to = 255, .example = 60},
                     "difference above which it is the backing")
            .symbol("keepRemove", keepOrRemove(),
                    refused("Colour Difference invalid input keep_remove option (Image)"), kKeepMeaning)
            .failsWith("ColourDifference input failure (Image)")
            .thenCompare()
            .symbol("invert", invertOrNot(), refused("Colour Difference invalid input invert option (Image)"),
                    kInvertMeaning)
            .inputFailure("Colour Difference input failure (Image)")
            .failed("Failed Colour Difference function (Image)"));
    catalogue.add(method("krlImageColourDifferenceExtended", colourDifferenceExtended)
                      .summary("The same, held back on dark places and along edges.")
                      .symbol("colorSymbol", backings(),
                              refused("Colour Difference Extended invalid input colour (Image)"),
                              "colour of the backing")
                      .real("colorRange", {.from = 0, .to = 1, .example = 0.5},
                            "how readily a pixel counts as certain backing")
                      .real("edgeContast", {.from = 0, .to = 0.5, .example = 0.2},
                            "how hard edges are told from flat places; 0.5 makes a step")
                      .real("luminocityContrast", {.from = 0, .to = 1, .example = 0.4},
                            "how quickly places darker than the backing drop out; 1.0 at once")
                      .real("colorDifferenceContrast", {.from = 0, .to = 0.5, .example = 0.3},
                            "how hard the difference is told apart; 0.5 makes a step")
                      .symbol("keepRemove", keepOrRemove(),
                              refused("Colour Difference Extended invalid input keep_remove option (Image)"),
                              kKeepMeaning)
                      .failsWith("ColourDifference Extended input failure (Image)")
                      .thenCompare()
                      .symbol("invert", invertOrNot(),
                              refused("Colour Difference Extended invalid input invert option (Image)"),
                              kInvertMeaning)
                      .inputFailure("Colour Difference Extended input failure (Image)")
                      .failed("Failed Colour Difference function (Image)"));
}

/// Ends a run with the colour that it used beside the success.
Outcome tellColour(Call& call, Status status, KeyColour used) {
    if (status != kStatusOk) return failure(call.method().failedText());
    call.caller().giveSymbol("auto_color", used == KeyColour::Blue ? "blue" : "green");
    return succeeded();
}

AutoKeySettings settingsOf(const Call& call) {
    return {.userColor = call.get<KeyColour>(0),
            .userDetail = call.get<float>(1),
            .userGrey = call.get<float>(2),
            .thresholdVal = call.get<float>(3)};
}

Outcome findColour(Call& call) {
    KeyColour found = KeyColour::Green;
    const Status status = autoColor(*call.engine(), found);
    return tellColour(call, status, found);
}

Outcome keyAutomatically(Call& call) {
    KeyColour used = KeyColour::Green;
    const Status status = autoColorDifference(*call.engine(), settingsOf(call), used);
    return tellColour(call, status, used);
}

Outcome chargeAutomatically(Call& call) {
    KeyColour used = KeyColour::Green;
    const Status status = autoColorDifferenceCharger(*call.engine(), settingsOf(call), call.get<bool>(4),
                                                     call.get<bool>(5), used);
    return tellColour(call, status, used);
}

/// The arguments with which both automatic keys begin.
Method& addSettings(Method& entry, const char* badColour) {
    return entry.gives("auto_color", kAutoColourMeaning)
        .symbol("userColor", automaticBackings(), refused(badColour),
                "colour of the backing, or auto to find it")
        .real("userDetail", {.from = -1, .to = 1, .example = 0.2},
              "where the backing counts as full, from the middle of its range toward its mean")
        .real("userGrey", {.from = 0, .to = 1, .example = 0.25},
              "how colourful a pixel must be to count in full")
        .real("thresholdVal", {.from = 0, .to = 1, .example = 0.5}, "share of that below which it is a grey");
}

void addAutomaticKeys(Catalogue& catalogue) {
    catalogue.add(method("krlImageAutoColor")
                      .summary("Finds whether the backing is green or blue; the picture stays as it is.")
                      .gives("auto_color", kAutoColourMeaning)
                      .failed("Failed Auto Color function (Image)")
                      .does(findColour));

    Method plain = method("krlImageAutoColorDifference");
    plain.summary("Keys on a backing whose colour and range come from the picture.");
    addSettings(plain, "Auto Color Difference invalid input direction (Image)")
        .inputFailure("Auto Color Difference input failure (Image)")
        .failed("Failed Auto Color Difference function (Image)")
        .does(keyAutomatically);
    catalogue.add(std::move(plain));

    constexpr const char* kFoldFailure = "Auto Colour Difference Charger input failure (Image)";
    Method charger = method("krlImageAutoColorDifferenceCharger");
    charger.summary("The same, combined with the transparency that is there.");
    addSettings(charger, "Auto Color Difference Charger invalid input direction (Image)")
        .symbol("keepRemove", keepOrRemove(),
                refused("Auto Colour Difference Charger invalid input keep_remove option (Image)"),
                kKeepMeaning)
        .failsWith(kFoldFailure)
        .thenCompare()
        .symbol("invert", invertOrNot(),
                refused("Auto Colour Difference Charger invalid input invert option (Image)"), kInvertMeaning)
        .failsWith(kFoldFailure)
        .inputFailure("Auto Color Difference Charger input failure (Image)")
        .failed("Failed Auto Color Difference Charger function (Image)")
        .does(chargeAutomatically);
    catalogue.add(std::move(charger));
}

void addSpill(Catalogue& catalogue) {
    catalogue.add(
        method("krlImageSpillSupression", spillSupression)
            .summary("Takes the backing's tint out of a keyed picture.")
            .symbol("spillColour", backings(), refused("Spill Suppression invalid input colour (Image)"),
                    "colour of the backing")
            .symbol("type", {{"extended", true}, {"plain", false}}, otherwise(false),
                    "extended limits by the mean of the other two colours, any other symbol by one of them")
            .integer("transparency", {.from = 0, .to = 255, .example = 255}, "strength, 255 being full")
            .inputFailure("Spill Suppression input failure (Image)")
            .failed("Failed Spill Suppression function (Image)"));
}

}  // namespace

void describeDifferenceKeyMethods(Catalogue& catalogue) {
    addGivenBackings(catalogue);
    addAutomaticKeys(catalogue);
    addSpill(catalogue);
}

}  // namespace krl
