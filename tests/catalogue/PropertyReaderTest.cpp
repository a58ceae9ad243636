#include <gtest/gtest.h>

#include "catalogue/Catalogue.h"
#include "catalogue/DirectCall.h"
#include "catalogue/Notation.h"
#include "catalogue/PropertyReader.h"

namespace krl {
namespace {

struct Lamp {
    int32_t watts = 40;
    float beam = 1.5f;
    Point place{8, 7};  // row first
};

/// A method that reads a property list into `lamp`.
class PropertyReading : public testing::Test {
protected:
    PropertyReading() {
        reader_.add(property<&Lamp::watts>("watts"), "Invalid watts");
        reader_.add(property<&Lamp::beam, double>("beam"), "Invalid beam");
        Property<Lamp> place = property<&Lamp::place>("place");
        place.secondKey = "position";
        reader_.add(place, "Invalid place");
        catalogue_.family("tone");
        catalogue_.add("krlImageLamp").value("lamp", "[:]", "a lamp").does([this](Call& call) {
            return reader_.read(call, call.raw(0), lamp_);
        });
    }

    std::string errorFor(const char* list) {
        return callMethod(*catalogue_.find("lamp"), engine_, {readNotation(list)}).error;
    }

    Lamp lamp_;

private:
    PropertyReader<Lamp> reader_;
    Catalogue catalogue_;
    ImageEngine engine_;
};

TEST_F(PropertyReading, StoresEachPropertyInItsField) {
    EXPECT_EQ(errorFor("[#place: point(1, 2), #watts: 60, #beam: 0.25]"), "");
    EXPECT_EQ(lamp_.watts, 60);
    EXPECT_EQ(lamp_.beam, 0.25f);
    EXPECT_EQ(lamp_.place.x, 1);
    EXPECT_EQ(lamp_.place.y, 2);
}

TEST_F(PropertyReading, TriesTheSecondKeyWhereThereIsNothingUnderTheFirst) {
    EXPECT_EQ(errorFor("[#watts: 1, #beam: 1, #position: point(3, 4)]"), "");
    EXPECT_EQ(lamp_.place.x, 3);
    EXPECT_EQ(errorFor("[#watts: 1, #beam: 1, #position: point(3, 4), #place: point(5, 6)]"), "");
    EXPECT_EQ(lamp_.place.x, 5);
}

TEST_F(PropertyReading, EndsAtTheFirstPropertyThatFailsAndKeepsTheFieldsAfterIt) {
    EXPECT_EQ(errorFor("[#watts: 60, #place: point(1, 2)]"), "Invalid beam");
    EXPECT_EQ(lamp_.watts, 60);
    EXPECT_EQ(lamp_.place.x, 7);
    EXPECT_EQ(errorFor("[:]"), "Invalid watts");
    EXPECT_EQ(errorFor("5"), "Invalid watts");
}

TEST_F(PropertyReading, KeepsTheFieldOfAPropertyOfTheWrongKind) {
    EXPECT_EQ(errorFor("[#watts: 2.5, #beam: 1, #place: point(1, 2)]"), "Invalid watts");
    EXPECT_EQ(lamp_.watts, 40);
    EXPECT_EQ(errorFor("[#watts: 2, #beam: 1, #place: 9]"), "Invalid place");
    EXPECT_EQ(lamp_.place.x, 7);
}

}  // namespace
}  // namespace krl
