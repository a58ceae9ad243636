#include <fstream>
#include <sstream>

#include "fuzz/FuzzInput.h"
#include "fuzz/Scratch.h"
#include "player/lingo/Session.h"

/// Any text as a script, run with little memory and few steps: it ends by itself or with an error of one
/// line, and leaves nothing behind.
namespace krl::fuzz {

int runScript(const uint8_t* data, size_t size) {
    const std::filesystem::path file = scratchFolder() / "fuzz.ls";
    std::ofstream(file, std::ios::binary)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    std::ostringstream out;
    player::SessionOptions options;
    options.output = options.alerts = &out;
    options.memoryLimit = uint64_t{16} << 20;
    options.recursionLimit = 30;
    options.stepLimit = 2000;
    player::Session session(options);
    try {
        session.run(file, {"a.pam", "out.pam"});
    } catch (const player::ScriptError& error) {
        if (error.message().empty()) report("an error without a message");
        if (std::string(error.what()).find('\n') != std::string::npos) report("not one line");
    }
    session.close();
    return 0;
}

}  // namespace krl::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    return krl::fuzz::runScript(data, size);
}
