#include "player/host/Heap.h"

#include <algorithm>
#include <utility>

#include "player/host/HostError.h"
#include "player/host/Objects.h"

namespace krl::player {

/// Defers freeing during its lifetime, so that code that uses an object can finish.
class Heap::FreeLater {
public:
    explicit FreeLater(Heap& heap) : heap_(heap), outer_(std::exchange(heap.freeing_, true)) {}
    ~FreeLater() {
        heap_.freeing_ = outer_;
        if (!outer_) heap_.freeDoomed();
    }
    FreeLater(const FreeLater&) = delete;
    FreeLater& operator=(const FreeLater&) = delete;

private:
    Heap& heap_;
    const bool outer_;
};

void Heap::clear() noexcept {
    // Objects hold values of this heap and must release those first.
    const FreeLater later(*this);
    for (Slot& slot : slots_)
        if (slot.kind != Kind::Void && slot.object) slot.object->dropChildren();
    for (uint32_t i = 0; i < slots_.size(); ++i)
        if (slots_[i].kind != Kind::Void) vacate(i);
}

Value Heap::number(double number) {
    needSlot();
    return fill(Kind::Float, nullptr, number);
}

Value Heap::string(std::string text) { return make<StringObject>(std::move(text)); }

Value Heap::adopt(Kind kind, std::unique_ptr<Object> object) {
    needSlot();
    charge(*object);
    return fill(kind, object.release(), 0);
}

/// Ensures a free slot, so that `fill` cannot fail.
void Heap::needSlot() {
    if (firstFree_ != kNoSlot) return;
    if (slots_.size() == slots_.capacity()) mustHold(sizeof(Slot) * (slots_.size() + 1));
    slots_.emplace_back();
    bytes_ += sizeof(Slot);
    slots_.back().nextFree = kNoSlot;
    firstFree_ = static_cast<uint32_t>(slots_.size() - 1);
}

Value Heap::fill(Kind kind, Object* object, double number) noexcept {
    const uint32_t index = firstFree_;
    Slot& slot = slots_[index];
    firstFree_ = slot.nextFree;
    slot.object = object;
    slot.number = number;
    slot.references = 1;
    slot.kind = kind;
    ++living_;
    return Value::adopting(*this, wordsOf(kind, slot.generation, index));
}

bool Heap::findNumber(const ScriptValue& words, double& number) const {
    const Slot* slot = at(words);
    if (!slot || slot->kind != Kind::Float) return false;
    number = slot->number;
    return true;
}

/// Links freed objects through their own slots, so freeing needs no memory.
void Heap::vacate(uint32_t index) noexcept {
    Slot& slot = slots_[index];
    slot.kind = Kind::Void;
    --living_;
    slot.nextFree = firstDoomed_;
    firstDoomed_ = index;
    if (!freeing_) freeDoomed();
}

/// Iterative, since a list may be nested deeper than the stack allows.
void Heap::freeDoomed() noexcept {
    freeing_ = true;
    while (firstDoomed_ != kNoSlot) {
        const uint32_t index = firstDoomed_;
        Slot& slot = slots_[index];
        firstDoomed_ = slot.nextFree;
        const std::unique_ptr<Object> object(std::exchange(slot.object, nullptr));
        if (object) bytes_ -= object->charged_;
        // A slot whose generations are used up is never reused, so no stale handle can match it.
        if (slot.generation == kLastGeneration) continue;
        ++slot.generation;
        slot.nextFree = firstFree_;
        firstFree_ = index;
    }
    freeing_ = false;
}

void Heap::mustHold(uint64_t moreBytes) const {
    if (canHold(moreBytes)) return;
    throw HostError("out of memory: the script's values and images may take " +
                    std::to_string(limitBytes_ >> 20) + " MB together");
}

void Heap::mustFit(const char* limitedName, uint64_t bytes) const {
    if (bytes <= limitOfEach_) return;
    throw HostError(std::string("a ") + limitedName + " may take at most " +
                    std::to_string(limitOfEach_ >> 20) + " MB");
}

uint64_t Heap::grown(const char* limitedName, uint64_t bytes, uint64_t needed) const {
    mustHold(needed);
    mustFit(limitedName, needed);
    const uint64_t generous = std::max(needed, std::min(bytes * 2, limitOfEach_));
    // Or half of what is left: growing by what is needed alone would move the whole each time.
    const uint64_t left = limitBytes_ - bytes_;
    return canHold(generous) ? generous : std::min(generous, needed + (left - needed) / 2);
}

void Heap::charge(Object& object) {
    const size_t bytes = object.bytes();
    if (bytes > object.charged_) mustHold(bytes - object.charged_);
    if (const char* name = object.limitedName()) mustFit(name, bytes);
    bytes_ = bytes_ - object.charged_ + bytes;
    object.charged_ = bytes;
}

void Heap::recount(Object& object) {
    if (object.bytes() != object.charged_) charge(object);
}

/// Visits every value that an object holds and that is on this heap.
template <class Visit>
void Heap::eachInnerSlot(const Slot& holder, const Visit& visit) {
    if (holder.kind == Kind::Void || !holder.object) return;
    // A single captured reference fits into `std::function` without an allocation.
    holder.object->eachChild([&visit](const Value& child) { visit(child.words()); });
}

/// Marks everything reachable from references outside the heap. Pending objects are linked through their
/// slots.
void Heap::markHeldFromOutside() noexcept {
    const auto count = [this](uint32_t change) {
        for (const Slot& slot : slots_)
            eachInnerSlot(slot, [this, change](const ScriptValue& words) {
                if (at(words)) slots_[slotOf(words)].references += change;
            });
    };
    // After subtracting the internal references, objects with some left are held from outside.
    count(UINT32_MAX);
    uint32_t toVisit = kNoSlot;
    const auto mark = [&](uint32_t index) {
        Slot& slot = slots_[index];
        if (slot.held) return;
        slot.held = true;
        slot.nextFree = toVisit;
        toVisit = index;
    };
    for (Slot& slot : slots_) slot.held = false;
    for (uint32_t i = 0; i < slots_.size(); ++i)
        if (slots_[i].kind != Kind::Void && slots_[i].references > 0) mark(i);
    count(1);
    while (toVisit != kNoSlot) {
        const Slot& slot = slots_[toVisit];
        toVisit = slot.nextFree;
        eachInnerSlot(slot, [&](const ScriptValue& words) {
            if (at(words)) mark(slotOf(words));
        });
    }
}

void Heap::freeCycles() noexcept {
    markHeldFromOutside();
    const FreeLater later(*this);
    for (Slot& slot : slots_)
        if (slot.kind != Kind::Void && slot.object && !slot.held) slot.object->dropChildren();
}

Value Value::sharing(Heap& heap, ScriptValue words) {
    return heap.retain(words) ? adopting(heap, words) : Value();
}

double Value::number() const {
    double real = integer();
    if (is(Kind::Float) && !heap_->findNumber(words_, real)) refuseStale();
    return real;
}

void Value::refuseStale() { throw HostError("a value was released while it was still in use"); }

}  // namespace krl::player
