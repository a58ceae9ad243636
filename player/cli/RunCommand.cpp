#include "player/cli/Commands.h"

namespace krl::player {

int runScript(const RunOptions& options, const Terminal& terminal) {
    SessionOptions settings = options.session;
    settings.output = &terminal.out;
    settings.alerts = &terminal.err;
    Session session(settings);
    session.run(options.script, options.arguments);
    return 0;
}

}  // namespace krl::player
