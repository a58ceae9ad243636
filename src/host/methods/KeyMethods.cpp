#include "host/MethodRegistry.h"
#include "key/HsvKeys.h"

/// Bindings of the keys on hue, saturation and value.
namespace krl::host {

namespace {

/// The two options with which every key ends. `keepRemove` is settled before `invert` is read.
Method& addFold(Method& entry, const char* badKeepRemove, const char* badInvert) {
    return entry
        .symbol("keepRemove", {{"keep", true}, {"remove", false}}, refused(badKeepRemove),
                "keep clears what is off the key's side, remove restores it")
        .thenCompare()
        .symbol("invert", {{"true", true}, {"false", false}}, refused(badInvert),
                "true with keep clears what is on the key, false what is off it");
}

void addChromaKey(MethodList& list) {
    Method entry = method("krlImageChromaKey", chromaKey);
    entry.summary("Keys on hue, saturation and value at once, each with a full and a soft range.")
        .real("huePick", {.from = 0, .to = 360, .example = 120}, "hue to key, in degrees")
        .real("innerHue", {.from = 0, .to = 180, .example = 25}, "degrees to either side keyed in full")
        .real("outerHue", {.from = 0, .to = 180, .example = 20}, "further degrees that fade out")
        .real("satPick", {.from = 0, .to = 1, .example = 0.8}, "saturation to key")
        .real("innerSat", {.from = 0, .to = 100, .example = 35}, "percent to either side keyed in full")
        .real("outerSat", {.from = 0, .to = 100, .example = 25}, "further percent that fade out")
        .real("valPick", {.from = 0, .to = 1, .example = 0.7}, "brightness to key")
        .real("innerVal", {.from = 0, .to = 100, .example = 30}, "percent to either side keyed in full")
        .real("outerVal", {.from = 0, .to = 100, .example = 15}, "further percent that fade out");
    addFold(entry, "Chroma Key invalid input keep_remove option (Image)",
            "Chroma Key invalid input invert option (Image)")
        .inputFailure("Chroma Key input failure (Image)")
        .failed("Failed Chroma Key function (Image)");
    list.add(std::move(entry));
}

/// What the three keys on one component have in common.
Method& addPick(Method& entry, const char* pickMeaning, const char* rangeMeaning, double rangeExample) {
    return entry.colour("pColor", Colour(45, 170, 80), pickMeaning)
        .real("dynamicRange", {.from = 0, .to = 1, .example = rangeExample}, rangeMeaning)
        .integer("black", {.from = 0, .to = 255, .example = 60},
                 "level of distance up to which all is on the key")
        .integer("white", {.from = 0, .to = 255, .example = 200},
                 "level of distance from which all is off it");
}

void addComponentKeys(MethodList& list) {
    Method hue = method("krlImageHueKey", hueKey);
    hue.summary("Keys on one hue; greys are never on the key.");
    addPick(hue, "colour whose hue is keyed", "reach to either side, as a share of the circle", 0.2);
    addFold(hue, "Hue Key invalid input keep_remove option (Image)",
            "Hue Key invalid input invert option (Image)")
        .inputFailure("Hue Key input failure (Image)")
        .failed("Failed Hue Key function (Image)");
    list.add(std::move(hue));

    Method saturation = method("krlImageSaturationKey", saturationKey);
    saturation.summary("Keys on how saturated a colour is.");
    addPick(saturation, "colour whose saturation is keyed", "reach to either side, 1.0 being all", 0.4);
    addFold(saturation, "Saturation Key invalid input keep_remove option (Image)",
            "Saturation Key invalid input invert option (Image)")
        .inputFailure("Saturation Key input failure (Image)")
        .failed("Failed Saturation Key function (Image)");
    list.add(std::move(saturation));

    Method value = method("krlImageValueKey", valueKey);
    value.summary("Keys on how bright a colour is.");
    addPick(value, "colour whose brightness is keyed", "reach to either side, 1.0 being all", 0.4);
    addFold(value, "Value Key invalid input keep_remove option (Image)",
            "Value Key invalid input invert option (Image)")
        .inputFailure("Value Key input failure (Image)")
        .failed("Failed Value Key function (Image)");
    list.add(std::move(value));
}

}  // namespace

void addKeyMethods(MethodList& list) {
    list.group("Keys");
    addChromaKey(list);
    addComponentKeys(list);
}

}  // namespace krl::host
