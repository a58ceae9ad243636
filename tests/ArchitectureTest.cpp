#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <string>

namespace {

namespace fs = std::filesystem;

/// Which folders a folder's files may include from, besides `core`, the standard library and
/// themselves. Where only one header of another room may be taken, the header is named.
const std::map<std::string, std::set<std::string>> kMayInclude = {
    {"core", {}},
    {"blur", {"point/ByteCurve.h"}},
    {"point",
     {"blur/ByteMix.h", "blur/EdgeGain.h", "blur/TentBlur.h", "generate/Curve.h", "generate/CurveKey.h",
      "composite/BlendMode.h"}},
    {"filters", {"blur/TentBlur.h", "point/ByteCurve.h"}},
    {"warp", {}},
    {"composite", {"blur/TentBlur.h", "generate/Curve.h", "generate/CurveKey.h", "point/ByteCurve.h"}},
    {"key", {"filters/Gradient3x3.h"}},
    {"generate", {"blur/TentBlur.h", "composite/BlendMode.h"}},
    {"fields", {}},
};

std::string folderOf(const std::string& include) { return include.substr(0, include.find('/')); }

/// Quoted includes of a source file.
std::set<std::string> includesOf(const fs::path& file) {
    std::set<std::string> found;
    std::ifstream in(file);
    for (std::string line; std::getline(in, line);) {
        const std::string start = "#include \"";
        if (line.rfind(start, 0) == 0)
            found.insert(line.substr(start.size(), line.rfind('"') - start.size()));
    }
    return found;
}

TEST(Architecture, IncludesRunDownwardOnly) {
    const fs::path source = KRL_SOURCE_DIR;
    int files = 0;
    for (const auto& [folder, allowed] : kMayInclude) {
        for (const auto& entry : fs::recursive_directory_iterator(source / "src" / folder)) {
            if (!entry.is_regular_file()) continue;
            ++files;
            for (const std::string& include : includesOf(entry.path())) {
                const std::string from = folderOf(include);
                const bool own = from == folder || from == "core" || from == include;
                EXPECT_TRUE(own || allowed.count(include)) << entry.path() << " includes " << include;
            }
        }
    }
    EXPECT_GT(files, 20);
}

/// The player meets the plug-in at its door and reads its method registry, nothing else.
TEST(Architecture, ThePlayerKnowsTheDoorAndTheRegistryAlone) {
    const std::set<std::string> door = {
        "host/Door.h",           "host/HostInterfaces.h", "host/HostTypes.h",
        "host/HostSlots.h",      "host/Identifiers.h",    "host/Method.h",
        "host/MethodRegistry.h", "host/MessageTable.h",   "host/ExampleCall.h"};
    const std::set<std::string> engineRooms = {"blur",      "point", "filters",  "warp",
                                               "composite", "key",   "generate", "fields"};
    const fs::path source = KRL_SOURCE_DIR;
    for (const auto& entry : fs::recursive_directory_iterator(source / "player")) {
        const fs::path extension = entry.path().extension();
        if (extension != ".h" && extension != ".cpp") continue;
        for (const std::string& include : includesOf(entry.path())) {
            const std::string from = folderOf(include);
            if (from == "host" && fs::exists(source / "src" / include)) {
                EXPECT_TRUE(door.count(include)) << entry.path() << " includes " << include;
            }
            EXPECT_FALSE(engineRooms.count(from)) << entry.path() << " includes " << include;
        }
    }
}

}  // namespace
