#include "player/cli/ChainScript.h"

#include "player/cli/MethodFacts.h"

namespace krl::player {

namespace {

/// The lines of one call. A new picture that it makes replaces the loaded one.
std::string linesFor(const ChainCall& call, int32_t width, int32_t height) {
    const std::string text = "xtraImage." + call.lingo(width, height);
    if (call.method().makesPicture()) {
        const char* key = call.method().pictureKey();
        return "  answer = " + text +
               "\n"
               "  xtraImage.krlImageQuit()\n"
               "  picture = answer" +
               (key ? "." + std::string(key) : "[1]") +
               "\n"
               "  xtraImage.krlImageLoad(picture)\n";
    }
    return call.method().isSilent() ? "  " + text + '\n' : "  put " + text + '\n';
}

}  // namespace

std::string chainScript(const std::vector<ChainCall>& chain, int32_t width, int32_t height) {
    std::string script =
        "-- krlimage run THIS.ls IN OUT\n"
        "on main names\n"
        "  picture = image(names[1])\n"
        "  xtraImage = new(xtra \"KRLImageXtra\")\n"
        "  xtraImage.krlImageCreateLookupTables(#mt)\n"
        "  xtraImage.krlImageLoad(picture)\n";
    for (const ChainCall& call : chain) script += linesFor(call, width, height);
    return script +
           "  xtraImage.krlImageQuit()\n"
           "  xtraImage.krlImageDestroyLookupTables()\n"
           "  picture.save(names[2])\n"
           "end\n";
}

}  // namespace krl::player
