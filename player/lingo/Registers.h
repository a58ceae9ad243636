#pragma once

#include <memory>
#include <vector>

#include "player/host/Value.h"

namespace krl::player {

/// The registers of all running handlers, in pieces that never move.
class RegisterStack {
public:
    /// The next `count` registers, which hold VOID.
    Value* take(size_t count) {
        if (pieces_.empty() || pieces_[current_].size - pieces_[current_].used < count) advance(count);
        Piece& piece = pieces_[current_];
        piece.used += count;
        return piece.values.get() + (piece.used - count);
    }
    /// Returns the last ones that were taken.
    void giveBack(Value* registers, size_t count) {
        for (size_t i = 0; i < count; ++i) registers[i] = Value();
        pieces_[current_].used -= count;
        if (pieces_[current_].used == 0 && current_ > 0) --current_;
    }

private:
    struct Piece {
        std::unique_ptr<Value[]> values;
        size_t size = 0, used = 0;
    };
    static constexpr size_t kPiece = 4096;

    void advance(size_t count) {
        const size_t next = pieces_.empty() ? 0 : current_ + (pieces_[current_].used > 0);
        if (next == pieces_.size()) pieces_.emplace_back();
        if (pieces_[next].size < count) {
            const size_t size = std::max(count, kPiece);
            pieces_[next] = {std::make_unique<Value[]>(size), size};
        }
        current_ = next;
    }

    std::vector<Piece> pieces_;
    size_t current_ = 0;
};

/// The registers of one handler while it runs.
class Registers {
public:
    Registers(RegisterStack& stack, int32_t count)
        : stack_(stack), count_(static_cast<size_t>(count)), values_(stack.take(count_)) {}
    ~Registers() { stack_.giveBack(values_, count_); }
    Registers(const Registers&) = delete;
    Registers& operator=(const Registers&) = delete;

    Value* data() { return values_; }

private:
    RegisterStack& stack_;
    const size_t count_;
    Value* const values_;
};

}  // namespace krl::player
