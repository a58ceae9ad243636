#include "player/lingo/Chunks.h"

#include <algorithm>

namespace krl::player {

namespace {

bool isBlank(char letter) { return letter == ' ' || letter == '\t' || letter == '\r' || letter == '\n'; }

/// Walks a text chunk by chunk.
class ChunkWalk {
public:
    ChunkWalk(std::string_view text, ChunkKind kind, char itemDelimiter)
        : text_(text), kind_(kind), itemDelimiter_(itemDelimiter) {}

    /// Moves to the next chunk; false at the end. An empty text has no chunks, and a trailing delimiter
    /// is followed by an empty chunk.
    bool next(Stretch& chunk) {
        if (kind_ == ChunkKind::Word) return nextWord(chunk);
        if (kind_ == ChunkKind::Char) return nextChar(chunk);
        if (done_ || (text_.empty() && at_ == 0)) return false;
        chunk.begin = at_;
        while (at_ < text_.size() && delimiterAt(at_) == 0) ++at_;
        chunk.end = at_;
        done_ = at_ == text_.size();
        if (!done_) at_ += delimiterAt(at_);
        return true;
    }

    /// Length of the delimiter at `place` in bytes, 0 if there is none.
    size_t delimiterAt(size_t place) const {
        if (place >= text_.size()) return 0;
        const char letter = text_[place];
        if (kind_ == ChunkKind::Item) return letter == itemDelimiter_;
        if (kind_ == ChunkKind::Word) return isBlank(letter);
        if (letter == '\r' && place + 1 < text_.size() && text_[place + 1] == '\n') return 2;
        return kind_ == ChunkKind::Line && (letter == '\r' || letter == '\n');
    }

private:
    bool nextWord(Stretch& chunk) {
        while (at_ < text_.size() && isBlank(text_[at_])) ++at_;
        chunk.begin = at_;
        while (at_ < text_.size() && !isBlank(text_[at_])) ++at_;
        chunk.end = at_;
        return chunk.length() > 0;
    }

    bool nextChar(Stretch& chunk) {
        if (at_ >= text_.size()) return false;
        chunk.begin = at_++;
        while (at_ < text_.size() && (text_[at_] & 0xC0) == 0x80) ++at_;
        chunk.end = at_;
        return true;
    }

    std::string_view text_;
    ChunkKind kind_;
    char itemDelimiter_;
    size_t at_ = 0;
    bool done_ = false;
};

bool isPlain(std::string_view text) {
    return std::none_of(text.begin(), text.end(), [](char letter) { return letter & 0x80; });
}

}  // namespace

int32_t countChunks(std::string_view text, ChunkKind kind, char itemDelimiter) {
    if (kind == ChunkKind::Char && isPlain(text)) return static_cast<int32_t>(text.size());
    ChunkWalk walk(text, kind, itemDelimiter);
    Stretch chunk;
    int32_t count = 0;
    while (walk.next(chunk)) ++count;
    return count;
}

Stretch findChunk(std::string_view text, ChunkKind kind, int32_t first, int32_t last, char itemDelimiter) {
    const Stretch none{text.size(), text.size()};
    first = std::max(first, 1);
    if (last < first) return none;
    if (kind == ChunkKind::Char && isPlain(text))
        return {std::min(text.size(), static_cast<size_t>(first - 1)),
                std::min(text.size(), static_cast<size_t>(last))};
    ChunkWalk walk(text, kind, itemDelimiter);
    Stretch chunk, found = none;
    for (int32_t number = 1; number <= last && walk.next(chunk); ++number) {
        if (number == first) found.begin = chunk.begin;
        if (number >= first) found.end = chunk.end;
        if (number == INT32_MAX) break;
    }
    return found;
}

int32_t countIn(const StringObject& text, ChunkKind kind, char itemDelimiter) {
    return kind == ChunkKind::Char ? static_cast<int32_t>(text.length())
                                   : countChunks(text.text, kind, itemDelimiter);
}

Stretch findIn(const StringObject& text, ChunkKind kind, int32_t first, int32_t last, char itemDelimiter) {
    if (kind != ChunkKind::Char) return findChunk(text.text, kind, first, last, itemDelimiter);
    first = std::max(first, 1);
    if (last < first) return {text.text.size(), text.text.size()};
    return {text.beginOfChar(static_cast<size_t>(first - 1)), text.beginOfChar(static_cast<size_t>(last))};
}

std::pair<int32_t, int32_t> rangeOf(std::string_view text, ChunkKind kind, int32_t first, int32_t last,
                                    char itemDelimiter) {
    if (first >= 0 && last >= 0) return {first, last};
    const int32_t count = countChunks(text, kind, itemDelimiter);
    return {first < 0 ? count : first, last < 0 ? count : last};
}

std::string withChunk(std::string_view text, ChunkKind kind, int32_t first, int32_t last, char itemDelimiter,
                      std::string_view replacement) {
    std::string whole(text);
    if (kind == ChunkKind::Item || kind == ChunkKind::Line) {
        // One more chunk than delimiters, even in an empty text.
        const int32_t missing = first - std::max(countChunks(text, kind, itemDelimiter), 1);
        if (missing > 0)
            whole.append(static_cast<size_t>(missing), kind == ChunkKind::Item ? itemDelimiter : '\r');
    }
    const Stretch place = findChunk(whole, kind, first, last, itemDelimiter);
    return whole.replace(place.begin, place.length(), replacement);
}

std::string withoutChunk(std::string_view text, ChunkKind kind, int32_t first, int32_t last,
                         char itemDelimiter) {
    Stretch place = findChunk(text, kind, first, last, itemDelimiter);
    const ChunkWalk walk(text, kind, itemDelimiter);
    if (kind == ChunkKind::Word) {
        while (place.end < text.size() && isBlank(text[place.end])) ++place.end;
        if (place.end == text.size())
            while (place.begin > 0 && isBlank(text[place.begin - 1])) --place.begin;
    } else if (kind != ChunkKind::Char && place.length() + place.begin > 0) {
        if (const size_t after = walk.delimiterAt(place.end))
            place.end += after;
        else if (place.begin > 0 && place.begin < text.size() + 1 && walk.delimiterAt(place.begin - 1))
            --place.begin;
    }
    std::string whole(text);
    return whole.erase(place.begin, place.length());
}

}  // namespace krl::player
