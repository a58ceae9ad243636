#include <algorithm>
#include <filesystem>
#include <ostream>
#include <sstream>

#include "player/cli/Commands.h"
#include "player/cli/ExamplePictures.h"
#include "player/cli/FittedText.h"
#include "player/cli/MethodFacts.h"
#include "player/cli/MethodHelp.h"
#include "player/cli/TextFile.h"
#include "player/host/SymbolTable.h"

/// The commands that describe methods without running them.
namespace krl::player {

int listMethods(const ListOptions& options, const Terminal& terminal) {
    const std::string text = options.json ? listJson(options.word) : listText(options.word);
    if (text.empty()) throw CommandError("no method matches " + options.word);
    terminal.out << (options.json ? text : fittedText(text, terminal.size.columns));
    return 0;
}

namespace {

/// How well a method fits a word in lower case: by its name best, then by what it is said to be for, then by
/// the meanings of its arguments.
int fitOf(const Method& method, const std::string& word) {
    const auto holds = [&](const std::string& text) { return folded(text).find(word) != std::string::npos; };
    if (holds(method.shortName())) return 4;
    if (holds(method.searchWords()) || holds(method.summaryText())) return 3;
    if (holds(method.heading())) return 2;
    for (const Argument& argument : method.arguments())
        if (holds(argument.name) || holds(argument.meaning)) return 1;
    return 0;
}

/// The words in lower case, one at a time, without an `s` at the end that one text has and another has not.
std::vector<std::string> wordsOf(const std::vector<std::string>& texts) {
    std::vector<std::string> words;
    for (const std::string& text : texts) {
        std::istringstream parts(folded(text));
        for (std::string word; parts >> word;) {
            if (word.size() > 3 && word.back() == 's') word.pop_back();
            words.push_back(word);
        }
    }
    return words;
}

}  // namespace

int findMethods(const FindOptions& options, const Terminal& terminal) {
    struct Fit {
        const Method* method;
        size_t words;
        int score;
    };
    std::vector<Fit> fits;
    size_t width = 0, most = 0;
    for (const Method* method : catalogue().methods()) {
        Fit fit{method, 0, 0};
        for (const std::string& word : wordsOf(options.words)) {
            const int score = fitOf(*method, word);
            fit.words += score > 0 ? 1 : 0;
            fit.score += score;
        }
        if (fit.words > 0) fits.push_back(fit);
        most = std::max(most, fit.words);
    }
    // Only those that fit the most words.
    std::erase_if(fits, [&](const Fit& fit) { return fit.words < most; });
    if (fits.empty()) throw CommandError("no method fits; krlimage list shows them all");
    std::stable_sort(fits.begin(), fits.end(), [](const Fit& a, const Fit& b) { return a.score > b.score; });
    for (const Fit& fit : fits) width = std::max(width, fit.method->shortName().size());
    for (const Fit& fit : fits) {
        const std::string name = fit.method->shortName();
        terminal.out << name << std::string(width - name.size() + 2, ' ') << fit.method->summaryText()
                     << '\n';
    }
    return 0;
}

int helpOnMethod(const HelpOptions& options, const Terminal& terminal) {
    const Method* method = catalogue().find(options.method);
    const Family* family = method || options.json ? nullptr : familyCalled(options.method);
    if (!method && !family) method = &requireMethod(options.method);
    if (options.json)
        terminal.out << helpJson(*method);
    else
        terminal.out << fittedText(family ? helpText(*family) : helpText(*method), terminal.size.columns);
    return 0;
}

int writeDocs(const DocsOptions& options, const Terminal& terminal) {
    const std::filesystem::path page = options.folder / "methods.md";
    writeText(page, referencePage());
    if (isPictureName("x.jpg")) writeExamplePictures(options.folder);
    terminal.out << page.string() << '\n';
    return 0;
}

}  // namespace krl::player
