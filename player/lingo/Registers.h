#pragma once

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "player/host/Value.h"

namespace krl::player {

/// The registers of all running handlers, in pieces that never move.
class RegisterStack {
public:
    /// The next `count` registers. They hold anything without an object.
    Value* take(size_t count) {
        if (static_cast<size_t>(end_ - free_) < count) advance(count);
        return std::exchange(free_, free_ + count);
    }
    /// Returns the last ones that were taken.
    void giveBack(Value* registers, size_t count) {
        for (size_t i = 0; i < count; ++i)
            if (registers[i].hasObject()) registers[i] = Value();
        free_ = registers;
        if (free_ == first_ && current_ > 0) retreat();
    }

private:
    struct Piece {
        std::unique_ptr<Value[]> values;
        size_t size = 0;
        Value* free = nullptr;  ///< where the used ones end, while the next piece is in use
    };
    static constexpr size_t kPiece = 4096;

    void advance(size_t count) {
        const size_t next = current_ + (free_ == first_ ? 0 : 1);
        if (next == pieces_.size()) pieces_.emplace_back();
        pieces_[current_].free = free_;
        if (pieces_[next].size < count) {
            const size_t size = std::max(count, kPiece);
            pieces_[next] = {std::make_unique<Value[]>(size), size};
        }
        use(next);
        free_ = first_;
    }

    void retreat() {
        use(current_ - 1);
        free_ = pieces_[current_].free;
    }

    void use(size_t piece) {
        current_ = piece;
        first_ = pieces_[piece].values.get();
        end_ = first_ + pieces_[piece].size;
    }

    std::vector<Piece> pieces_;
    size_t current_ = 0;
    Value *first_ = nullptr, *free_ = nullptr, *end_ = nullptr;  ///< of the current piece
};

}  // namespace krl::player
