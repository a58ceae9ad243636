#include <gtest/gtest.h>

#include <map>

#include "methods/Stage.h"
#include "player/host/Objects.h"

/// The two descriptions that scripts pass as lists: flares and Bezier shapes.
namespace krl::test {
namespace {

using player::ListObject;
using player::PropertyListObject;
using player::Value;

constexpr int32_t kWidth = 60, kHeight = 40;

struct FlareProperty {
    const char* key;
    char kind;          ///< i integer, f float, p point
    const char* words;  ///< in the message
};

struct FlareKind {
    const char* symbol;
    const char* words;
    std::vector<FlareProperty> properties;
};

const std::vector<FlareProperty> kRing{
    {"origin", 'p', "origin"},
    {"radius", 'f', "radius"},
    {"outerThickness", 'f', "outerThickness"},
    {"innerThickness", 'f', "innerThickness"},
    {"outerFeather", 'f', "outerFeather"},
    {"innerFeather", 'f', "innerFeather"},
    {"brightness", 'f', "brightness"},
    {"transparency", 'i', "transparency"},
};

const std::vector<FlareKind> kKinds{
    {"polyshape",
     "polygon",
     {{"count", 'i', "count"},
      {"angle", 'f', "angle"},
      {"brightness", 'f', "brightness"},
      {"radius", 'f', "radius"},
      {"expandshape", 'i', "expand"},
      {"shapeBlur", 'i', "blur"},
      {"origin", 'p', "origin"},
      {"transparency", 'i', "transparency"}}},
    {"randomFan",
     "random fan",
     {{"count", 'i', "count"},
      {"angle", 'f', "angle"},
      {"brightness", 'f', "brightness"},
      {"radius", 'f', "radius"},
      {"aperture", 'i', "aperture"},
      {"origin", 'p', "origin"},
      {"seed", 'i', "seed"},
      {"transparency", 'i', "transparency"}}},
    {"spike",
     "spike",
     {{"count", 'i', "count"},
      {"angle", 'f', "angle"},
      {"brightness", 'f', "brightness"},
      {"radius", 'f', "radius"},
      {"origin", 'p', "origin"},
      {"seed", 'i', "seed"},
      {"transparency", 'i', "transparency"}}},
    {"star",
     "star",
     {{"count", 'i', "count"},
      {"width", 'i', "width"},
      {"angle", 'f', "angle"},
      {"brightness", 'f', "brightness"},
      {"radius", 'f', "radius"},
      {"origin", 'p', "origin"},
      {"transparency", 'i', "transparency"}}},
    {"line",
     "line",
     {{"length", 'f', "length"},
      {"thickness", 'f', "thickness"},
      {"angle", 'f', "angle"},
      {"origin", 'p', "origin"},
      {"brightness", 'i', "brightness"},
      {"transparency", 'i', "transparency"}}},
    {"filledCircle",
     "filled circle",
     {{"origin", 'p', "origin"},
      {"radius", 'f', "radius"},
      {"outerFeather", 'f', "outerFeather"},
      {"brightness", 'f', "brightness"},
      {"transparency", 'i', "transparency"}}},
    {"gradientCircle",
     "gradient circle",
     {{"origin", 'p', "origin"},
      {"radius", 'f', "radius"},
      {"brightness", 'f', "brightness"},
      {"transparency", 'i', "transparency"}}},
    {"outlinedCircle", "outlined circle", kRing},
    {"fadedCircle", "faded circle", kRing},
    {"starCaustic",
     "star caustic",
     {{"length", 'f', "length"},
      {"thickness", 'f', "thickness"},
      {"angle", 'f', "angle"},
      {"origin", 'p', "origin"},
      {"brightness", 'f', "brightness"},
      {"transparency", 'i', "transparency"}}},
    {"chromaHoop",
     "chroma hoop",
     {{"position", 'f', "position"},
      {"angle", 'f', "angle"},
      {"apogeeScale", 'f', "apogeeScale"},
      {"softness", 'f', "softness"},
      {"chromaSpread", 'f', "chromaSpread"},
      {"density", 'f', "density"},
      {"noise", 'f', "noise"},
      {"arcCompleteness", 'f', "arcCompleteness"},
      {"seed", 'i', "seed"},
      {"brightness", 'f', "brightness"},
      {"transparency", 'i', "transparency"},
      {"origin", 'p', "origin"},
      {"handle", 'p', "handle"}}},
};

class FlareStage : public Stage {
public:
    FlareStage() { load(kWidth, kHeight); }

    Value list() {
        Argument empty;
        empty.kind = ArgumentKind::ColourList;
        return example(empty);
    }
    Value point(int32_t column, int32_t row) {
        Argument place;
        place.kind = ArgumentKind::Point;
        place.placeExample = {(column + 0.5) / kWidth, (row + 0.5) / kHeight};
        return example(place);
    }
    void add(const Value& to, Value key, Value value) {
        to.as<PropertyListObject>()->entries.push_back({std::move(key), std::move(value)});
    }
    void set(const Value& to, const char* key, Value value) {
        for (auto& entry : to.as<PropertyListObject>()->entries)
            if (entry.key.sameWords(symbol(key))) {
                entry.value = std::move(value);
                return;
            }
        add(to, symbol(key), std::move(value));
    }
    void remove(const Value& from, const char* key) {
        std::erase_if(from.as<PropertyListObject>()->entries,
                      [&](const auto& entry) { return entry.key.sameWords(symbol(key)); });
    }

    /// Valid settings; radius 8 and brightness 200 around (30, 20).
    Value settings(const FlareKind& kind) {
        Value made = list();
        for (const FlareProperty& property : kind.properties) {
            if (property.kind == 'p') set(made, property.key, point(30, 20));
            if (property.kind == 'i')
                set(made, property.key, integer(std::string(property.key) == "transparency" ? 0 : 5));
            if (property.kind == 'f')
                set(made, property.key, real(std::string(property.key) == "brightness" ? 200 : 8));
        }
        set(made, "colourList", list());
        set(made, "blendMethod", symbol("normal"));
        return made;
    }

    Answer flare(const std::vector<std::pair<std::string, Value>>& elements) {
        Value description = list();
        for (const auto& [kind, value] : elements) add(description, symbol(kind.c_str()), value);
        return call("krlImageLensFlare", {description});
    }
};

const FlareKind& kindNamed(const std::string& symbol) {
    for (const FlareKind& kind : kKinds)
        if (symbol == kind.symbol) return kind;
    throw std::out_of_range(symbol);
}

std::string invalid(const FlareKind& kind, const char* words) {
    return std::string("Invalid ") + kind.words + " " + words + " (LensFlare)";
}

TEST(LensFlareMethod, AcceptsEveryKind) {
    FlareStage stage;
    for (const FlareKind& kind : kKinds) {
        const Answer answer = stage.flare({{kind.symbol, stage.settings(kind)}});
        EXPECT_EQ(answer.error, "") << kind.symbol;
        EXPECT_TRUE(answer.reported);
        EXPECT_EQ(answer.status, host::kHostOk);
    }
}

TEST(LensFlareMethod, NamesEveryPropertyThatIsMissingOrOfTheWrongType) {
    FlareStage stage;
    for (const FlareKind& kind : kKinds)
        for (const FlareProperty& property : kind.properties) {
            Value missing = stage.settings(kind), wrong = stage.settings(kind);
            stage.remove(missing, property.key);
            stage.set(wrong, property.key, stage.string("x"));
            for (const Value& settings : {missing, wrong}) {
                const std::vector<Pixel> before = stage.pixels();
                const Answer answer = stage.flare({{kind.symbol, settings}});
                EXPECT_EQ(answer.error, invalid(kind, property.words));
                EXPECT_NE(answer.status, host::kHostOk) << property.key;
                EXPECT_EQ(stage.pixels(), before);
            }
        }
}

TEST(LensFlareMethod, AcceptsIntegersForFloatsButNotFloatsForIntegers) {
    FlareStage stage;
    for (const FlareKind& kind : kKinds)
        for (const FlareProperty& property : kind.properties) {
            if (property.kind == 'p') continue;
            Value settings = stage.settings(kind);
            stage.set(settings, property.key, property.kind == 'f' ? stage.integer(3) : stage.real(3.0));
            EXPECT_EQ(stage.flare({{kind.symbol, settings}}).error,
                      property.kind == 'f' ? "" : invalid(kind, property.words));
        }
}

TEST(LensFlareMethod, ReadsPropertiesInTheirOrder) {
    FlareStage stage;
    for (const FlareKind& kind : kKinds) {
        Value settings = stage.settings(kind);
        for (size_t i = kind.properties.size(); i-- > 0;) {
            stage.remove(settings, kind.properties[i].key);
            EXPECT_EQ(stage.flare({{kind.symbol, settings}}).error, invalid(kind, kind.properties[i].words));
        }
    }
}

TEST(LensFlareMethod, ReportsColoursAndBlendWithTheColourListsMessage) {
    FlareStage stage;
    for (const FlareKind& kind : kKinds) {
        Value noColours = stage.settings(kind), oddColours = stage.settings(kind),
              noBlend = stage.settings(kind);
        stage.remove(noColours, "colourList");
        stage.set(oddColours, "colourList", stage.integer(5));
        stage.remove(noBlend, "blendMethod");
        EXPECT_EQ(stage.flare({{kind.symbol, noColours}}).error, invalid(kind, "colour list"));
        EXPECT_EQ(stage.flare({{kind.symbol, oddColours}}).error, invalid(kind, "colour list"));
        const bool isLine = std::string(kind.symbol) == "line";
        EXPECT_EQ(stage.flare({{kind.symbol, noBlend}}).error,
                  isLine ? "Invalid polygon colour list (LensFlare)" : invalid(kind, "colour list"));
        stage.set(noBlend, "blendMethod", stage.integer(1));
        EXPECT_NE(stage.flare({{kind.symbol, noBlend}}).error, "");
        stage.set(noBlend, "blendMethod", stage.symbol("anything"));
        EXPECT_EQ(stage.flare({{kind.symbol, noBlend}}).error, "");
    }
}

TEST(LensFlareMethod, ReadsTheKeyOfAColourOnlyIfThereAreSeveral) {
    FlareStage stage;
    const FlareKind& kind = kindNamed("filledCircle");
    Value settings = stage.settings(kind), colours = stage.list();
    stage.set(settings, "colourList", colours);
    stage.add(colours, stage.string("nowhere"), Value::colour({10, 20, 30}));
    stage.set(settings, "brightness", stage.real(255));
    EXPECT_EQ(stage.flare({{"filledCircle", settings}}).error, "");
    EXPECT_EQ(stage.pixels()[20 * kWidth + 30], (Pixel{30, 20, 10, 255}));
    stage.add(colours, stage.real(100), Value::colour({200, 0, 0}));
    EXPECT_EQ(stage.flare({{"filledCircle", settings}}).error, invalid(kind, "colour list"));
    colours.as<PropertyListObject>()->entries[0].key = stage.integer(0);
    EXPECT_EQ(stage.flare({{"filledCircle", settings}}).error, "");
    EXPECT_EQ(stage.pixels()[20 * kWidth + 30], (Pixel{0, 0, 200, 255}));
    colours.as<PropertyListObject>()->entries[1].value = stage.integer(7);
    EXPECT_EQ(stage.flare({{"filledCircle", settings}}).error, invalid(kind, "colour list"));
}

TEST(LensFlareMethod, PutsTheOriginAtColumnAndRow) {
    FlareStage stage;
    const FlareKind& kind = kindNamed("gradientCircle");
    Value settings = stage.settings(kind);
    stage.set(settings, "origin", stage.point(11, 33));
    stage.set(settings, "radius", stage.real(0));
    EXPECT_EQ(stage.flare({{kind.symbol, settings}}).error, "");
    EXPECT_EQ(stage.pixels()[33 * kWidth + 11], (Pixel{255, 255, 255, 255}));
}

TEST(LensFlareMethod, KeepsElementsBeforeAFault) {
    FlareStage stage, twoOnly;
    const Value first = stage.settings(kindNamed("filledCircle")), second = stage.settings(kindNamed("star"));
    const Answer answer =
        stage.flare({{"filledCircle", first}, {"star", second}, {"photon", second}, {"star", first}});
    EXPECT_EQ(answer.error, "Unknown shape type (LensFlare)");
    EXPECT_EQ(answer.status, host::kHostOk);
    twoOnly.flare({{"filledCircle", twoOnly.settings(kindNamed("filledCircle"))},
                   {"star", twoOnly.settings(kindNamed("star"))}});
    EXPECT_EQ(stage.pixels(), twoOnly.pixels());
}

TEST(LensFlareMethod, ChangesNothingForAnEmptyList) {
    FlareStage stage;
    const std::vector<Pixel> before = stage.pixels();
    EXPECT_EQ(stage.flare({}).error, "");
    EXPECT_EQ(stage.call("krlImageLensFlare", {stage.integer(4)}).error, "");
    EXPECT_EQ(stage.pixels(), before);
    EXPECT_EQ(stage.flare({{"star", stage.integer(9)}}).error, "Invalid star count (LensFlare)");
}

TEST(LensFlareMethod, ReadsAndValidatesWithoutAPicture) {
    FlareStage stage;
    stage.quit();
    Value settings = stage.list();
    stage.load(kWidth, kHeight);
    settings = stage.settings(kindNamed("spike"));
    Value bad = stage.settings(kindNamed("spike"));
    stage.remove(bad, "seed");
    stage.quit();
    EXPECT_EQ(stage.flare({{"spike", settings}}).error, "");
    EXPECT_EQ(stage.flare({{"spike", bad}}).error, "Invalid spike seed (LensFlare)");
}

TEST(LensFlareMethod, LeavesNothingBehind) {
    FlareStage stage;
    for (const FlareKind& kind : kKinds) {
        Value bad = stage.settings(kind);
        stage.remove(bad, "blendMethod");
        stage.flare({{kind.symbol, stage.settings(kind)}, {kind.symbol, bad}});
    }
    stage.quit();
    EXPECT_TRUE(stage.leavesNothing());
}

TEST(BezierMethod, TreatsMissingPointsAsTheOrigin) {
    FlareStage stage;
    Value shape = stage.list(), entry = stage.list();
    // A property list counts as a list of its values.
    stage.add(shape, stage.integer(1), entry);
    stage.set(entry, "vertex", stage.string("nowhere"));
    EXPECT_EQ(stage.call("krlImageDrawBezierShape", {shape}).error, "");
    for (const Pixel& p : stage.pixels()) EXPECT_EQ(p.blue + p.green + p.red, 0);
    stage.set(entry, "vertex", stage.point(30, 20));
    stage.set(entry, "handle1", stage.point(0, 0));
    EXPECT_EQ(stage.call("krlImageDrawBezierShape", {shape}).error, "");
    EXPECT_EQ(stage.call("krlImageDrawBezierShape", {stage.integer(3)}).error, "");
    stage.quit();
    EXPECT_EQ(stage.call("krlImageDrawBezierShape", {shape}).error, "");
}

}  // namespace
}  // namespace krl::test
