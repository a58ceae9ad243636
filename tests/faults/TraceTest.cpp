#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>

#include "faults/Stand.h"
#include "host/MethodRegistry.h"

/// In what order a call asks its host for what.
namespace krl::test {
namespace {

HostVector<HostString> lines(std::initializer_list<const char*> words) {
    return {words.begin(), words.end()};
}

HostVector<HostString> traceOf(const char* name) {
    Stand stand(*host::findMethod(name), 1);
    stand.prepare();
    stand.call();
    return stand.host.trace;
}

TEST(Trace, OfTablesInternsBothModesOnceBeforeAllElse) {
    EXPECT_EQ(traceOf("krlImageCreateLookupTables"),
              lines({"getPlayer", "getSub", "internSymbol mt", "internSymbol st", "newPropertyList",
                     "internSymbol error", "symbolToValue", "getItem", "valueToSymbol", "integerToValue",
                     "appendProperty", "releaseValue"}));
}

TEST(Trace, OfAnEffectInternsEveryCandidateAfterTheReads) {
    EXPECT_EQ(traceOf("krlImageBrightness"),
              lines({"getPlayer", "getSub", "newPropertyList", "internSymbol error", "symbolToValue",
                     "valueToInteger", "valueToSymbol", "internSymbol RGB", "internSymbol Alpha",
                     "integerToValue", "appendProperty", "releaseValue"}));
}

TEST(Trace, OfAMaskDescribesBeforeItLocks) {
    EXPECT_EQ(traceOf("krlImageInputMask"),
              lines({"getPlayer", "getSub", "newPropertyList", "internSymbol error", "symbolToValue",
                     "getItem", "valueToSymbol", "valueToSymbol", "internSymbol keep", "internSymbol remove",
                     "internSymbol true", "internSymbol false", "queryImage", "lockImage", "unlockImage",
                     "integerToValue", "appendProperty", "releaseValue"}));
}

TEST(Trace, OfAFlareInternsEveryKindBeforeItReads) {
    HostVector<HostString> trace = traceOf("krlImageLensFlare");
    trace.erase(std::find(trace.begin(), trace.end(), "getPropertyByIndex"), trace.end());
    EXPECT_EQ(trace, lines({"getPlayer",
                            "getSub",
                            "newPropertyList",
                            "internSymbol error",
                            "symbolToValue",
                            "internSymbol polyshape",
                            "internSymbol randomFan",
                            "internSymbol spike",
                            "internSymbol star",
                            "internSymbol line",
                            "internSymbol filledCircle",
                            "internSymbol gradientCircle",
                            "internSymbol outlinedCircle",
                            "internSymbol fadedCircle",
                            "internSymbol starCaustic",
                            "internSymbol chromaHoop",
                            "internSymbol creationType",
                            "internSymbol pointType",
                            "internSymbol photon",
                            "internSymbol manual",
                            "internSymbol automatic",
                            "internSymbol standard",
                            "internSymbol antialiased",
                            "internSymbol sine",
                            "internSymbol linear",
                            "internSymbol curved",
                            "countElements"}));
}

TEST(Trace, OfANewPictureLocksItOnce) {
    EXPECT_EQ(traceOf("krlImageDropShadow"),
              lines({"getPlayer", "getSub", "newPropertyList", "internSymbol error", "symbolToValue",
                     "valueToInteger", "valueToInteger", "createImage", "lockImage", "unlockImage",
                     "integerToValue", "appendProperty", "releaseValue", "internSymbol frame",
                     "symbolToValue", "appendProperty", "releaseValue", "releaseValue"}));
}

}  // namespace
}  // namespace krl::test
