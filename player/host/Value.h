#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <utility>

#include "host/HostTypes.h"

namespace krl::player {

using host::ColourRecord;
using host::ScriptValue;
using host::SymbolId;

class Heap;

/// The type of a value. The first ones are stored in the two words; the others are handles to heap
/// objects.
enum class Kind : uint8_t {
    Void,
    Integer,
    Symbol,
    Colour,
    Float,
    String,
    List,
    PropertyList,
    Point,
    Rect,
    Image,
    Xtra,
    XtraInstance,
    Script,
    ScriptInstance,
    Member,
    Vector,
    Date,
    ByteArray,
    Transform,
    Environment,
    CastLib,
    Collection,
};

/// How a script wrote a colour, which decides how it is shown.
enum class ColourForm : uint8_t { Rgb, Color, PaletteIndex };

/// The two words of a value: the kind in the low byte of the first with, above it, the generation
/// of the heap slot; the payload or the slot's number in the second. A slot's generation goes up
/// when it is freed, so stale handles are detected.
constexpr Kind kindOf(const ScriptValue& words) { return static_cast<Kind>(words.words[0] & 0xFF); }
constexpr bool onHeap(const ScriptValue& words) { return kindOf(words) >= Kind::Float; }
constexpr uint32_t generationOf(const ScriptValue& words) {
    return static_cast<uint32_t>(words.words[0]) >> 8;
}
constexpr uint32_t slotOf(const ScriptValue& words) { return static_cast<uint32_t>(words.words[1]); }
constexpr ScriptValue wordsOf(Kind kind, uint32_t generation, uint32_t payload) {
    return {
        {static_cast<int32_t>(generation << 8 | static_cast<uint32_t>(kind)), static_cast<int32_t>(payload)}};
}

/// Copies both words in one load and one store of 64 bits: a later load of both would wait for two stores.
inline void copyWords(const ScriptValue& from, ScriptValue& to) {
    uint64_t both;
    std::memcpy(&both, from.words, sizeof both);
    std::memcpy(to.words, &both, sizeof both);
}
/// Stores those of an integer in the same way.
inline void setIntegerWords(int32_t number, ScriptValue& to) {
    constexpr auto kInteger = static_cast<uint64_t>(Kind::Integer);
    constexpr bool kLittle = std::endian::native == std::endian::little;
    const uint64_t payload = static_cast<uint32_t>(number);
    const uint64_t both = kLittle ? payload << 32 | kInteger : kInteger << 32 | payload;
    std::memcpy(to.words, &both, sizeof both);
}

/// A value that owns one reference to its object.
class Value {
public:
    Value() = default;
    static Value integer(int32_t number) {
        return Value(wordsOf(Kind::Integer, 0, static_cast<uint32_t>(number)));
    }
    static Value truth(bool holds) { return integer(holds ? 1 : 0); }
    static Value symbol(SymbolId id) { return Value(wordsOf(Kind::Symbol, 0, static_cast<uint32_t>(id))); }
    static Value colour(Colour colour) { return Value(wordsOf(Kind::Colour, 0, colour.word & 0xFFFFFFu)); }
    /// A colour in another form; `index` is that in the palette. The form is kept beside the kind, where the
    /// plug-in sees no part of the colour.
    static Value colour(Colour colour, ColourForm form, uint8_t index = 0) {
        const uint32_t beside = static_cast<uint32_t>(form) << 8 | index;
        return Value(wordsOf(Kind::Colour, beside, colour.word & 0xFFFFFFu));
    }
    /// VOID as in a variable that was never assigned.
    static Value unassigned() { return Value(wordsOf(Kind::Void, 0, 1)); }
    /// Takes over the reference of `words`.
    static Value adopting(Heap& heap, ScriptValue words) {
        Value made(words);
        made.heap_ = &heap;
        return made;
    }
    /// Adds a reference; VOID for a stale handle.
    static Value sharing(Heap& heap, ScriptValue words);

    Value(const Value& other) : heap_(other.heap_) {
        copyWords(other.words_, words_);
        if (onHeap(words_)) retain();
    }
    Value(Value&& other) noexcept : words_(std::exchange(other.words_, {})), heap_(other.heap_) {}
    /// Becomes an integer.
    void setInteger(int32_t number) {
        if (onHeap(words_)) drop();
        setIntegerWords(number, words_);
    }
    void setTruth(bool holds) { setInteger(holds ? 1 : 0); }
    Value& operator=(const Value& other) {
        Value copy(other);
        return *this = std::move(copy);
    }
    Value& operator=(Value&& other) noexcept {
        std::swap(words_, other.words_);
        std::swap(heap_, other.heap_);
        return *this;
    }
    ~Value() {
        if (onHeap(words_)) drop();
    }

    Kind kind() const { return kindOf(words_); }
    bool is(Kind wanted) const { return kind() == wanted; }
    bool isVoid() const { return is(Kind::Void); }
    bool isUnassigned() const { return isVoid() && words_.words[1] == 1; }
    bool isInteger() const { return is(Kind::Integer); }
    bool hasObject() const { return onHeap(words_); }
    bool isNumber() const { return isInteger() || is(Kind::Float); }

    // The stored value; meaningful only for that type.
    int32_t integer() const { return words_.words[1]; }
    SymbolId symbol() const { return words_.words[1]; }
    Colour colour() const { return Colour(static_cast<uint32_t>(words_.words[1])); }
    ColourForm colourForm() const { return static_cast<ColourForm>(generationOf(words_) >> 8); }
    uint8_t paletteIndex() const { return static_cast<uint8_t>(generationOf(words_)); }
    /// An integer or a float as a real.
    double number() const;

    /// The object behind the handle, or null if the value has another type.
    template <class ObjectType>
    ObjectType* as() const {
        return is(ObjectType::kKind) ? static_cast<ObjectType*>(object()) : nullptr;
    }

    /// The object behind the handle of a value that has one.
    inline class Object* object() const;

    const ScriptValue& words() const { return words_; }
    /// Releases ownership of the reference to the caller.
    ScriptValue release() { return std::exchange(words_, {}); }
    /// Whether both have the same two words: the same number, symbol, colour or object.
    bool sameWords(const Value& other) const {
        return words_.words[0] == other.words_.words[0] && words_.words[1] == other.words_.words[1];
    }

private:
    explicit Value(ScriptValue words) : words_(words) {}
    inline void retain() const;
    inline void drop() noexcept;
    [[noreturn]] static void refuseStale();

    ScriptValue words_;
    Heap* heap_ = nullptr;

    friend class Object;
};

}  // namespace krl::player

#include "player/host/Heap.h"  // how values hold their objects
