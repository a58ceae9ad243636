#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "core/Random.h"
#include "player/cli/CommandLine.h"
#include "player/pictures/Picture.h"
#include "support/ScratchFolder.h"

namespace krl::player {

/// The outcome of a command line.
struct CliResult {
    int code = 0;
    std::string out, err;
};

/// Keeps the settings and looks of whoever runs the tests out of them.
inline void hideUserFolder() { setenv("XDG_CONFIG_HOME", "/nonexistent", 1); }
inline const bool isUserFolderHidden = (hideUserFolder(), true);

inline CliResult krlimage(const std::vector<std::string>& words, bool live = false) {
    std::ostringstream out, err;
    const int code = runCommandLine(words, Terminal{out, err, live});
    return {code, out.str(), err.str()};
}

/// A temporary folder with the files of a test, removed at the end.
class CliTest : public testing::Test {
    const test::ScratchFolder scratch_;

protected:
    std::string at(const std::string& name) const { return (folder / name).string(); }

    /// A picture of noise with varying alpha.
    static Bitmap noise(int32_t width, int32_t height, uint32_t seed = 5) {
        Bitmap picture{width, height, std::vector<Pixel>(size_t(width) * size_t(height)), nullptr};
        Random random(seed);
        for (Pixel& p : picture.pixels)
            p = {uint8_t(random.next()), uint8_t(random.next()), uint8_t(random.next()),
                 uint8_t(random.next())};
        return picture;
    }

    std::string picture(const std::string& name, int32_t width = 8, int32_t height = 6) const {
        writePicture(folder / name, noise(width, height));
        return at(name);
    }

    std::string text(const std::string& name, const std::string& content) const {
        std::ofstream(folder / name, std::ios::binary) << content;
        return at(name);
    }

    static std::string contentOf(const std::filesystem::path& path) {
        std::ostringstream content;
        content << std::ifstream(path, std::ios::binary).rdbuf();
        return content.str();
    }

    size_t files() const {
        size_t count = 0;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
            count += entry.is_regular_file() ? 1 : 0;
        return count;
    }

    const std::filesystem::path& folder = scratch_.path();
};

inline size_t countOf(const std::string& text, const std::string& part) {
    size_t count = 0;
    for (size_t found = text.find(part); found != std::string::npos; found = text.find(part, found + 1))
        ++count;
    return count;
}

inline std::vector<nlohmann::json> jsonLines(const std::string& text) {
    std::vector<nlohmann::json> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) lines.push_back(nlohmann::json::parse(line));
    return lines;
}

#define EXPECT_TELLS(text, part) EXPECT_NE((text).find(part), std::string::npos) << (text)

}  // namespace krl::player
