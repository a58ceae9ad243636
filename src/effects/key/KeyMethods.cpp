#include "catalogue/Catalogue.h"
#include "effects/key/HsvKeys.h"

/// Bindings of the keys on hue, saturation and value.
namespace krl {

namespace {

/// The two options with which every key ends. `keepRemove` is settled before `invert` is read.
Method& addFold(Method& entry, const char* badKeepRemove, const char* badInvert) {
    return entry
        .symbol("keepRemove", {{"keep", true}, {"remove", false}}, refused(badKeepRemove),
                "keep only takes opacity away, remove only gives it back")
        .thenCompare()
        .symbol("invert", {{"true", true}, {"false", false}}, refused(badInvert),
                "with keep, true clears what is on the key and false what is off it");
}

void addChromaKey(Catalogue& catalogue) {
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
    catalogue.add(std::move(entry));
}

/// A key on one component, in words.
struct ComponentKey {
    const char* name;
    Status (*effect)(ImageEngine&, Colour, float, int32_t, int32_t, bool, bool);
    const char* summary;
    const char* pickMeaning;
    const char* rangeMeaning;
    double rangeExample;
    const char *badKeepRemove, *badInvert, *inputFailure, *failed;
};

constexpr ComponentKey kComponentKeys[] = {
    {"krlImageHueKey", hueKey, "Keys on one hue; greys are never on the key.", "colour whose hue is keyed",
     "reach to either side, as a share of the circle", 0.2,
     "Hue Key invalid input keep_remove option (Image)", "Hue Key invalid input invert option (Image)",
     "Hue Key input failure (Image)", "Failed Hue Key function (Image)"},
    {"krlImageSaturationKey", saturationKey, "Keys on how saturated a colour is.",
     "colour whose saturation is keyed", "reach to either side, 1.0 being all", 0.4,
     "Saturation Key invalid input keep_remove option (Image)",
     "Saturation Key invalid input invert option (Image)", "Saturation Key input failure (Image)",
     "Failed Saturation Key function (Image)"},
    {"krlImageValueKey", valueKey, "Keys on how bright a colour is.", "colour whose brightness is keyed",
     "reach to either side, 1.0 being all", 0.4, "Value Key invalid input keep_remove option (Image)",
     "Value Key invalid input invert option (Image)", "Value Key input failure (Image)",
     "Failed Value Key function (Image)"},
};

void addComponentKey(Catalogue& catalogue, const ComponentKey& key) {
    Method entry = method(key.name, key.effect);
    entry.summary(key.summary)
        .colour("pColor", Colour(45, 170, 80), key.pickMeaning)
        .real("dynamicRange", {.from = 0, .to = 1, .example = key.rangeExample}, key.rangeMeaning)
        .integer("black", {.from = 0, .to = 255, .example = 60},
                 "level of distance up to which all is on the key")
        .integer("white", {.from = 0, .to = 255, .example = 200},
                 "level of distance from which all is off it");
    addFold(entry, key.badKeepRemove, key.badInvert).inputFailure(key.inputFailure).failed(key.failed);
    catalogue.add(std::move(entry));
}

}  // namespace

void describeKeyMethods(Catalogue& catalogue) {
    addChromaKey(catalogue);
    for (const ComponentKey& key : kComponentKeys) addComponentKey(catalogue, key);
}

}  // namespace krl
