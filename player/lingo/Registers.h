#pragma once

#include <memory>
#include <vector>

#include "player/host/Value.h"

namespace krl::player {

/// The registers of all running handlers, in pieces that never move.
class RegisterStack {
public:
    /// The next `count` registers. They hold anything without an object.
    Value* take(size_t count) {
        if (pieces_.empty() || pieces_[current_].size - pieces_[current_].used < count) advance(count);
        Piece& piece = pieces_[current_];
        piece.used += count;
        return piece.values.get() + (piece.used - count);
    }
    /// Returns the last ones that were taken.
    void giveBack(Value* registers, size_t count) {
        for (size_t i = 0; i < count; ++i)
            if (registers[i].hasObject()) registers[i] = Value();
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

}  // namespace krl::player
