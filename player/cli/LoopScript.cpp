#include "player/cli/LoopScript.h"

#include "catalogue/Notation.h"
#include "player/cli/ChainScript.h"

namespace krl::player {

std::string loopScript(const std::vector<MovingCall>& calls, const std::vector<ChainCall>& first,
                       const Sequence& input, const Sequence& output, const FrameFacts& facts) {
    const std::vector<int64_t> numbers = input.numbers();
    const std::string start = std::to_string(numbers.front());
    std::string script =
        "-- krlimage run THIS.ls --allow . when this is in the folder where apply was called\n"
        "on main\n"
        "  xtraImage = new(xtra \"KRLImageXtra\")\n"
        "  xtraImage.krlImageCreateLookupTables(#mt)\n"
        "  repeat with number = " +
        start + " to " + std::to_string(numbers.back()) +
        "\n"
        "    picture = image(" +
        input.expression() +
        ")\n"
        "    krlAtFrame(number - " +
        start + ", " + std::to_string(numbers.size()) + ", " + realNotation(facts.fps) +
        ", picture.width, picture.height)\n"
        "    xtraImage.krlImageLoad(picture)\n";
    for (size_t i = 0; i < calls.size(); ++i)
        script += callLines(first[i].method(), calls[i].lingo(first[i], facts.width, facts.height), "    ");
    return script +
           "    xtraImage.krlImageQuit()\n"
           "    picture.save(" +
           output.expression() +
           ")\n"
           "  end repeat\n"
           "  xtraImage.krlImageDestroyLookupTables()\n"
           "end\n\n" +
           frameHandlers();
}

}  // namespace krl::player
