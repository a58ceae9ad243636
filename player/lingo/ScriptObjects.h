#pragma once

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "player/host/Objects.h"
#include "player/lingo/Syntax.h"

/// Scripts as values.
namespace krl::player {

/// A loaded script: its syntax, and its float and string literals as values.
struct LoadedScript {
    std::string name;
    std::unique_ptr<Script> syntax;
    std::vector<Value> literals;
    std::unordered_map<SymbolId, const Handler*> handlers;

    const Handler* handler(SymbolId wanted) const {
        const auto found = handlers.find(wanted);
        return found == handlers.end() ? nullptr : found->second;
    }
};

/// A script with the values of its properties: the script itself, or an instance.
struct PropertyHolder : Object {
    explicit PropertyHolder(const LoadedScript& loaded)
        : script(loaded), properties(loaded.syntax->properties.size()) {}
    size_t bytes() const override { return sizeof(*this) + properties.capacity() * sizeof(Value); }
    void eachChild(const std::function<void(const Value&)>& show) const override {
        for (const Value& value : properties) show(value);
    }
    void dropChildren() override { properties.clear(); }

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

/// A cast member: a picture file, named without its extension.
struct MemberObject : Object {
    static constexpr Kind kKind = Kind::Member;
    explicit MemberObject(std::string called) : name(std::move(called)) {}
    size_t bytes() const override { return sizeof(*this) + name.capacity(); }
    void eachChild(const std::function<void(const Value&)>& show) const override { show(image); }
    void dropChildren() override { image = Value(); }

    std::string name;
    Value image;  ///< read on first use
};

}  // namespace krl::player
