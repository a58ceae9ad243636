#include <sstream>

#include "fuzz/FuzzInput.h"
#include "fuzz/Scratch.h"
#include "player/lingo/Runtime.h"
#include "player/lingo/Session.h"

/// Programs that parse, written from the bytes: every kind of statement and expression, with every function
/// and property there is. They end by themselves or with an error of one line, leave nothing behind, and
/// write no file outside their folder.
namespace krl::fuzz {

namespace {

using player::Builtin;
using player::PropertyEntry;

std::vector<std::string> functionNames() {
    std::vector<std::string> names;
    for (const auto& family : player::builtinFamilies())
        for (const Builtin& entry : family) names.emplace_back(entry.name);
    return names;
}

std::vector<std::string> propertyNames(bool ofSystem) {
    std::vector<std::string> names;
    for (const auto& family : player::propertyFamilies())
        for (const PropertyEntry& entry : family) {
            const bool single = std::string(entry.name).find(' ') == std::string::npos;
            if ((entry.kind == player::Kind::Void) == ofSystem && single) names.emplace_back(entry.name);
        }
    return names;
}

class Program {
public:
    Program(const uint8_t* data, size_t size) : bytes_(data, size) {}

    std::string text() {
        out_ = "property pOne, pTwo\nglobal gOne, gTwo\n";
        for (const char* name : kHandlers) {
            out_ += std::string("on ") + name + " a, b\n";
            block(0);
            out_ += "end\n";
        }
        return std::move(out_);
    }

private:
    static constexpr const char* kHandlers[] = {"main", "second", "third"};
    static constexpr const char* kVariables[] = {"a", "b", "c", "i", "s", "pOne", "pTwo", "gOne", "gTwo"};
    static constexpr const char* kChunks[] = {"char", "word", "item", "line"};
    static constexpr const char* kOperators[] = {"+", "-", "*",  "/",  "mod", "&",        "&&",     "=", "<>",
                                                 "<", ">", "<=", ">=", "and", "contains", "starts", "or"};
    static constexpr int kDeepest = 4;

    template <size_t Count>
    const char* oneOf(const char* const (&names)[Count]) {
        return names[bytes_.below(Count)];
    }
    const std::string& oneOf(const std::vector<std::string>& names) {
        return names[bytes_.below(static_cast<uint32_t>(names.size()))];
    }

    void block(int depth) {
        for (uint32_t left = 1 + bytes_.below(4); left > 0; --left) statement(depth);
    }

    void statement(int depth) {
        const auto nested = [&](const std::string& head, const char* end) {
            out_ += head + '\n';
            block(depth + 1);
            out_ += std::string(end) + '\n';
        };
        switch (bytes_.below(depth < kDeepest && !bytes_.empty() ? 17 : 9)) {
            case 0:
            case 1:
                out_ += target() + " = " + value() + '\n';
                return;
            case 2:
                out_ += "put " + value() + '\n';
                return;
            case 3:
                out_ += "put " + value() + (bytes_.oneIn(2) ? " after " : " into ") + target() + '\n';
                return;
            case 4:
                out_ += call() + '\n';
                return;
            case 5:
                out_ += "delete " + chunk() + '\n';
                return;
            case 6:
                out_ += "set the " + oneOf(systemProperties()) + " to " + value() + '\n';
                return;
            case 7:
                out_ += bytes_.oneIn(2) ? "next repeat\n" : "exit repeat\n";
                return;
            case 8:
                out_ += bytes_.oneIn(3) ? "exit\n" : "return " + value() + '\n';
                return;
            case 9:
            case 10:
                return nested("if " + value() + " then", bytes_.oneIn(2) ? "else\nput a\nend if" : "end if");
            case 11:
                return nested("repeat while " + value(), "end repeat");
            case 12:
            case 13:
                return nested("repeat with " + std::string(oneOf(kVariables)) + " = " + value() +
                                  (bytes_.oneIn(3) ? " down to " : " to ") + value(),
                              "end repeat");
            case 14:
                return nested("repeat with " + std::string(oneOf(kVariables)) + " in " + value(),
                              "end repeat");
            case 15:
                return nested("case " + value() + " of\n" + value() + ", " + value() + ":", "end case");
            default:
                out_ += "do " + quoted("put " + value()) + '\n';
        }
    }

    std::string target() {
        switch (bytes_.below(6)) {
            case 0:
                return std::string(oneOf(kVariables)) + '[' + value() + ']';
            case 1:
                return std::string(oneOf(kVariables)) + '.' + oneOf(objectProperties());
            case 2:
                return chunk();
            default:
                return oneOf(kVariables);
        }
    }

    std::string chunk() {
        std::string made = std::string(oneOf(kChunks)) + " (" + value() + ')';
        if (bytes_.oneIn(2)) made += " to (" + value() + ')';
        return made + " of " + oneOf(kVariables);
    }

    std::string call() {
        const bool own = bytes_.oneIn(4);
        std::string made = (own ? std::string(oneOf(kHandlers)) : oneOf(functions())) + '(';
        for (uint32_t left = bytes_.below(4); left > 0; --left) made += value() + (left > 1 ? ", " : "");
        return made + ')';
    }

    std::string value() {
        if (++values_ > kDeepest || bytes_.empty()) {
            --values_;
            return plain();
        }
        std::string made;
        switch (bytes_.below(12)) {
            case 0:
            case 1:
            case 2:
                made = '(' + value() + ' ' + oneOf(kOperators) + ' ' + value() + ')';
                break;
            case 3:
                made = call();
                break;
            case 4:
                made = '[' + value() + ", " + value() + ']';
                break;
            case 5:
                made = "[#k: " + value() + ", " + plain() + ": " + value() + ']';
                break;
            case 6:
                made = '(' + chunk() + ')';
                break;
            case 7:
                made = std::string(oneOf(kVariables)) + '[' + value() + ']';
                break;
            case 8:
                made = std::string(oneOf(kVariables)) + '.' + oneOf(objectProperties());
                break;
            case 9:
                made = bytes_.oneIn(2) ? "(- " + value() + ')' : "(not " + value() + ')';
                break;
            case 10:
                made = "(the " + oneOf(systemProperties()) + ')';
                break;
            default:
                made = plain();
        }
        --values_;
        return made;
    }

    std::string plain() {
        static constexpr const char* kPlain[] = {"0",
                                                 "1",
                                                 "2",
                                                 "3",
                                                 "-1",
                                                 "7",
                                                 "2147483647",
                                                 "10",
                                                 "2.5",
                                                 "VOID",
                                                 "#k",
                                                 "[]",
                                                 "[:]",
                                                 "\"\"",
                                                 "s",
                                                 "1e20",
                                                 "\"b c\"",
                                                 "\"a,b,c d\"",
                                                 "\"../x.pam\"",
                                                 "image(3, 2, 32)"};
        return bytes_.oneIn(3) ? kPlain[bytes_.below(std::size(kPlain))] : oneOf(kVariables);
    }

    static std::string quoted(const std::string& text) {
        std::string made = "\"";
        for (const char letter : text)
            if (letter == '"')
                made += "\" & QUOTE & \"";
            else
                made += letter;
        return made + '"';
    }

    static const std::vector<std::string>& functions() {
        static const std::vector<std::string> names = functionNames();
        return names;
    }
    static const std::vector<std::string>& objectProperties() {
        static const std::vector<std::string> names = propertyNames(false);
        return names;
    }
    static const std::vector<std::string>& systemProperties() {
        static const std::vector<std::string> names = propertyNames(true);
        return names;
    }

    Bytes bytes_;
    std::string out_;
    int values_ = 0;
};

}  // namespace

void runProgram(const std::string& text) {
    // The scripts may write into this folder, and into nothing else.
    static const std::filesystem::path folder = scratchFolder() / "scripts";
    std::filesystem::create_directories(folder);
    std::ostringstream out;
    player::SessionOptions options;
    options.output = options.alerts = &out;
    options.outputFolder = folder;
    options.memoryLimit = uint64_t{8} << 20;
    options.recursionLimit = 30;
    options.stepLimit = 1000;
    player::Session session(options);
    try {
        session.define("program", text);
    } catch (const player::ScriptError& error) {
        report(std::string("a program that does not parse: ") + error.what() + '\n' + error.excerpt());
    }
    try {
        session.evaluate("main(5, \"one two\")");
    } catch (const player::ScriptError& error) {
        if (error.message().empty()) report("an error without a message");
        if (std::string(error.what()).find('\n') != std::string::npos) report("not one line");
    }
    if (const player::LeakReport left = session.close(); !left.none()) report("left: " + left.text());
    if (std::filesystem::exists(scratchFolder() / "x.pam")) report("wrote a file outside its folder");
}

}  // namespace krl::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string program = krl::fuzz::Program(data, size).text();
    if (std::getenv("KRL_FUZZ_SHOW")) std::fputs(program.c_str(), stderr);
    krl::fuzz::runProgram(program);
    return 0;
}
