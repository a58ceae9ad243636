#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "player/host/Value.h"

namespace krl::player {

/// An object that values refer to by a handle.
class Object {
public:
    virtual ~Object() = default;
    /// Its size in bytes, for the memory limit.
    virtual size_t bytes() const = 0;
    /// What it is called where its size has a limit of its own, such as `string`; null for all others.
    virtual const char* limitedName() const { return nullptr; }
    /// The numbers that it is compared by; none where only the same object is equal.
    virtual std::vector<double> numbers() const { return {}; }
    /// Visits every value that it holds.
    virtual void eachChild(const std::function<void(const Value&)>&) const {}
    /// Releases them.
    virtual void dropChildren() {}

private:
    friend class Heap;
    size_t charged_ = 0;
};

/// The objects that values refer to, reference-counted in numbered slots, with a limit on their total size.
/// Floats are stored in their slots; everything else is an object.
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
    /// Takes over an object and returns its value.
    template <class ObjectType>
    Value keep(std::unique_ptr<ObjectType> object) {
        return adopt(ObjectType::kKind, std::move(object));
    }

    /// The slot that `words` refer to, or null for a stale or invalid handle.
    Object* find(const ScriptValue& words) const;
    bool findNumber(const ScriptValue& words, double& number) const;
    /// False for a stale handle; always true for values without a handle.
    bool retain(const ScriptValue& words);
    bool release(const ScriptValue& words) noexcept;

    /// Whether nothing else refers to the object behind `words`.
    bool isSole(const ScriptValue& words) const {
        const Slot* slot = at(words);
        return slot && slot->references == 1;
    }

    /// Limits the size of each string and list.
    void limitEachTo(uint64_t bytes) { limitOfEach_ = bytes; }
    /// Throws before an allocation that would exceed the limit.
    void mustHold(uint64_t moreBytes) const;
    /// Throws before an object of that name would get larger than each may be.
    void mustFit(const char* limitedName, uint64_t bytes) const;
    bool canHold(uint64_t moreBytes) const {
        return moreBytes <= limitBytes_ && bytes_ <= limitBytes_ - moreBytes;
    }
    /// The size that a growing object gets which has `bytes` and needs `needed`: up to twice as many, so that
    /// it seldom moves. Throws if there is no room for both the old and the new one.
    uint64_t grown(const char* limitedName, uint64_t bytes, uint64_t needed) const;
    /// Updates the size of an object after it has grown.
    void recount(Object& object);

    /// Frees unreachable cycles: lists that contain themselves, objects that refer to each other.
    void freeCycles() noexcept;
    /// Frees everything, even if it is still held.
    void clear() noexcept;
    /// The number of live objects and floats.
    int64_t living() const { return living_; }

private:
    class FreeLater;
    struct Slot {
        Object* object = nullptr;
        double number = 0;
        uint32_t generation = 0;
        uint32_t references = 0;
        Kind kind = Kind::Void;  ///< VOID in a slot that is free or about to be freed
        bool held = false;       ///< reachable from outside, during cycle collection
        uint32_t nextFree = 0;   ///< next slot in the list that contains this one
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
    uint64_t limitOfEach_ = UINT64_MAX;
    int64_t living_ = 0;

    static constexpr uint32_t kNoSlot = UINT32_MAX;
    static constexpr uint32_t kLastGeneration = 0xFFFFFF;
};

inline const Heap::Slot* Heap::at(const ScriptValue& words) const {
    const uint32_t index = slotOf(words);
    if (!onHeap(words) || index >= slots_.size()) return nullptr;
    const Slot& slot = slots_[index];
    return slot.kind == kindOf(words) && slot.generation == generationOf(words) ? &slot : nullptr;
}

inline Object* Heap::find(const ScriptValue& words) const {
    const Slot* slot = at(words);
    return slot ? slot->object : nullptr;
}

inline bool Heap::retain(const ScriptValue& words) {
    if (!onHeap(words)) return true;
    if (!at(words)) return false;
    ++slots_[slotOf(words)].references;
    return true;
}

inline bool Heap::release(const ScriptValue& words) noexcept {
    if (!onHeap(words)) return true;
    if (!at(words)) return false;
    if (--slots_[slotOf(words)].references == 0) vacate(slotOf(words));
    return true;
}

inline Object* Value::object() const {
    if (Object* found = heap_->find(words_)) return found;
    refuseStale();
}

inline void Value::retain() const { heap_->retain(words_); }
inline void Value::drop() noexcept { heap_->release(words_); }

}  // namespace krl::player
