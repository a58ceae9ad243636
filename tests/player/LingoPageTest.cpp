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
        all.begin(), all.end(), [](unsigned char letter) { return !std::isalnum(letter); }, ' ');
    std::istringstream words(all);
    std::set<std::string> found;
    for (std::string word; words >> word;) found.insert(word);
    return found;
}

TEST(LingoPage, NamesEveryFunctionAndProperty) {
    const std::set<std::string> documented = wordsOf(KRL_SOURCE_DIR "/docs/lingo.md");
    for (const auto& family :
         {mathBuiltins(), textBuiltins(), listBuiltins(), shapeBuiltins(), imageBuiltins(), drawBuiltins(),
          systemBuiltins()})
        for (const Builtin& entry : family) EXPECT_EQ(documented.count(entry.name), 1u) << entry.name;
    for (const auto& family : {objectProperties(), systemProperties()})
        for (const PropertyEntry& entry : family) EXPECT_EQ(documented.count(entry.name), 1u) << entry.name;
}

}  // namespace
}  // namespace krl::player
