#include "look/FusedCalls.h"

#include <algorithm>
#include <optional>
#include <stdexcept>

#include "core/Bands.h"
#include "kernels/curve/PixelCurves.h"
#include "look/PictureMemory.h"

namespace krl {

namespace {

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

bool treatsWholePictureAlike(const ReadyCall& call) {
    return call.method.isPerPixel() && call.extent.isWhole();
}

/// Each method prepares itself and hands its pass over; the next one is called from there, while the tables
/// of those before still exist. The last one's pass then runs them all.
class Fusion final : public SpanTaker {
public:
    Fusion(ImageEngine& engine, std::span<const ReadyCall> calls, const Picture& from, const Picture& to)
        : engine_(engine), calls_(calls), from_(from), to_(to) {
        passes_.reserve(calls.size());
    }

    ~Fusion() { engine_.handSpansTo(nullptr); }
    Fusion(const Fusion&) = delete;
    Fusion& operator=(const Fusion&) = delete;

    ChainResult run(int32_t bands) {
        const LoadedPicture loaded(engine_, to_);
        chooseBands(engine_, calls_.front().method, bands);
        engine_.handSpansTo(this);
        goOn();
        return std::move(made_);
    }

    Status take(const SpanWork& work, const ChannelCurves* curves) override {
        if (isOver_) throw std::logic_error("a method that treats every pixel alone makes a second pass");
        ++handedOver_;
        if (curves && !passes_.empty() && passes_.back().curves) {
            passes_.back().curves->append(*curves);
            passes_.back().work = nullptr;
        } else {
            passes_.push_back({&work, std::nullopt});
            if (curves) passes_.back().curves.emplace().append(*curves);
        }
        goOn();
        return status_;
    }

private:
    /// What a method does to a piece, or the curves of several methods after one another.
    struct Pass {
        const SpanWork* work;
        std::optional<PixelCurves> curves;

        void run(Pixel* first, Pixel* last) const {
            if (work)
                (*work)(first, last);
            else
                curves->apply(first, last);
        }
    };

    /// Makes the calls that are left, and runs the passes of all.
    void goOn() {
        if (next_ == calls_.size()) return runPasses();
        const size_t number = next_++, before = handedOver_;
        CallResult result = callMethod(calls_[number].method, engine_, calls_[number].arguments);
        const bool isFailure = !result.ok(), hasHandedOver = handedOver_ > before;
        if (made_.result.ok() && (isFailure || number + 1 == calls_.size()))
            made_ = {std::move(result), number};
        isOver_ |= isFailure;
        if (!isFailure && !hasHandedOver) goOn();  // it had nothing to do
    }

    void runPasses() {
        isOver_ = true;
        engine_.handSpansTo(nullptr);
        const Pixel* const start = engine_.buffer()->row(0);
        const uint8_t* const source = from_.pixels;
        status_ = forEachSpan(engine_, [&](Pixel* first, Pixel* last) {
            const auto count = static_cast<size_t>(last - first);
            uint8_t* const piece = firstByte(first);
            copySpan(source + (first - start) * kPixelBytes, piece, count, from_.order == PixelOrder::RGBA);
            for (const Pass& pass : passes_) pass.run(first, last);
            if (to_.order == PixelOrder::RGBA) copySpan(piece, piece, count, true);
        });
        engine_.handSpansTo(this);
    }

    ImageEngine& engine_;
    const std::span<const ReadyCall> calls_;
    const Picture &from_, &to_;
    size_t next_ = 0;
    bool isOver_ = false;    ///< the passes have run, or never will
    size_t handedOver_ = 0;  ///< passes
    std::vector<Pass> passes_;
    Status status_ = kStatusOk;
    ChainResult made_;
};

}  // namespace

bool canFuse(const ReadyCall& call, const Picture& from, const Picture& to) {
    if (!treatsWholePictureAlike(call)) return false;
    if (!isTight(from) || !isTight(to) || (!isSamePlace(from, to) && sharesMemory(from, to))) return false;
    return std::all_of(call.arguments.begin(), call.arguments.end(), [&](const Value& argument) {
        const auto* picture = argument.as<Picture>();
        if (!picture) return !holdsPictures(argument);
        return isTight(*picture) && hasSizeOf(*picture, from) && !sharesMemory(*picture, to);
    });
}

bool canRunOnStrips(const ReadyCall& call) {
    return treatsWholePictureAlike(call) &&
           std::none_of(call.arguments.begin(), call.arguments.end(), holdsPictures);
}

ChainResult runFused(ImageEngine& engine, int32_t bands, std::span<const ReadyCall> calls,
                     const Picture& from, const Picture& to) {
    try {
        return Fusion(engine, calls, from, to).run(bands);
    } catch (const Cancelled& cancelled) {
        ChainResult ended;
        ended.result.error = cancelled.what();
        ended.result.code = kCallCancelled;
        return ended;
    }
}

}  // namespace krl
