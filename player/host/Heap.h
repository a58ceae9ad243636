#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "player/host/Value.h"

namespace krl::player {

/// Something that values hold by a handle.
class Object {
public:
    virtual ~Object() = default;
    /// Bytes it takes, for the memory limit.
    virtual size_t bytes() const = 0;
    /// Shows every value that it holds.
    virtual void eachChild(const std::function<void(const Value&)>&) const {}
    /// Lets go of them.
    virtual void dropChildren() {}

private:
    friend class Heap;
    size_t charged_ = 0;
};

/// Everything that values denote: counted by reference behind numbered slots, with a limit on the
/// bytes of all together. Floats live in their slots; the rest are objects.
class Heap {
public:
    explicit Heap(uint64_t limitBytes) : limitBytes_(limitBytes) {}
    ~Heap() { clear(); }
    Heap(const Heap&) = delete;
    Heap& operator=(const Heap&) = delete;

    Value number(double number);
    Value string(std::string text);
    template <class ObjectType, class... Arguments>
    Value make(Arguments&&... arguments) {
        return keep(std::make_unique<ObjectType>(std::forward<Arguments>(arguments)...));
    }
    /// The value of an object that was made elsewhere.
    template <class ObjectType>
    Value keep(std::unique_ptr<ObjectType> object) {
        return adopt(ObjectType::kKind, std::move(object));
    }

    /// A slot with its kind taken from `words`, or nothing for a stale or made-up handle.
    Object* find(const ScriptValue& words) const;
    bool findNumber(const ScriptValue& words, double& number) const;
    /// False for a stale handle; values without one are always kept and dropped well.
    bool retain(const ScriptValue& words);
    bool release(const ScriptValue& words) noexcept;

    /// Refuses, before it is taken, what would go beyond the limit.
    void mustHold(uint64_t moreBytes) const;
    /// Counts an object anew after it has grown.
    void recount(Object& object);

    /// Frees what is only held by itself: lists in themselves, objects that know each other.
    void freeCycles() noexcept;
    /// Frees everything, whoever still holds it.
    void clear() noexcept;
    /// Objects and floats that are alive.
    int64_t living() const { return living_; }

private:
    class FreeLater;
    struct Slot {
        Object* object = nullptr;
        double number = 0;
        uint32_t generation = 0;
        uint32_t references = 0;
        Kind kind = Kind::Void;  ///< VOID in a free slot, and in one that is about to be freed
        bool held = false;       ///< by a reference from outside, while cycles are looked for
        uint32_t nextFree = 0;   ///< next of the list that the slot is in
    };

    Value adopt(Kind kind, std::unique_ptr<Object> object);
    void needSlot();
    Value fill(Kind kind, Object* object, double number) noexcept;
    const Slot* at(const ScriptValue& words) const;
    void charge(Object& object);
    void vacate(uint32_t index) noexcept;
    void freeDoomed() noexcept;
    template <class Visit>
    static void eachInnerSlot(const Slot& holder, const Visit& visit);
    void markHeldFromOutside() noexcept;

    std::vector<Slot> slots_;
    uint32_t firstFree_ = kNoSlot;
    uint32_t firstDoomed_ = kNoSlot;
    bool freeing_ = false;
    uint64_t bytes_ = 0;
    uint64_t limitBytes_;
    int64_t living_ = 0;

    static constexpr uint32_t kNoSlot = UINT32_MAX;
    static constexpr uint32_t kLastGeneration = 0xFFFFFF;
};

}  // namespace krl::player
