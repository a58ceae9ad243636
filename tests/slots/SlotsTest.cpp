#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "host/HostSlots.h"
#include "player/lingo/Session.h"
#include "tests/support/ScratchFolder.h"

/// Frame and player built with another table of slots: nothing but that table knows where a host's
/// operations stand.
namespace krl::player {
namespace {

static_assert(host::slots::kInternSymbol == 20, "this program is built with the other table");

TEST(OtherSlots, RunAScriptAsTheUsualOnesDo) {
    const test::ScratchFolder folder;
    const std::filesystem::path script = folder.path() / "a.ls";
    std::ofstream(script) << "on main\n"
                             "  picture = image(4, 4, 32)\n"
                             "  grader = new(xtra \"KRLImageXtra\")\n"
                             "  grader.krlImageCreateLookupTables(#mt)\n"
                             "  put grader.krlImageLoad(picture)\n"
                             "  put grader.krlImageBrightness(-55, #RGB)\n"
                             "  put grader.krlImageBrightness(\"x\", #RGB)\n"
                             "  put grader.krlImageRGBtoHSV(rgb(255, 0, 0))\n"
                             "  put grader.krlImageQuit()\n"
                             "  put picture.getPixel(1, 1)\n"
                             "end\n";
    std::ostringstream output;
    SessionOptions options;
    options.output = &output;
    Session session(options);
    session.run(script, {});
    EXPECT_EQ(output.str(),
              "-- [#error: 0]\n"
              "-- [#error: 0]\n"
              "-- [#error: \"Brightness input failure (Image)\"]\n"
              "-- [#hue: 0.0000, #saturation: 1.0000, #value: 1.0000]\n"
              "-- [#error: 0]\n"
              "-- rgb( 200, 200, 200 )\n");
    EXPECT_TRUE(session.close().none());
}

}  // namespace
}  // namespace krl::player
