#pragma once

#include <array>
#include <deque>
#include <map>
#include <unordered_map>

#include "player/lingo/Globals.h"
#include "player/lingo/Parser.h"
#include "player/lingo/Registers.h"
#include "player/lingo/Runtime.h"
#include "player/lingo/Session.h"

namespace krl::player {

/// A script file's text; throws `HostError`.
std::shared_ptr<const Source> scriptSource(const std::filesystem::path& file);
/// Writes Lingo text with its carriage returns converted to line feeds.
void writeLines(std::ostream& out, std::string_view text);

/// Runs scripts: compiles them when they are loaded, and carries out their instructions.
class Interpreter : public Runtime {
public:
    Interpreter(EmbeddedHost& embedded, Xtra& plugIn, const SessionOptions& options);

    /// Parses a script and stores it under its name.
    const LoadedScript& load(std::shared_ptr<const Source> source, const std::string& name);
    /// Calls a handler of a script from outside.
    Value run(const LoadedScript& script, const HandlerCode& handler, std::span<const Value> arguments);
    /// Evaluates a text with one expression.
    Value evaluateText(std::string name, std::string_view text);
    /// Sends the call in a text, such as `brightness(40, #RGB)`, to an instance of the plug-in; the
    /// prefix of the method name is optional.
    Value callOn(const Value& instance, std::string name, std::string_view text);
    /// Lets every script call the handlers of `script`.
    void setMovieScript(const LoadedScript& script);
    /// Releases everything that scripts hold.
    void close();

    Value send(SymbolId name, std::span<const Value> arguments) override;
    bool responds(const Value& object, SymbolId name) const override;
    Value sendToAncestor(SymbolId name, std::span<const Value> arguments) override;
    void runText(const std::string& text) override;
    Value valueOf(const std::string& text) override;
    Value scriptNamed(const std::string& name) override;
    Value propertyNamed(const Value& object, const Value& name) override;
    void setPropertyNamed(const Value& object, const Value& name, const Value& value) override;
    Value newInstance(const Value& script, std::span<const Value> arguments) override;
    std::span<const Value> handlerArguments() const override;
    void clearGlobals() override { globals_.clear(); }
    void showGlobals() override;
    void showLocals() override;

    /// How often each name was skipped because there is no stage.
    const std::map<std::string, int64_t>& skipped() const { return skipped_; }

private:
    friend struct Operations;
    class Execution;

    /// Counts statements that are carried out, and turns of loops. Throws when there are more than there may
    /// be.
    void countSteps(int32_t number) {
        steps_ += static_cast<uint64_t>(number);
        if (steps_ > options_.stepLimit) refuseSteps();
    }
    [[noreturn]] void refuseSteps() const;

    // Texts.
    Value asText(const Value& value);
    Value textOf(const Value& value);
    Value piece(std::string_view part);
    /// An ASCII character of a text whose characters take one byte each; null for any other.
    const Value* letterOf(const StringObject& text, int32_t number);
    const Value& letter(char character);
    /// The texts of `first`, if there is one, and of `others`, one after the other.
    std::string joined(const Value* first, std::span<const Value> others);
    void grow(StringObject& text, const Value& value);

    // Properties and elements of objects.
    Value item(const Value& object, const Value& index);
    void setItem(const Value& object, const Value& index, const Value& value);
    Value property(const Value& object, SymbolId name);
    void setProperty(const Value& object, SymbolId name, const Value& value);
    Value withChannel(const Value& colour, SymbolId name, const Value& level);
    Value environmentProperty(const EnvironmentObject& environment, SymbolId name);
    Value systemProperty(SymbolId name);
    void setSystemProperty(SymbolId name, const Value& value);
    /// Finds a property in a script, an instance or its ancestors; null if there is none.
    Value* instanceProperty(const Value& object, SymbolId name);
    /// Finds the script or instance that has a handler: the object itself or one of its ancestors. Null if
    /// none has; `owner` is its value.
    PropertyHolder* handlerAlong(const Value& object, SymbolId name, Value& owner) const;
    static PropertyHolder* holderOf(const Value& object);
    Value& ancestorOf(PropertyHolder& holder) const;

    // Calls.
    Value callByName(SymbolId name, std::span<const Value> arguments, bool asMethod);
    /// A handler that a call leads to.
    struct Callee {
        const LoadedScript* script = nullptr;
        const HandlerCode* code = nullptr;
        Value owner;
    };
    /// Finds the handler of a script, an instance or the movie that a call leads to; false if it leads
    /// elsewhere.
    bool findCallee(SymbolId name, std::span<const Value> arguments, bool asMethod, Callee& found) const;
    /// The selector of a method of the plug-in's instance that is called; not above 0 for any other call.
    static int32_t selectorOf(SymbolId name, std::span<const Value> arguments);
    Value callXtra(int32_t selector, std::span<const Value> arguments);
    /// Calls a handler and waits for its end.
    Value callHandler(const Callee& callee, std::span<const Value> arguments);
    /// Begins a handler, within the limit of nested calls.
    Frame& begin(const LoadedScript& script, const HandlerCode& code, const Value& owner,
                 std::span<const Value> arguments) {
        if (running_ >= options_.recursionLimit) refuseDepth(code);
        return push(script, code, owner, arguments);
    }
    /// Makes a frame the running one.
    Frame& push(const LoadedScript& script, const HandlerCode& code, const Value& owner,
                std::span<const Value> arguments);
    Frame& frameOfNextLevel();
    void pop() noexcept;
    [[noreturn]] void refuseDepth(const HandlerCode& code) const;
    Value callBuiltin(const Builtin& builtin, std::span<const Value> arguments, bool asMethod);
    /// Null if the name has none.
    const Meaning* meaningOf(SymbolId name) const;
    const Builtin* builtin(SymbolId name) const;
    const PropertyEntry* propertyOf(Kind kind, SymbolId name) const;
    const Builtin* functionAsProperty(Kind kind, SymbolId name) const;
    [[noreturn]] void unknownCall(SymbolId name, std::span<const Value> arguments, bool asMethod);
    bool skipsStage() const;
    /// Sets the next frame, while frames run and if the arguments of `go` name one.
    bool goesToFrame(std::span<const Value> arguments);
    Value missing(const char* need, SymbolId name, const std::span<const Value>* arguments);
    [[noreturn]] void unknownVariable(SymbolId variable);
    [[noreturn]] void unknownProperty(const Value& object, SymbolId name);
    /// Whether it is a property of a member that only a stage could lay out.
    bool needsLayout(const Value& object, SymbolId name) const;
    std::string unsetName(const Value& object) const;
    std::vector<std::string> functionNames() const;
    std::vector<std::string> propertyNames(Kind kind) const;

    SymbolId methodWritten(SymbolId name);
    ExpressionPointer sentTo(SymbolId receiver, Expression& written, const Source& source);
    Surroundings surroundings() const;
    Value runInFrame(std::unique_ptr<Script> syntax);
    void execute();
    LoadedScript makeScript(const std::string& name, std::unique_ptr<Script> syntax);
    std::string shownVariable(SymbolId name, const Value& value) const;
    ScriptError placed(const std::string& message) const;

    const SessionOptions& options_;
    std::deque<LoadedScript> scripts_;
    std::map<std::string, Value> scriptValues_;
    Globals globals_;
    mutable std::vector<const Meaning*> meanings_;  ///< by symbol, up to the last that was asked for
    std::map<std::string, int64_t> skipped_;        ///< what needed a stage
    const LoadedScript* movie_ = nullptr;
    Value movieOwner_;  ///< has the movie script's properties, if it declares any
    SymbolId newName_, ancestorName_, tablesName_, goName_, countName_;
    Frame* frame_ = nullptr;
    std::vector<std::unique_ptr<Frame>> frames_;  ///< the first `running_` are in use
    int running_ = 0;
    RegisterStack stack_;
    std::array<Value, 128> letters_;  ///< texts of one character, as they are first needed
    uint64_t steps_ = 0;
    uintptr_t stackBase_ = 0;  ///< stack address at the first level
};

}  // namespace krl::player
