#include <filesystem>
#include <fstream>
#include <ostream>
#include <system_error>

#include "player/cli/Commands.h"
#include "player/cli/MethodFacts.h"
#include "player/cli/MethodHelp.h"
#include "player/cli/TextFile.h"

/// The commands that describe methods without running them.
namespace krl::player {

int listMethods(const ListOptions& options, const Terminal& terminal) {
    const std::string text = options.json ? listJson(options.word) : listText(options.word);
    if (text.empty()) throw CommandError("no method matches " + options.word);
    terminal.out << text;
    return 0;
}

int helpOnMethod(const HelpOptions& options, const Terminal& terminal) {
    const Method& method = requireMethod(options.method);
    terminal.out << (options.json ? helpJson(method) : helpText(method));
    return 0;
}

int writeDocs(const DocsOptions& options, const Terminal& terminal) {
    const std::filesystem::path page = options.folder / "methods.md";
    writeText(page, referencePage());
    terminal.out << page.string() << '\n';
    return 0;
}

}  // namespace krl::player
