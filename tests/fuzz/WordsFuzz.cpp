#include <algorithm>
#include <cctype>
#include <sstream>
#include <string_view>

#include "fuzz/FuzzInput.h"
#include "fuzz/Scratch.h"
#include "player/cli/CommandLine.h"
#include "player/pictures/Picture.h"

/// Any words after the program's name: a success without a word on standard error or a failure with one.
/// Words are the lines of the input; they reach no file outside a folder of this process.
namespace krl::fuzz {

namespace {

void limitDigits(std::string& word) {
    size_t digits = 0;
    std::erase_if(word, [&](char letter) {
        digits = std::isdigit(static_cast<unsigned char>(letter)) ? digits + 1 : 0;
        return digits > 3;  // or a call, or a number of jobs, could take all day
    });
}

std::vector<std::string> wordsOf(const std::string& text) {
    std::vector<std::string> words;
    std::istringstream lines(text);
    for (std::string word; std::getline(lines, word);) {
        std::replace(word.begin(), word.end(), '/', '_');
        std::erase(word, '\0');
        limitDigits(word);
        // One ends the program, the other runs code from a file.
        if (word.starts_with("--t") || word.starts_with("--x")) continue;
        if (word.find("..") == std::string::npos) words.push_back(word);
    }
    return words;
}

void enterScratch() {
    static const bool entered = [] {
        std::filesystem::current_path(scratchFolder());
        player::Bitmap picture;
        picture.width = 5;
        picture.height = 3;
        picture.pixels.assign(15, Pixel{40, 80, 120, 200});
        player::writePicture("a.pam", picture);
        return true;
    }();
    static_cast<void>(entered);
}

/// "docs" draws ninety pictures, which takes as long as thousands of other runs: one in a thousand does.
bool isLeftOut(const std::vector<std::string>& words) {
    static unsigned met = 0;
    return !words.empty() && words.front() == "docs" && met++ % 1000 != 0;
}

}  // namespace

int runWords(const uint8_t* data, size_t size) {
    enterScratch();
    const std::vector<std::string> words = wordsOf(std::string(reinterpret_cast<const char*>(data), size));
    if (isLeftOut(words)) return 0;
    std::ostringstream out, err;
    const player::Terminal terminal{out, err, false};
    const int code = player::runCommandLine(words, terminal);
    if (code < 0 || code > 2) report("exit code " + std::to_string(code));
    if (code != 0 && err.str().empty() && out.str().find("\"ok\": false") == std::string::npos)
        report("a failure without a word");
    return 0;
}

}  // namespace krl::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    return krl::fuzz::runWords(data, size);
}
