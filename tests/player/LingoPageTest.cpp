#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <set>
#include <sstream>

#include "player/lingo/Runtime.h"

/// The page about the language is complete.
namespace krl::player {
namespace {

std::set<std::string> wordsOf(const char* file) {
    std::ostringstream text;
    text << std::ifstream(file, std::ios::binary).rdbuf();
    std::string all = text.str();
    std::replace_if(
        all.begin(), all.end(), [](unsigned char letter) { return !std::isalnum(letter) && letter != '_'; },
        ' ');
    std::istringstream words(all);
    std::set<std::string> found;
    for (std::string word; words >> word;) found.insert(word);
    return found;
}

TEST(LingoPage, NamesEveryFunctionAndProperty) {
    const std::set<std::string> documented = wordsOf(KRL_SOURCE_DIR "/docs/lingo.md");
    const auto named = [&](const std::string& name) {
        return documented.count(name.substr(name.rfind(' ') + 1)) == 1;
    };
    for (const auto& family : builtinFamilies())
        for (const Builtin& entry : family) EXPECT_TRUE(named(entry.name)) << entry.name;
    for (const auto& family : propertyFamilies())
        for (const PropertyEntry& entry : family) EXPECT_TRUE(named(entry.name)) << entry.name;
}

}  // namespace
}  // namespace krl::player
