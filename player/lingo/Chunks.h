#pragma once

#include <string>
#include <string_view>

#include "player/host/Objects.h"
#include "player/lingo/Syntax.h"

/// Chars, words, items and lines of a text, counted from 1. A char is one UTF-8 character.
namespace krl::player {

/// A range of a text in bytes.
struct Stretch {
    size_t begin = 0, end = 0;

    size_t length() const { return end - begin; }
    std::string_view of(std::string_view text) const { return text.substr(begin, length()); }
};

int32_t countChunks(std::string_view text, ChunkKind kind, char itemDelimiter);

/// The same for a text that knows where its characters are.
int32_t countIn(const StringObject& text, ChunkKind kind, char itemDelimiter);
Stretch findIn(const StringObject& text, ChunkKind kind, int32_t first, int32_t last, char itemDelimiter);

/// The range that a script means: a negative number is the last chunk.
std::pair<int32_t, int32_t> rangeOf(std::string_view text, ChunkKind kind, int32_t first, int32_t last,
                                    char itemDelimiter);

/// Chunk `first` to `last`; empty at the end of the text if there are fewer.
Stretch findChunk(std::string_view text, ChunkKind kind, int32_t first, int32_t last, char itemDelimiter);

/// `text` with that chunk replaced. Missing items and lines before it are added empty.
std::string withChunk(std::string_view text, ChunkKind kind, int32_t first, int32_t last, char itemDelimiter,
                      std::string_view replacement);

/// `text` without that chunk and the adjacent delimiter; without all blanks after a word, or before the last.
std::string withoutChunk(std::string_view text, ChunkKind kind, int32_t first, int32_t last,
                         char itemDelimiter);

}  // namespace krl::player
