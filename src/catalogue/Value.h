#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "krlimage/engine.h"

namespace krl {

class Value;

/// A name that stands for itself; letter case does not count.
struct Symbol {
    std::string name;
};

/// The bytes of a pixel in address order.
enum class PixelOrder : int32_t { BGRA, RGBA };

/// A picture in memory. `owner` keeps memory alive that the picture brought along; for a caller's own memory
/// it is empty. Methods take pictures as BGRA: who passes another order on converts it.
struct Picture {
    uint8_t* pixels = nullptr;
    ImageInfo info;
    PixelOrder order = PixelOrder::BGRA;
    std::shared_ptr<uint8_t[]> owner;

    /// A picture of rows without padding, every byte `level`. Throws `std::bad_alloc`.
    static Picture blank(int32_t width, int32_t height, uint8_t level = 0);
};

/// A picture that is yet to be found or made: by its name, or blank in a size.
struct PictureReference {
    std::string name;
    int32_t width = 0, height = 0;
};

using ListValue = std::vector<Value>;
/// Values under keys, in order; a key may be of any kind and occur more than once.
using PropertyListValue = std::vector<std::pair<Value, Value>>;

enum class ValueKind {
    Void,
    Integer,
    Real,
    Symbol,
    Text,
    Colour,
    Point,
    List,
    PropertyList,
    Picture,
    PictureReference
};

/// A plain value of any kind that methods take or give, owned by whoever holds it.
class Value {
public:
    using Content = std::variant<std::monostate, int32_t, double, Symbol, std::string, Colour, Point,
                                 ListValue, PropertyListValue, Picture, PictureReference>;

    Value() = default;
    template <class Kind>
    Value(Kind content) : content_(std::move(content)) {}  // NOLINT: values are written where they are read

    ValueKind kind() const { return static_cast<ValueKind>(content_.index()); }
    const Content& content() const { return content_; }
    /// The content if it is a `Kind`, or null.
    template <class Kind>
    const Kind* as() const {
        return std::get_if<Kind>(&content_);
    }
    template <class Kind>
    Kind* as() {
        return std::get_if<Kind>(&content_);
    }

private:
    Content content_;
};

/// `integer`, `number`, `symbol` ...: what a message calls a value of this kind.
const char* kindName(ValueKind kind);

/// The value under the symbol `key`, letter case aside; null where there is none.
const Value* findProperty(const PropertyListValue& list, const std::string& key);

}  // namespace krl
