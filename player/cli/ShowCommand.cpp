#include <cstdlib>
#include <ostream>

#include "player/cli/ApplyPicture.h"
#include "player/cli/PlainOutput.h"
#include "player/cli/TerminalPicture.h"
#include "player/pictures/Picture.h"

namespace krl::player {

namespace {

/// Of a terminal whose size is unknown, and of a file.
constexpr int kUsualColumns = 80, kUsualRows = 24;
/// For the command line above and the prompt below.
constexpr int kOtherRows = 2;

bool wantsNoColour() {
    const char* value = std::getenv("NO_COLOR");
    return value && *value;
}

/// The space for the picture. Throws `UsageError` where nobody would see it.
TerminalSize spaceFor(const ShowOptions& options, const Terminal& terminal) {
    TerminalSize space = terminal.size;
    if (space.columns == 0 && options.as.empty())
        throw UsageError(
            "standard output is not a terminal: use krlimage apply to write a picture, or --as to "
            "print it anyway");
    if (space.columns == 0) space = {kUsualColumns, kUsualRows};
    space.rows = std::max(1, space.rows - kOtherRows);
    if (options.columns > 0) {
        space.columns = options.columns;
        space.rows = 1 << 20;
    }
    return space;
}

std::string textOf(const Bitmap& picture, const std::string& as, const TerminalSize& space) {
    const TerminalSize cells = cellsFor(picture.width, picture.height, space);
    if (as == "shades" || (as.empty() && wantsNoColour())) return shades(picture, cells);
    PixelProtocol protocol = as.empty() ? pixelProtocol() : PixelProtocol::None;
    if (as == "kitty") protocol = PixelProtocol::Kitty;
    if (as == "sixel") protocol = PixelProtocol::Sixel;
    if (protocol == PixelProtocol::None) return halfBlocks(picture, cells);
    if (!hasPixelProtocols()) throw CommandError("this build has no library for " + as + ": use --as blocks");
    return pixels(picture, protocol, cells);
}

}  // namespace

int showPicture(const ShowOptions& options, const Terminal& terminal) {
    const TerminalSize space = spaceFor(options, terminal);
    SessionOptions settings = options.session;
    settings.allowedFolders.push_back(std::filesystem::current_path().root_path());
    std::vector<ChainCall> chain(options.calls.begin(), options.calls.end());
    Session session(settings);
    for (ChainCall& call : chain) call.evaluate(session);
    const Bitmap picture = changedBy(makeRunner({}, settings), chain, readPicture(options.picture));
    unfiltered(terminal.out) << textOf(picture, options.as, space) << std::flush;
    return 0;
}

}  // namespace krl::player
