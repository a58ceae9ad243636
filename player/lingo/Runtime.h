#pragma once

#include <cstdint>
#include <ostream>
#include <span>
#include <string>
#include <vector>

#include "player/host/EmbeddedHost.h"
#include "player/host/Objects.h"
#include "player/host/Xtra.h"
#include "player/lingo/Members.h"
#include "player/lingo/PictureTable.h"
#include "player/lingo/Sandbox.h"
#include "player/lingo/ScriptObjects.h"
#include "player/lingo/Text.h"

namespace krl::player {

/// Language settings that a script can change.
struct Settings {
    int floatPrecision = 4;
    char itemDelimiter = ',';
    int32_t randomSeed = 1;
    int64_t timerStart = 0;  ///< in milliseconds
};

/// The environment of built-in functions: the host, the settings, the files, and callbacks into scripts.
class Runtime {
public:
    Runtime(EmbeddedHost& embedded, Xtra& plugIn, Sandbox files, std::ostream& out, std::ostream& alertOut)
        : host(embedded),
          heap(embedded.heap),
          symbols(embedded.symbols),
          xtra(plugIn),
          sandbox(std::move(files)),
          output(out),
          alerts(alertOut) {}
    virtual ~Runtime() = default;

    /// Sends a message to an object, or calls a handler or function if the object has no such method.
    virtual Value send(SymbolId name, std::span<const Value> arguments) = 0;
    /// Whether an object has a handler or method of that name.
    virtual bool responds(const Value& object, SymbolId name) const = 0;
    /// Sends to the ancestor of the first argument, which stays `me`.
    virtual Value sendToAncestor(SymbolId name, std::span<const Value> arguments) = 0;
    /// Runs the statements in a text.
    virtual void runText(const std::string& text) = 0;
    /// Evaluates the expression that begins a text, with the variables of the running handler; VOID if it has
    /// no value.
    virtual Value valueOf(const std::string& text) = 0;
    /// `script "Name"`
    virtual Value scriptNamed(const std::string& name) = 0;
    /// A property of an object under a symbol or string.
    virtual Value propertyNamed(const Value& object, const Value& name) = 0;
    virtual void setPropertyNamed(const Value& object, const Value& name, const Value& value) = 0;
    virtual Value newInstance(const Value& script, std::span<const Value> arguments) = 0;
    /// The arguments of the running handler.
    virtual std::span<const Value> handlerArguments() const = 0;
    virtual void clearGlobals() = 0;
    /// Prints the variables that have a value.
    virtual void showGlobals() = 0;
    virtual void showLocals() = 0;

    TextStyle style() const { return {symbols, settings.floatPrecision}; }
    std::string plain(const Value& value) const { return plainText(style(), value); }
    Value text(std::string characters) { return heap.string(std::move(characters)); }
    Value symbol(std::string_view name) { return Value::symbol(symbols.symbol(name)); }
    /// The next 32-bit random number; the sequence follows from `the randomSeed`.
    uint32_t nextRandom();

    EmbeddedHost& host;
    Heap& heap;
    SymbolTable& symbols;
    Xtra& xtra;
    Settings settings;
    Value result;     ///< of the last handler
    Value actorList;  ///< VOID before its first use
    int32_t frameNumber = 1;
    int32_t nextFrame = 2;  ///< where `go` leads while frames run
    bool inFrames = false;
    std::string scriptFile;  ///< the name of the first script's file
    Sandbox sandbox;
    Members members{heap, sandbox};
    const SymbolId newMemberName = symbols.identifier("newMember");
    PictureTable* pictures = nullptr;  ///< see `SessionOptions::pictures`
    std::ostream& output;
    std::ostream& alerts;
};

/// The arguments of a built-in function, read with type checks.
class Arguments {
public:
    /// In a call written as a method, messages count the arguments without the object before the dot.
    Arguments(const char* function, std::span<const Value> values, bool asMethod = false)
        : function_(function), values_(values), asMethod_(asMethod) {}

    size_t count() const { return values_.size(); }
    bool has(size_t index) const { return index < values_.size() && !values_[index].isVoid(); }
    /// VOID if there is none.
    const Value& operator[](size_t index) const;
    std::span<const Value> from(size_t first) const {
        return values_.subspan(std::min(first, values_.size()));
    }

    int32_t integer(size_t index) const;
    double number(size_t index) const;
    const std::string& text(size_t index) const;
    SymbolId symbol(size_t index) const;
    Colour colour(size_t index) const;
    template <class ObjectType>
    ObjectType& object(size_t index) const {
        if (ObjectType* found = (*this)[index].template as<ObjectType>()) return *found;
        mismatch(index, kindName(ObjectType::kKind));
    }
    /// Throws the error that argument `index` has the wrong type.
    [[noreturn]] void mismatch(size_t index, const std::string& wanted) const;
    const char* function() const { return function_; }

private:
    const char* function_;
    std::span<const Value> values_;
    bool asMethod_;
};

/// A built-in function; it is also a method of its first argument: `list.add(5)` is `add(list, 5)`.
struct Builtin {
    const char* name;
    size_t least, most;  ///< number of arguments
    Value (*run)(Runtime&, const Arguments&);
};

inline constexpr size_t kAnyNumber = SIZE_MAX;

// The functions by family.
std::span<const Builtin> mathBuiltins();
std::span<const Builtin> textBuiltins();
std::span<const Builtin> listBuiltins();
std::span<const Builtin> shapeBuiltins();
std::span<const Builtin> imageBuiltins();
std::span<const Builtin> drawBuiltins();
std::span<const Builtin> systemBuiltins();
std::span<const Builtin> castBuiltins();
std::span<const Builtin> objectBuiltins();
std::span<const Builtin> vectorBuiltins();
std::span<const Builtin> dataBuiltins();
std::span<const Builtin> transformBuiltins();
/// All of them.
std::vector<std::span<const Builtin>> builtinFamilies();

/// A property of one type of values, or a system property, which has no object.
struct PropertyEntry {
    Kind kind;  ///< VOID for system properties
    const char* name;
    Value (*read)(Runtime&, const Value& object);
    void (*write)(Runtime&, const Value& object, const Value& value);  ///< null if read-only
};

std::span<const PropertyEntry> objectProperties();
std::span<const PropertyEntry> systemProperties();
std::span<const PropertyEntry> movieProperties();
std::span<const PropertyEntry> castProperties();
std::span<const PropertyEntry> scriptProperties();
std::span<const PropertyEntry> vectorProperties();
std::span<const PropertyEntry> dataProperties();
std::span<const PropertyEntry> transformProperties();
std::vector<std::span<const PropertyEntry>> propertyFamilies();

/// What a name means in the language.
struct Meaning {
    const Builtin* function = nullptr;
    std::vector<const PropertyEntry*> properties;  ///< the last of each kind counts
};
/// The meaning of a name, ignoring case; null if it has none.
const Meaning* meaningOf(std::string_view name);

/// The extensions of files that are pictures.
const std::vector<std::string>& pictureExtensions();
/// The text of a member, and what `put ... into field` sets.
Value memberText(Runtime& runtime, const Value& member);
void setMemberText(Runtime& runtime, const Value& member, const Value& value);

/// A copy of a member in the next place, or in that of another one or of a number.
Value duplicateMember(Runtime& runtime, const Value& member, const Value& place);

/// A colour of the usual palette, by its index.
Value indexedColour(uint8_t index);

/// `object[index]`
Value elementOf(Runtime& runtime, const Value& object, const Value& index);
void setElement(Runtime& runtime, const Value& object, const Value& index, const Value& value);
void deleteElement(Runtime& runtime, const Value& object, const Value& index);
/// Adds an entry for `key`, or replaces the value of an existing one.
void setEntry(Runtime& runtime, PropertyListObject& list, const Value& key, const Value& value);

/// Thrown to end a script normally; by `abort`, to end only the handlers that run.
struct Halt {
    bool onlyHandlers = false;
};

}  // namespace krl::player
