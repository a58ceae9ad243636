#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "player/lingo/Session.h"
#include "player/pictures/Picture.h"
#include "support/ScratchFolder.h"

namespace krl::player {
namespace {

namespace fs = std::filesystem;

const fs::path kScripts = fs::path(KRL_SOURCE_DIR) / "tests" / "scripts";

/// The scripts with expected output; the others are their parent scripts.
std::vector<std::string> scriptNames() {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(kScripts))
        if (entry.path().extension() == ".expected") names.push_back(entry.path().stem().string());
    std::sort(names.begin(), names.end());
    return names;
}

std::string textOf(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

/// The FNV-1a hash of a picture's size and bytes.
std::string hashOf(const Bitmap& picture) {
    uint64_t hash = 14695981039346656037u;
    const auto add = [&](uint64_t byte) { hash = (hash ^ byte) * 1099511628211u; };
    for (const int32_t side : {picture.width, picture.height})
        for (int shift = 0; shift < 32; shift += 8) add(static_cast<uint32_t>(side) >> shift & 0xFFu);
    for (const Pixel& pixel : picture.pixels)
        for (size_t channel = 0; channel < 4; ++channel) add(pixel[channel]);
    char text[32];
    std::snprintf(text, sizeof(text), "%016llx", static_cast<unsigned long long>(hash));
    return text;
}

/// The output of a run, with its error, saved pictures and unreleased objects.
std::string transcriptOf(const std::string& name, const fs::path& outputFolder) {
    std::ostringstream output;
    SessionOptions options;
    options.output = &output;
    options.alerts = &output;
    options.outputFolder = outputFolder;
    // The same suite tests a plug-in file if the environment names one.
    if (const char* xtra = std::getenv("KRL_XTRA")) options.xtraFile = xtra;
    options.frames = 3;
    Session session(options);
    try {
        session.run(kScripts / (name + ".ls"), {"first", "second"});
    } catch (const ScriptError& error) {
        output << "error: " << fs::path(error.file()).filename().string() << ':' << error.place().line << ':'
               << error.place().column << ": " << error.message() << '\n'
               << error.excerpt() << '\n';
    }
    std::vector<fs::path> saved;
    for (const auto& entry : fs::directory_iterator(outputFolder)) saved.push_back(entry.path());
    std::sort(saved.begin(), saved.end());
    for (const fs::path& file : saved)
        output << "saved " << file.filename().string() << ": " << hashOf(readPicture(file)) << '\n';
    const LeakReport left = session.close();
    if (!left.none()) output << "left behind: " << left.text() << '\n';
    return output.str();
}

class ScriptSuite : public testing::TestWithParam<std::string> {};

TEST_P(ScriptSuite, PrintsTheExpectedOutput) {
    const test::ScratchFolder output;
    EXPECT_EQ(transcriptOf(GetParam(), output.path()), textOf(kScripts / (GetParam() + ".expected")));
}

INSTANTIATE_TEST_SUITE_P(Scripts, ScriptSuite, testing::ValuesIn(scriptNames()),
                         [](const auto& name) { return name.param; });

TEST(ScriptSuiteFolder, Exists) { EXPECT_GE(scriptNames().size(), 10u); }

}  // namespace
}  // namespace krl::player
