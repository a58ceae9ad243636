#include "player/cli/Commands.h"
#include "player/cli/TextFile.h"
#include "player/cli/TimeLimit.h"
#include "player/pictures/Picture.h"

namespace krl::player {

int runScript(const RunOptions& options, const Terminal& terminal) {
    const TimeLimit limit(options.timeout, terminal.live);
    SessionOptions settings = options.session;
    settings.output = &terminal.out;
    settings.alerts = &terminal.err;
    if (options.stageless == "ignore") settings.stageless = Stageless::Ignore;
    // Create the folder first: failing after the script has run would lose its results.
    if (!settings.outputFolder.empty()) makeFolder(settings.outputFolder);
    // Files that the user names are meant for the script.
    for (const std::string& argument : options.arguments)
        if (isPictureName(argument)) settings.allowedFolders.emplace_back(argument);
    Session session(settings);
    session.run(options.script, options.arguments);
    return 0;
}

}  // namespace krl::player
