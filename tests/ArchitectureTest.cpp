#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <vector>

/// Which source folder may include which. The rooms are the folders as they are found; only the order of
/// the storeys is written down.
namespace {

namespace fs = std::filesystem;

/// The storeys, lowest first: the public headers of `include`, then the folders of `src`. An include runs
/// from a storey to itself or downward.
const std::vector<std::string> kStoreys = {"krlimage", "core", "kernels", "catalogue",
                                           "effects",  "look", "host",    "c"};

/// Those that reach effects by their names alone.
const std::set<std::string> kCallers = {"look", "host", "c"};

/// Doors stand side by side: neither may include the other.
const std::set<std::string> kDoors = {"host", "c"};

struct Include {
    fs::path file;     ///< the including file, below `src`
    std::string path;  ///< as written between the quotes
};

std::vector<fs::path> sourcesBelow(const fs::path& folder) {
    std::vector<fs::path> found;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        const fs::path extension = entry.path().extension();
        if (extension == ".h" || extension == ".cpp") found.push_back(entry.path());
    }
    return found;
}

std::vector<Include> includesBelow(const fs::path& folder) {
    std::vector<Include> includes;
    for (const fs::path& file : sourcesBelow(folder)) {
        std::ifstream in(file);
        for (std::string line; std::getline(in, line);) {
            const std::string start = "#include \"";
            if (line.rfind(start, 0) == 0)
                includes.push_back(
                    {fs::relative(file, folder), line.substr(start.size(), line.rfind('"') - start.size())});
        }
    }
    return includes;
}

/// `kernels/blur` of `kernels/blur/TentBlur.h`, `core` of `core/Bands.h`.
std::string roomOf(const fs::path& file) { return file.parent_path().generic_string(); }

std::string storeyOf(const std::string& path) { return path.substr(0, path.find('/')); }

size_t levelOf(const std::string& storey) {
    return static_cast<size_t>(std::find(kStoreys.begin(), kStoreys.end(), storey) - kStoreys.begin());
}

/// What is wrong with an include, or nothing.
std::string faultOf(const Include& include) {
    const std::string from = storeyOf(include.file.generic_string()), to = storeyOf(include.path);
    if (to == "krlimage.h") return from == "c" ? "" : "is the C interface's own";
    if (levelOf(to) == kStoreys.size()) return "is of no storey";
    if (levelOf(to) > levelOf(from)) return "points upward";
    if (kDoors.count(to) && to != from) return "joins two doors";
    if (kCallers.count(from) && to == "effects") return "passes by the catalogue";
    if (from == "effects" && to == "effects" && roomOf(include.file) != roomOf(include.path))
        return "joins two families";
    return "";
}

const fs::path kSource = KRL_SOURCE_DIR;

TEST(Architecture, EveryFolderOfTheLibraryIsAStorey) {
    for (const auto& entry : fs::directory_iterator(kSource / "src"))
        if (entry.is_directory()) {
            EXPECT_LT(levelOf(entry.path().filename().string()), kStoreys.size()) << entry.path();
        }
}

TEST(Architecture, IncludesRunDownwardOnly) {
    const std::vector<Include> includes = includesBelow(kSource / "src");
    EXPECT_GT(includes.size(), 400u);
    for (const Include& include : includes)
        EXPECT_EQ(faultOf(include), "") << include.file << " includes " << include.path;
}

TEST(Architecture, AnUpwardOrSidewardIncludeIsAFault) {
    EXPECT_EQ(faultOf({"core/Bands.h", "kernels/blur/TentBlur.h"}), "points upward");
    EXPECT_EQ(faultOf({"effects/blur/Diffuse.cpp", "effects/tone/Tone.h"}), "joins two families");
    EXPECT_EQ(faultOf({"c/krlimage.cpp", "host/HostTypes.h"}), "joins two doors");
    EXPECT_EQ(faultOf({"look/Look.cpp", "effects/tone/Tone.h"}), "passes by the catalogue");
    EXPECT_EQ(faultOf({"effects/tone/Levels.cpp", "look/Look.h"}), "points upward");
    EXPECT_EQ(faultOf({"c/Calls.cpp", "krlimage.h"}), "");
    EXPECT_EQ(faultOf({"host/HostCall.h", "krlimage.h"}), "is the C interface's own");
    EXPECT_EQ(faultOf({"effects/blur/Diffuse.cpp", "player/cli/Complaints.h"}), "is of no storey");
    EXPECT_EQ(faultOf({"effects/blur/Diffuse.cpp", "effects/blur/Blur.h"}), "");
}

/// Rooms of kernels may build on each other, but not in a circle.
TEST(Architecture, KernelsFormNoCircle) {
    std::map<std::string, std::set<std::string>> arrows;
    for (const Include& include : includesBelow(kSource / "src"))
        if (storeyOf(include.file.generic_string()) == "kernels" && storeyOf(include.path) == "kernels" &&
            roomOf(include.file) != roomOf(include.path))
            arrows[roomOf(include.file)].insert(roomOf(include.path));
    std::set<std::string> done, open;
    const std::function<void(const std::string&)> visit = [&](const std::string& room) {
        if (done.count(room)) return;
        EXPECT_TRUE(open.insert(room).second) << room << " is part of a circle";
        if (testing::Test::HasFailure()) return;
        for (const std::string& next : arrows[room]) visit(next);
        done.insert(room);
    };
    const auto rooms = arrows;
    for (const auto& [room, to] : rooms) visit(room);
}

/// What the C library or the width of `long double` would decide comes from core/ExactFunctions.
bool mayRoundDifferently(const std::string& line) {
    static const std::regex pattern(
        R"(\bstd::(sin|cos|tan|asin|acos|atan2?|exp2?|expm1|log|log2|log10|log1p|pow|cbrt|hypot|sinh|cosh|tanh)f?\(|\blong double\b)");
    const bool isCandidate =
        line.find("std::") != std::string::npos || line.find("long ") != std::string::npos;
    return isCandidate && std::regex_search(line, pattern);
}

TEST(Architecture, TheEngineLeavesNoRoundingToTheMachine) {
    EXPECT_TRUE(mayRoundDifferently("x = std::pow(a, b);"));
    EXPECT_FALSE(mayRoundDifferently("x = std::sqrt(exactPower(a, b));"));
    const std::set<std::string> exact = {"DoubleDouble.cpp", "ExactFunctions.cpp", "ExactFunctions.h"};
    for (const fs::path& file : sourcesBelow(kSource / "src")) {
        if (exact.count(file.filename().string())) continue;
        std::ifstream in(file);
        for (std::string line; std::getline(in, line);)
            EXPECT_FALSE(mayRoundDifferently(line)) << file << ": " << line;
    }
}

/// The player meets the plug-in at its door and effects through the catalogue, nothing else.
TEST(Architecture, ThePlayerKnowsTheDoorAndTheCatalogueAlone) {
    const std::set<std::string> door = {
        "host/Door.h",           "host/HostInterfaces.h", "host/HostTypes.h",
        "host/HostSlots.h",      "host/Identifiers.h",    "catalogue/Method.h",
        "host/MethodRegistry.h", "host/MessageTable.h",   "catalogue/ExampleCall.h"};
    for (const Include& include : includesBelow(kSource / "player")) {
        if (!fs::exists(kSource / "src" / include.path)) continue;
        const std::string to = storeyOf(include.path);
        if (to == "host") {
            EXPECT_TRUE(door.count(include.path)) << include.file << " includes " << include.path;
        }
        EXPECT_FALSE(to == "kernels" || to == "effects") << include.file << " includes " << include.path;
    }
}

}  // namespace
