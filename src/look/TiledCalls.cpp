#include "look/TiledCalls.h"

#include <algorithm>
#include <chrono>
#include <optional>

#include "core/Bands.h"
#include "core/Scratch.h"
#include "core/Thread.h"
#include "look/HelpingEngine.h"
#include "look/PictureMemory.h"

namespace krl {

namespace {

/// Pixels of a tile. With a second picture, it fits into the second-level cache of most processors.
constexpr int64_t kLeastPixels = 1 << 16, kMostCachedPixels = 1 << 18;

/// Pixels for each nanosecond of preparation: the fastest calls take about as long for three.
constexpr int64_t kPixelsPerNanosecond = 8;

/// Calls that prepare themselves for longer gain nothing from tiles that fit into a cache.
constexpr std::chrono::nanoseconds kMostPreparation = std::chrono::microseconds(64);

using Nanoseconds = std::chrono::nanoseconds;

/// The tiles of a picture in the order of its memory: whole rows, or parts of one where a row is longer.
class Tiles {
public:
    Tiles(const ImageInfo& size, int64_t pixels)
        : size_(size),
          width_(static_cast<int32_t>(std::min<int64_t>(size.width, pixels))),
          height_(static_cast<int32_t>(pixels / width_)),
          across_((size.width - 1) / width_ + 1) {}

    int32_t count() const { return across_ * ((size_.height - 1) / height_ + 1); }
    Tile operator[](int32_t index) const {
        const int32_t x = index % across_ * width_, y = index / across_ * height_;
        return {x, y, std::min(width_, size_.width - x), std::min(height_, size_.height - y)};
    }

private:
    const ImageInfo size_;
    const int32_t width_, height_, across_;
};

bool hasSizeOf(const Picture& picture, const Picture& other) {
    return picture.info.width == other.info.width && picture.info.height == other.info.height;
}

bool holdsPictures(const Value& value) {
    if (const auto* list = value.as<ListValue>())
        return std::any_of(list->begin(), list->end(), holdsPictures);
    if (const auto* properties = value.as<PropertyListValue>())
        return std::any_of(properties->begin(), properties->end(),
                           [](const auto& entry) { return holdsPictures(entry.second); });
    return value.as<Picture>();
}

/// Room for a tile that is in no form that methods take.
class TileRoom {
public:
    /// A native picture of the size of `part`, valid until the next one.
    Picture shapedAs(const Picture& part) {
        const auto count = static_cast<size_t>(part.info.width) * static_cast<size_t>(part.info.height);
        if (pixels_.size() < count) pixels_ = Scratch<Pixel>(count);
        Picture room = part;
        room.pixels = reinterpret_cast<uint8_t*>(pixels_.data());
        room.info.rowBytes = room.info.width * static_cast<int32_t>(sizeof(Pixel));
        room.order = PixelOrder::BGRA;
        return room;
    }
    /// `part` itself if it is native, or a copy that is.
    Picture nativeOf(const Picture& part) {
        if (isNative(part)) return part;
        const Picture copy = shapedAs(part);
        copyPixels(part, copy);
        return copy;
    }

private:
    Scratch<Pixel> pixels_;
};

/// One call on the tiles of one thread: its arguments, with the tile's part of each picture.
class TiledCall {
public:
    explicit TiledCall(const ReadyCall& call)
        : call_(call), arguments_(call.arguments), extent_(call.extent), rooms_(call.arguments.size()) {}

    CallResult run(ImageEngine& engine, const Picture& part, const Tile& tile) {
        for (size_t i = 0; i < arguments_.size(); ++i)
            if (const auto* whole = call_.arguments[i].as<Picture>())
                *arguments_[i].as<Picture>() = rooms_[i].nativeOf(partOf(*whole, tile));
        if (extent_.mask) extent_.mask = maskRoom_.nativeOf(partOf(*call_.extent.mask, tile));
        if (extent_.region) extent_.region = shifted(*call_.extent.region, tile);
        return callWithin(extent_, part, [&] { return callMethod(call_.method, engine, arguments_); });
    }

private:
    static Region shifted(const Region& region, const Tile& tile) {
        const auto less = [](int32_t side, int32_t by) {
            return static_cast<int32_t>(std::max(int64_t{side} - by, int64_t{INT32_MIN}));
        };
        return {less(region.left, tile.x), less(region.top, tile.y), less(region.right, tile.x),
                less(region.bottom, tile.y)};
    }

    const ReadyCall& call_;
    std::vector<Value> arguments_;
    Extent extent_;
    std::vector<TileRoom> rooms_;
    TileRoom maskRoom_;
};

/// All calls on the tiles of one thread.
class TileWorker {
public:
    TileWorker(ImageEngine& engine, const ImageEngine& owner, std::span<const ReadyCall> calls,
               const Picture& from, const Picture& to)
        : engine_(engine), owner_(owner), calls_(calls.begin(), calls.end()), from_(from), to_(to) {
        engine_.setThreadCount(1);
    }

    /// Reads the tile, runs all calls on it and writes it.
    ChainResult run(const Tile& tile) {
        owner_.throwIfCancelled();
        const Picture target = partOf(to_, tile);
        Picture part = target;
        part.order = PixelOrder::BGRA;
        if (!isTight(target)) part = room_.shapedAs(target);
        copyPixels(partOf(from_, tile), part);
        ChainResult made = runCalls(part, tile);
        if (made.result.ok()) copyPixels(part, target);
        return made;
    }

    /// Runs all calls on a copy of the tile.
    ChainResult tryOn(const Tile& tile) {
        const Picture part = partOf(from_, tile), copy = room_.shapedAs(part);
        copyPixels(part, copy);
        return runCalls(copy, tile);
    }

    /// Writes the tile that they were just tried on.
    void keep(const Tile& tile) {
        owner_.throwIfCancelled();
        const Picture target = partOf(to_, tile);
        copyPixels(room_.shapedAs(target), target);
    }

private:
    ChainResult runCalls(const Picture& part, const Tile& tile) {
        const LoadedPicture loaded(engine_, part);
        ChainResult made;
        for (made.failed = 0; made.failed < calls_.size(); ++made.failed) {
            made.result = calls_[made.failed].run(engine_, part, tile);
            if (!made.result.ok()) return made;
        }
        return made;
    }

    ImageEngine& engine_;
    const ImageEngine& owner_;  ///< the one that is cancelled
    std::vector<TiledCall> calls_;
    const Picture &from_, &to_;
    TileRoom room_;
};

/// Runs the calls on a picture that is no larger than a tile.
ChainResult runOnOneTile(TileWorker& worker, const ImageInfo& size) {
    const Tile all{0, 0, size.width, size.height};
    ChainResult made = worker.tryOn(all);
    if (made.result.ok()) worker.keep(all);
    return made;
}

/// What the calls come to on one pixel, and how long they take for that: what they need to prepare
/// themselves.
struct Trial {
    ChainResult made;
    Nanoseconds duration{0};
};

Trial tryOut(TileWorker& worker) {
    const Tile pixel{0, 0, 1, 1};
    Trial trial{worker.tryOn(pixel)};
    if (!trial.made.result.ok()) return trial;
    // The first time includes what is not yet in the processor's caches.
    const auto start = std::chrono::steady_clock::now();
    trial.made = worker.tryOn(pixel);
    trial.duration = std::chrono::steady_clock::now() - start;
    return trial;
}

/// The pixels of a tile for calls that together take `preparation` before every one: no more than the share
/// of one thread, unless that makes a tile too small.
int64_t tilePixels(Nanoseconds preparation, size_t calls, const ImageInfo& size, int32_t threads) {
    const int64_t share = (int64_t{size.width} * size.height - 1) / threads + 1;
    const bool isCached = preparation <= kMostPreparation * static_cast<int64_t>(calls);
    const int64_t most = isCached ? std::min(share, kMostCachedPixels) : share;
    return std::max(kLeastPixels, std::min(most, preparation.count() * kPixelsPerNanosecond));
}

/// The first failure of a thread, or none. One of them works with the caller's engine.
ChainResult runBandsOfTiles(ImageEngine& engine, int32_t bands, const Tiles& tiles,
                            std::span<const ReadyCall> calls, const Picture& from, const Picture& to) {
    std::vector<std::optional<ChainResult>> failures(static_cast<size_t>(bands));
    // Always ok: this thread does the work of those that cannot start.
    static_cast<void>(runBands(engine, false, bands, [&](int32_t band) {
        std::optional<HelpingEngine> help;
        if (band > 0) help.emplace();
        TileWorker worker(help ? help->get() : engine, engine, calls, from, to);
        const IndexRange mine = lineBand(tiles.count(), bands, band);
        for (int32_t i = mine.first; i < mine.last; ++i)
            if (ChainResult made = worker.run(tiles[i]); !made.result.ok()) {
                failures[static_cast<size_t>(band)] = std::move(made);
                return;
            }
    }));
    for (std::optional<ChainResult>& failure : failures)
        if (failure) return std::move(*failure);
    return {};
}

}  // namespace

bool canRunOnTiles(const ReadyCall& call, const Picture& from, const Picture& to) {
    if (!call.method.isPerPixel()) return false;
    const auto isBeside = [&](const Picture& picture) {
        return hasSizeOf(picture, from) && !sharesMemory(picture, to);
    };
    if (call.extent.mask && !isBeside(*call.extent.mask)) return false;
    if (!isSamePlace(from, to) && sharesMemory(from, to)) return false;
    return std::all_of(call.arguments.begin(), call.arguments.end(), [&](const Value& argument) {
        const auto* picture = argument.as<Picture>();
        return picture ? isBeside(*picture) : !holdsPictures(argument);
    });
}

ChainResult runOnTiles(ImageEngine& engine, int32_t bands, std::span<const ReadyCall> calls,
                       const Picture& from, const Picture& to) {
    try {
        TileWorker worker(engine, engine, calls, from, to);
        if (int64_t{to.info.width} * to.info.height <= kLeastPixels) return runOnOneTile(worker, to.info);
        Trial trial = tryOut(worker);
        if (!trial.made.result.ok()) return std::move(trial.made);
        const int32_t threads = bands > 0 ? bands : processorCount();
        const Tiles tiles(to.info, tilePixels(trial.duration, calls.size(), to.info, threads));
        ChainResult failed =
            runBandsOfTiles(engine, std::min(threads, tiles.count()), tiles, calls, from, to);
        return failed.result.ok() ? std::move(trial.made) : std::move(failed);
    } catch (const Cancelled& cancelled) {
        ChainResult ended;
        ended.result.error = cancelled.what();
        ended.result.code = kCallCancelled;
        return ended;
    }
}

}  // namespace krl
