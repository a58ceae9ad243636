#include "player/cli/Commands.h"
#include "player/cli/TextFile.h"

namespace krl::player {

int runScript(const RunOptions& options, const Terminal& terminal) {
    SessionOptions settings = options.session;
    settings.output = &terminal.out;
    settings.alerts = &terminal.err;
    // Before the work, not after it: a folder that cannot be made would lose all of it.
    if (!settings.outputFolder.empty()) makeFolder(settings.outputFolder);
    Session session(settings);
    session.run(options.script, options.arguments);
    return 0;
}

}  // namespace krl::player
