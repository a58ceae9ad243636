#include "player/host/Heap.h"

#include "player/host/HostError.h"
#include "player/host/Objects.h"

namespace krl::player {

void Heap::clear() {
    // Objects hold values of this heap: they let go of those first, each in its own time.
    for (size_t i = 0; i < slots_.size(); ++i)
        if (slots_[i].object) slots_[i].object->dropChildren();
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

/// Makes sure of a free slot, so that `fill` cannot fail.
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

const Heap::Slot* Heap::at(const ScriptValue& words) const {
    const uint32_t index = slotOf(words);
    if (!onHeap(words) || index >= slots_.size()) return nullptr;
    const Slot& slot = slots_[index];
    return slot.kind == kindOf(words) && slot.generation == generationOf(words) ? &slot : nullptr;
}

Object* Heap::find(const ScriptValue& words) const {
    const Slot* slot = at(words);
    return slot ? slot->object : nullptr;
}

bool Heap::findNumber(const ScriptValue& words, double& number) const {
    const Slot* slot = at(words);
    if (!slot || slot->kind != Kind::Float) return false;
    number = slot->number;
    return true;
}

bool Heap::retain(const ScriptValue& words) {
    if (!onHeap(words)) return true;
    if (!at(words)) return false;
    ++slots_[slotOf(words)].references;
    return true;
}

bool Heap::release(const ScriptValue& words) {
    if (!onHeap(words)) return true;
    if (!at(words)) return false;
    if (--slots_[slotOf(words)].references == 0) vacate(slotOf(words));
    return true;
}

void Heap::vacate(uint32_t index) {
    Slot& slot = slots_[index];
    if (slot.object) doomed_.push_back(slot.object);
    slot.object = nullptr;
    slot.kind = Kind::Void;
    --living_;
    // A slot whose generations have run out is never used again, so no old handle can fit it.
    if (slot.generation != kLastGeneration) {
        ++slot.generation;
        slot.nextFree = firstFree_;
        firstFree_ = index;
    }
    if (!freeing_) freeDoomed();
}

/// In a loop, not by recursion: a list may be nested deeper than the stack is.
void Heap::freeDoomed() {
    freeing_ = true;
    while (!doomed_.empty()) {
        const std::unique_ptr<Object> object(doomed_.back());
        doomed_.pop_back();
        bytes_ -= object->charged_;
    }
    freeing_ = false;
}

void Heap::mustHold(uint64_t moreBytes) const {
    if (moreBytes <= limitBytes_ && bytes_ <= limitBytes_ - moreBytes) return;
    throw HostError("out of memory: the script's values and images may take " +
                    std::to_string(limitBytes_ >> 20) + " MB together");
}

void Heap::charge(Object& object) {
    const size_t bytes = object.bytes();
    if (bytes > object.charged_) mustHold(bytes - object.charged_);
    bytes_ = bytes_ - object.charged_ + bytes;
    object.charged_ = bytes;
}

void Heap::recount(Object& object) {
    if (object.bytes() != object.charged_) charge(object);
}

/// Marks, slot by slot, what a reference from outside the heap leads to.
std::vector<bool> Heap::heldFromOutside() const {
    std::vector<uint32_t> inner(slots_.size());
    for (const Slot& slot : slots_)
        if (slot.object)
            slot.object->eachChild([&](const Value& child) {
                if (at(child.words())) ++inner[slotOf(child.words())];
            });
    std::vector<bool> held(slots_.size());
    std::vector<uint32_t> toVisit;
    const auto visit = [&](uint32_t index) {
        if (held[index]) return;
        held[index] = true;
        toVisit.push_back(index);
    };
    for (uint32_t i = 0; i < slots_.size(); ++i)
        if (slots_[i].kind != Kind::Void && slots_[i].references > inner[i]) visit(i);
    while (!toVisit.empty()) {
        const Object* object = slots_[toVisit.back()].object;
        toVisit.pop_back();
        if (object)
            object->eachChild([&](const Value& child) {
                if (at(child.words())) visit(slotOf(child.words()));
            });
    }
    return held;
}

void Heap::freeCycles() {
    const std::vector<bool> held = heldFromOutside();
    std::vector<Value> garbage;  // keeps the slots until all of them are empty
    for (uint32_t i = 0; i < held.size(); ++i)
        if (!held[i] && slots_[i].object)
            garbage.push_back(Value::sharing(*this, wordsOf(slots_[i].kind, slots_[i].generation, i)));
    for (const Value& value : garbage) find(value.words())->dropChildren();
}

Value Value::sharing(Heap& heap, ScriptValue words) {
    return heap.retain(words) ? adopting(heap, words) : Value();
}

double Value::number() const {
    double real = integer();
    if (is(Kind::Float) && !heap_->findNumber(words_, real))
        throw HostError("a value was given back while it was still in use");
    return real;
}

Object* Value::object() const {
    if (Object* found = heap_->find(words_)) return found;
    throw HostError("a value was given back while it was still in use");
}

void Value::retain() const { heap_->retain(words_); }
void Value::drop() noexcept { heap_->release(words_); }

}  // namespace krl::player
