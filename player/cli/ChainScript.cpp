#include "player/cli/ChainScript.h"

#include "player/cli/MethodFacts.h"

namespace krl::player {

std::string callLines(const Method& method, const std::string& lingo, const std::string& indent) {
    const std::string text = "xtraImage." + lingo;
    if (!method.makesPicture()) return indent + (method.isSilent() ? "" : "put ") + text + '\n';
    // A new picture replaces the loaded one.
    const char* key = method.pictureKey();
    return indent + "answer = " + text + '\n' +  //
           indent + "xtraImage.krlImageQuit()\n" + indent + "picture = answer" +
           (key ? "." + std::string(key) : "[1]") + '\n' + indent + "xtraImage.krlImageLoad(picture)\n";
}

std::string chainScript(const std::vector<ChainCall>& chain, int32_t width, int32_t height) {
    std::string script =
        "-- krlimage run THIS.ls IN OUT\n"
        "on main names\n"
        "  picture = image(names[1])\n"
        "  xtraImage = new(xtra \"KRLImageXtra\")\n"
        "  xtraImage.krlImageCreateLookupTables(#mt)\n"
        "  xtraImage.krlImageLoad(picture)\n";
    for (const ChainCall& call : chain) script += callLines(call.method(), call.lingo(width, height), "  ");
    return script +
           "  xtraImage.krlImageQuit()\n"
           "  xtraImage.krlImageDestroyLookupTables()\n"
           "  picture.save(names[2])\n"
           "end\n";
}

}  // namespace krl::player
