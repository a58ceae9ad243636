#include <cstddef>
#include <cstdint>
#include <string>

#include "player/lingo/Parser.h"
#include "player/lingo/Session.h"

/// Any bytes are a script, an expression and a call, or are told where they are not.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace krl::player;
    const std::string text(reinterpret_cast<const char*>(data), size);
    const auto source = std::make_shared<Source>(Source{"fuzz.ls", text});
    SymbolTable symbols;
    const auto attempt = [&](auto&& parse) {
        try {
            parse();
        } catch (const ScriptError& error) {
            // The message and its excerpt are made of the text too.
            const bool placed = error.place().line > 0 && error.place().column > 0;
            if (!placed || error.message().empty() || error.excerpt().empty()) __builtin_trap();
        }
    };
    attempt([&] { parseScript(source, symbols); });
    attempt([&] { parseExpression(source, symbols); });
    attempt([&] { readCall(text); });
    return 0;
}
