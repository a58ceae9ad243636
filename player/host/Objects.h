#pragma once

#include <array>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "player/host/Heap.h"
#include "player/host/ShallowImage.h"
#include "player/pictures/Picture.h"

/// The heap objects shared by the plug-in and scripts.
namespace krl::player {

struct StringObject : Object {
    static constexpr Kind kKind = Kind::String;
    explicit StringObject(std::string characters) : text(std::move(characters)) {}
    size_t bytes() const override {
        return sizeof(*this) + text.capacity() + (index_ ? index_->capacity() * sizeof(size_t) : 0);
    }

    const char* limitedName() const override { return "string"; }

    /// Appends to the text, which nothing else may hold.
    void append(std::string_view more);
    /// The number of characters.
    size_t length() const;
    /// Whether every character takes one byte.
    bool isPlain() const {
        survey();
        return !index_;
    }
    /// The byte where the character `number`, from 0, begins; the end of the text if there are fewer.
    size_t beginOfChar(size_t number) const;

    std::string text;  ///< changed only by `append`

private:
    static constexpr size_t kStep = 64;
    void survey() const {
        if (surveyed_ != text.size()) surveyRest();
    }
    void surveyRest() const;

    /// In a text beyond ASCII, the byte of every 64th character.
    mutable std::unique_ptr<std::vector<size_t>> index_;
    mutable size_t length_ = 0, surveyed_ = 0;
};

struct ListObject : Object {
    static constexpr Kind kKind = Kind::List;
    size_t bytes() const override { return sizeof(*this) + items.capacity() * sizeof(Value); }
    const char* limitedName() const override { return "list"; }
    void eachChild(const std::function<void(const Value&)>& show) const override {
        for (const Value& item : items) show(item);
    }
    void dropChildren() override { items.clear(); }

    std::vector<Value> items;
    bool sorted = false;  ///< `sort` was called: `add` keeps the order
};

struct PropertyListObject : Object {
    static constexpr Kind kKind = Kind::PropertyList;
    struct Entry {
        Value key, value;
    };
    size_t bytes() const override { return sizeof(*this) + entries.capacity() * sizeof(Entry); }
    const char* limitedName() const override { return "list"; }
    void eachChild(const std::function<void(const Value&)>& show) const override {
        for (const Entry& entry : entries) {
            show(entry.key);
            show(entry.value);
        }
    }
    void dropChildren() override { entries.clear(); }

    /// The first entry that may have `key`, from an index once there are many; sets `certain` where no other
    /// can.
    const Entry* guess(const Value& key, bool& certain) const;
    /// To be called after entries were removed, moved or inserted before others.
    void reordered() { index_.reset(); }

    std::vector<Entry> entries;
    bool sorted = false;

private:
    struct Index;
    struct IndexDeleter {
        void operator()(Index* index) const;
    };
    mutable std::unique_ptr<Index, IndexDeleter> index_;
};

/// A point is two numbers, a rect four: `locH, locV` and `left, top, right, bottom`.
template <Kind OfKind, size_t Count>
struct CoordinatesObject : Object {
    static constexpr Kind kKind = OfKind;
    static constexpr size_t kCount = Count;
    explicit CoordinatesObject(std::array<Value, Count> numbers) : values(std::move(numbers)) {}
    size_t bytes() const override { return sizeof(*this); }
    void eachChild(const std::function<void(const Value&)>& show) const override {
        for (const Value& value : values) show(value);
    }
    void dropChildren() override { values.fill(Value()); }

    std::array<Value, Count> values;
};
using PointObject = CoordinatesObject<Kind::Point, 2>;
using RectObject = CoordinatesObject<Kind::Rect, 4>;

/// An image. Its pixels never move. A lock keeps it alive, since the plug-in may hold only the address.
struct ImageObject : Object {
    static constexpr Kind kKind = Kind::Image;
    explicit ImageObject(Bitmap pixels, int32_t bitsPerPixel = 32, Palette colours = Palette::System)
        : bitmap(std::move(pixels)), depth(bitsPerPixel), palette(colours) {}
    size_t bytes() const override { return sizeof(*this) + bitmap.pixels.capacity() * sizeof(Pixel); }
    int32_t width() const { return bitmap.width; }
    int32_t height() const { return bitmap.height; }
    bool holds(int64_t x, int64_t y) const { return x >= 0 && y >= 0 && x < width() && y < height(); }

    bool isIndexed() const { return depth <= 8; }
    PixelFormat format() const { return {depth, palette}; }

    Bitmap bitmap;    ///< in the colours that the format has
    int32_t depth;    ///< 1, 2, 4, 8, 16, 24 or 32; only 32 has alpha
    Palette palette;  ///< up to 8 bits
    bool useAlpha = true;
    int32_t locks = 0;
    std::vector<uint8_t> shallowRows{};  ///< what a lock of fewer than 32 bits shows
};

/// A white, opaque image. Throws `HostError` for a side below 1, more than 2 GiB or too little memory.
Value makeImage(Heap& heap, int64_t width, int64_t height, int32_t depth = 32,
                Palette palette = Palette::System);

}  // namespace krl::player
