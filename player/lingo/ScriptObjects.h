#pragma once

#include <memory>
#include <string>
#include <vector>

#include "player/host/Objects.h"
#include "player/lingo/Code.h"

/// Scripts as values.
namespace krl::player {

/// A loaded script and its compiled handlers.
struct LoadedScript {
    std::string name;
    std::unique_ptr<Script> syntax;
    std::vector<std::unique_ptr<HandlerCode>> codes;  ///< as they are written
    std::vector<const HandlerCode*> handlers;         ///< by symbol

    const HandlerCode* handler(SymbolId wanted) const {
        const auto place = static_cast<size_t>(wanted);
        return place < handlers.size() ? handlers[place] : nullptr;
    }
};

/// A script with the values of its properties: the script itself, or an instance.
struct PropertyHolder : Object {
    explicit PropertyHolder(const LoadedScript& loaded)
        : script(loaded), properties(loaded.syntax->properties.size()) {}
    size_t bytes() const override { return sizeof(*this) + properties.capacity() * sizeof(Value); }
    void eachChild(const std::function<void(const Value&)>& show) const override {
        for (const Value& value : properties) show(value);
        show(ancestor);
    }
    void dropChildren() override {
        properties.clear();
        ancestor = Value();
    }

    const std::string& name() const { return script.name; }
    /// The value of a property, or null for an unknown name.
    Value* property(SymbolId wanted) {
        const std::vector<SymbolId>& names = script.syntax->properties;
        for (size_t i = 0; i < names.size() && i < properties.size(); ++i)
            if (names[i] == wanted) return &properties[i];
        return nullptr;
    }

    const LoadedScript& script;
    std::vector<Value> properties;
    Value ancestor;  ///< where no property of that name is declared
};

/// `script "Name"`
struct ScriptObject : PropertyHolder {
    static constexpr Kind kKind = Kind::Script;
    using PropertyHolder::PropertyHolder;
};

/// An instance made by `new(script "Name")`.
struct InstanceObject : PropertyHolder {
    static constexpr Kind kKind = Kind::ScriptInstance;
    using PropertyHolder::PropertyHolder;
};

/// A cast member: a picture or text file, named without its extension, or one that a script has made.
struct MemberObject : Object {
    static constexpr Kind kKind = Kind::Member;
    explicit MemberObject(std::string called) : name(std::move(called)) {}
    size_t bytes() const override { return sizeof(*this) + name.capacity(); }
    void eachChild(const std::function<void(const Value&)>& show) const override {
        show(image);
        show(text);
        show(regPoint);
    }
    void dropChildren() override { image = text = regPoint = Value(); }

    std::string name;
    Value image;  ///< read on first use, like `text`
    Value text;
    Value regPoint;      ///< VOID for the middle
    int32_t number = 0;  ///< of one that was found or made without a name
};

/// `vector(x, y, z)`
struct VectorObject : Object {
    static constexpr Kind kKind = Kind::Vector;
    explicit VectorObject(std::array<double, 3> numbers) : parts(numbers) {}
    size_t bytes() const override { return sizeof(*this); }
    std::vector<double> numbers() const override { return {parts.begin(), parts.end()}; }

    std::array<double, 3> parts;
};

/// Four rows of four numbers; see `Transforms.h`.
using Matrix = std::array<double, 16>;

/// `transform()`
struct TransformObject : Object {
    static constexpr Kind kKind = Kind::Transform;
    explicit TransformObject(const Matrix& numbers) : matrix(numbers) {}
    size_t bytes() const override { return sizeof(*this); }
    std::vector<double> numbers() const override { return {matrix.begin(), matrix.end()}; }

    Matrix matrix;
};

/// `date(year, month, day)`, and the seconds since midnight.
struct DateObject : Object {
    static constexpr Kind kKind = Kind::Date;
    DateObject(int32_t ofYear, int32_t ofMonth, int32_t ofDay, int32_t since)
        : year(ofYear), month(ofMonth), day(ofDay), seconds(since) {}
    size_t bytes() const override { return sizeof(*this); }
    std::vector<double> numbers() const override {
        return {double(year), double(month), double(day), double(seconds)};
    }

    int32_t year, month, day, seconds;
};

/// `bytearray(length, value)`
struct ByteArrayObject : Object {
    static constexpr Kind kKind = Kind::ByteArray;
    explicit ByteArrayObject(std::vector<uint8_t> values) : content(std::move(values)) {}
    size_t bytes() const override { return sizeof(*this) + content.capacity(); }
    std::vector<double> numbers() const override { return {content.begin(), content.end()}; }

    std::vector<uint8_t> content;
    size_t position = 0;  ///< of the next read or write
};

/// `castLib(1)`, the only cast there is.
struct CastLibObject : Object {
    static constexpr Kind kKind = Kind::CastLib;
    size_t bytes() const override { return sizeof(*this); }
};

/// `_movie.member` and the like: `_movie.member["x"]` is `member("x")`.
struct CollectionObject : Object {
    static constexpr Kind kKind = Kind::Collection;
    CollectionObject(const char* function, const char* count) : of(function), counted(count) {}
    size_t bytes() const override { return sizeof(*this); }

    const char* of;       ///< the function that finds an element
    const char* counted;  ///< the system property with their number
};

/// `_movie`, `_player` and the like: the system properties and functions as properties and methods.
struct EnvironmentObject : Object {
    static constexpr Kind kKind = Kind::Environment;
    explicit EnvironmentObject(const char* of) : name(of) {}
    size_t bytes() const override { return sizeof(*this); }

    const char* name;
};

}  // namespace krl::player
