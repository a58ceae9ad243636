#include "player/cli/CatalogueCalls.h"

#include <algorithm>
#include <cstring>

#include "catalogue/DirectCall.h"
#include "catalogue/Notation.h"

namespace krl::player {

namespace {

/// The working memory that is kept, in pictures of the last one's size.
constexpr size_t kKeptPictures = 16;

/// The memory of a picture as the catalogue has it.
krl::Picture viewOf(Bitmap& picture) {
    krl::Picture view;
    view.pixels = firstByte(picture.pixels.data());
    view.info.width = picture.width;
    view.info.height = picture.height;
    view.info.rowBytes = picture.width * static_cast<int32_t>(sizeof(Pixel));
    return view;
}

/// The result as scripts see it: `[#error: 0]`, or the entries of a method that has no `error`.
std::string shownText(const Method& method, const CallResult& result) {
    if (method.isSilent()) return "";
    if (method.makesPictureList() && result.ok()) return writeNotation(result.pictures);
    PropertyListValue shown;
    if (!result.ok())
        shown.emplace_back(Symbol{"error"}, result.error);
    else if (result.withError)
        shown.emplace_back(Symbol{"error"}, int32_t{0});
    for (const auto& [key, value] : result.entries) shown.emplace_back(Symbol{key}, value);
    return writeNotation(shown);
}

CallOutcome outcomeOf(const Method& method, const CallResult& result) {
    CallOutcome outcome;
    outcome.error = result.error;
    outcome.shown = shownText(method, result);
    return outcome;
}

void replace(Bitmap& picture, const krl::Picture& made) {
    picture.width = made.info.width;
    picture.height = made.info.height;
    picture.pixels.resize(static_cast<size_t>(made.info.width) * static_cast<size_t>(made.info.height));
    std::memcpy(picture.pixels.data(), made.pixels, picture.pixels.size() * sizeof(Pixel));
}

/// Copies the pictures among the arguments of a method that rewrites them, so that the next call gets the
/// originals.
std::vector<krl::Value> withCopiedPictures(std::vector<krl::Value> arguments) {
    for (krl::Value& argument : arguments)
        if (auto* picture = argument.as<krl::Picture>()) {
            const krl::Picture original = *picture;
            *picture = krl::Picture::blank(original.info.width, original.info.height);
            std::memcpy(
                picture->pixels, original.pixels,
                static_cast<size_t>(original.info.rowBytes) * static_cast<size_t>(original.info.height));
        }
    return arguments;
}

/// How many of the first calls can run together on `picture`.
size_t countFusible(std::span<const ReadyCall> calls, const krl::Picture& picture) {
    const std::span<const ReadyCall> few = calls.first(std::min(calls.size(), kMostFused));
    const auto end = std::find_if(few.begin(), few.end(),
                                  [&](const ReadyCall& call) { return !canFuse(call, picture, picture); });
    return static_cast<size_t>(end - few.begin());
}

}  // namespace

CatalogueCalls::CatalogueCalls(ThreadChoice threads) : bands_(threads == ThreadChoice::One ? 1 : 0) {
    engine_.allocateTables();
    engine_.buildTables();
}

CallOutcome CatalogueCalls::apply(Bitmap& picture, const ReadyCall& call) {
    return applyOn(bands_, picture, call);
}

CallOutcome CatalogueCalls::applyOn(int32_t bands, Bitmap& picture, const ReadyCall& call) {
    const Method& method = call.method;
    const krl::Picture view = viewOf(picture);
    CallResult result;
    try {
        result = callWithin(call.extent, view, [&] {
            const LoadedPicture loaded(engine_, view);
            chooseBands(engine_, method, bands);
            if (keepsMemory_) keptMemory_.set(engine_.buffer()->bytes() * kKeptPictures);
            return callMethod(method, engine_,
                              method.changedPicture() ? withCopiedPictures(call.arguments) : call.arguments);
        });
    } catch (const ArgumentError& error) {
        CallOutcome outcome;
        outcome.error = error.what();
        return outcome;
    }
    if (const krl::Picture* made = result.firstPicture()) replace(picture, *made);
    return outcomeOf(method, result);
}

std::vector<CallOutcome> CatalogueCalls::apply(Bitmap& picture, std::span<const ReadyCall> calls) {
    return applyOn(bands_, picture, calls);
}

std::vector<CallOutcome> CatalogueCalls::applyToStrip(Bitmap& strip, std::span<const ReadyCall> calls) {
    return applyOn(1, strip, calls);
}

std::vector<CallOutcome> CatalogueCalls::applyOn(int32_t bands, Bitmap& picture,
                                                 std::span<const ReadyCall> calls) {
    const krl::Picture view = viewOf(picture);
    std::vector<CallOutcome> outcomes;
    while (outcomes.size() < calls.size() && (outcomes.empty() || outcomes.back().ok())) {
        const std::span<const ReadyCall> left = calls.subspan(outcomes.size());
        const size_t count = countFusible(left, view);
        if (count < 2) {
            outcomes.push_back(applyOn(bands, picture, left.front()));
            continue;
        }
        const ChainResult made = runFused(engine_, bands, left.first(count), view, view);
        for (size_t i = 0; i <= made.number; ++i)
            outcomes.push_back(outcomeOf(left[i].method, i == made.number ? made.result : CallResult()));
    }
    return outcomes;
}

CallOutcome CatalogueCalls::apply(Bitmap& picture, const ReadyLook& look) {
    CallOutcome outcome;
    krl::Picture working = viewOf(picture);
    try {
        look.look.apply(engine_, working, bands_, [&](const std::string& name) {
            const auto found = look.pictures.find(name);
            return found != look.pictures.end() ? found->second : krl::Picture();
        });
    } catch (const LookError& error) {
        outcome.error = error.what();
    }
    if (working.pixels != firstByte(picture.pixels.data())) replace(picture, working);
    return outcome;
}

}  // namespace krl::player
