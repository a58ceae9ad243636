#include "look/Look.h"

#include <algorithm>
#include <optional>

#include "catalogue/Catalogue.h"
#include "catalogue/Letters.h"
#include "look/CallScope.h"
#include "look/FusedCalls.h"
#include "look/PictureMemory.h"
#include "look/Placement.h"

namespace krl {

namespace {

/// The size of picture for which calls are checked.
constexpr int32_t kCheckedWidth = 960, kCheckedHeight = 640;

/// What `$before` is short for: the picture that the look is applied to.
constexpr const char* kBefore = "before";
const std::string kBeforeText = "image(\"$before\")";

bool isBefore(const PictureReference& picture) { return picture.name == "$before"; }

const Method& methodNamed(const std::string& name) {
    const Method* method = catalogue().find(name);
    if (!method) throw std::invalid_argument("no method is called " + name);
    if (method->managesTheEngine())
        throw std::invalid_argument(method->shortName() + " manages the engine of a script");
    return *method;
}

/// Calls `visit` for every picture in a value that is yet to be found.
void visitPictures(Value& value, const std::function<void(Value& picture)>& visit) {
    if (value.as<PictureReference>()) return visit(value);
    if (auto* list = value.as<ListValue>())
        for (Value& item : *list) visitPictures(item, visit);
    if (auto* properties = value.as<PropertyListValue>())
        for (auto& entry : *properties) visitPictures(entry.second, visit);
}

void findPictures(CallNotation& call, const PictureFinder& find) {
    for (CallNotation::Argument& argument : call.arguments)
        visitPictures(argument.value, [&](Value& value) {
            const PictureReference wanted = *value.as<PictureReference>();
            Picture found;
            if (wanted.name.empty())
                found = Picture::blank(wanted.width, wanted.height, 255);
            else if (find)
                found = find(wanted.name);
            if (!found.pixels) throw std::invalid_argument("there is no picture " + wanted.name);
            value = found;
        });
}

ReadyCall readyCall(const CallNotation& call, int32_t width, int32_t height) {
    const Method& method = methodNamed(call.name);
    std::vector<GivenArgument> given;
    for (const CallNotation::Argument& argument : call.arguments)
        given.push_back({argument.name, &argument.value});
    Extent extent = takeExtent(method, given);
    const std::optional<Placement> placement = takePlacement(method, given);
    ReadyCall ready{method, std::move(extent), arrangeArguments(method, given, {width, height, {}})};
    if (placement) placePictures(method, *placement, width, height, ready.arguments);
    checkArguments(method, ready.arguments);
    return ready;
}

/// The calls of a look on the way from one picture to another, or back to the same. Those that treat every
/// pixel alone wait for more of their kind.
class LookRun {
public:
    /// `to` is tight.
    LookRun(ImageEngine& engine, int32_t bands, const Picture& from, const Picture& to)
        : engine_(engine), bands_(bands), now_(from), native_(to), to_(to) {
        native_.order = PixelOrder::BGRA;
    }
    /// After a failure `to` has its own order again.
    ~LookRun() {
        if (isSamePlace(now_, to_)) copyPixels(now_, to_);
    }
    LookRun(const LookRun&) = delete;
    LookRun& operator=(const LookRun&) = delete;

    const ImageInfo& size() const { return now_.info; }

    /// Throws `LookError` for this call or one that waited.
    void add(int32_t line, ReadyCall call) {
        const bool canWait = canFuse(call, now_, native_);
        if (!canWait || calls_.size() == kMostFused) runThose(native_);
        lines_.push_back(line);
        calls_.push_back(std::move(call));
        if (!canWait) runWhole();
    }

    /// Runs the calls that wait. Throws `LookError`.
    void runWaiting() { runThose(native_); }

    /// The picture after all calls: `to`, or the one that a call has made. Throws `LookError`.
    Picture finish() {
        runThose(to_);
        moveTo(to_);
        return to_;
    }

private:
    void runThose(const Picture& target) {
        if (calls_.empty()) return;
        if (calls_.size() == 1 && isIn(now_, native_)) return runWhole();
        settle(runFused(engine_, bands_, calls_, now_, target));
        now_ = target;
    }

    void runWhole() {
        moveTo(native_);
        const ReadyCall& call = calls_.front();
        CallResult made;
        try {
            made = callWithin(call.extent, native_, [&] {
                const LoadedPicture loaded(engine_, native_);
                chooseBands(engine_, call.method, bands_);
                return callMethod(call.method, engine_, call.arguments);
            });
        } catch (const ArgumentError& error) {
            throw LookError(lines_.front(), error.what());
        }
        const Picture* const picture = made.firstPicture();
        settle({made, 0});
        if (!picture) return;
        moveTo(to_);
        now_ = native_ = to_ = *picture;
    }

    void settle(const ChainResult& made) {
        if (!made.result.ok())
            throw LookError(lines_[made.number],
                            calls_[made.number].method.shortName() + ": " + made.result.error)
                .causedBy(made.result);
        lines_.clear();
        calls_.clear();
    }

    static bool isIn(const Picture& a, const Picture& b) { return isSamePlace(a, b) && a.order == b.order; }
    void moveTo(const Picture& target) {
        if (!isIn(now_, target)) copyPixels(now_, target);
        now_ = target;
    }

    ImageEngine& engine_;
    const int32_t bands_;
    Picture now_, native_, to_;
    std::vector<int32_t> lines_;
    std::vector<ReadyCall> calls_;
};

}  // namespace

LookError&& LookError::causedBy(const CallResult& result) && {
    scriptError_ = result.error;
    code_ = result.code;
    return std::move(*this);
}

CallNotation Look::notationOf(const LookStep& step, int32_t width, int32_t height,
                              const std::function<void(const Argument*, std::string_view)>& used) const {
    const Argument* current = nullptr;
    NotationScope scope = callScope(width, height, [&](const Argument* argument) { current = argument; });
    scope.named = [&](std::string_view name) -> const std::string* {
        if (sameLetters(name, kBefore)) return &kBeforeText;
        if (used) used(current, name);
        for (const LookParameter& parameter : parameters_)
            if (sameLetters(parameter.name, name)) return &parameter.value;
        return nullptr;
    };
    return readCallNotation(step.text, scope);
}

void Look::check(const LookStep& step) const {
    try {
        CallNotation call = notationOf(step, kCheckedWidth, kCheckedHeight);
        findPictures(call, [](const std::string&) { return Picture::blank(1, 1); });
        readyCall(call, kCheckedWidth, kCheckedHeight);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& error) {
        throw LookError(step.line, error.what());
    }
}

/// Notes which argument a parameter is for.
void Look::linkParameters(const LookStep& step) {
    notationOf(step, kCheckedWidth, kCheckedHeight, [&](const Argument* argument, std::string_view name) {
        LookParameter* parameter = parameterNamed(name);
        if (parameter && !parameter->argument) parameter->argument = argument;
    });
}

LookParameter* Look::parameterNamed(std::string_view name) {
    const auto named = [&](const LookParameter& parameter) { return sameLetters(parameter.name, name); };
    const auto found = std::find_if(parameters_.begin(), parameters_.end(), named);
    return found != parameters_.end() ? &*found : nullptr;
}

std::vector<std::string> Look::pictureNames() const {
    std::vector<std::string> names;
    for (const LookStep& step : steps_) {
        CallNotation call = notationOf(step, kCheckedWidth, kCheckedHeight);
        for (CallNotation::Argument& argument : call.arguments)
            visitPictures(argument.value, [&](Value& value) {
                const std::string& name = value.as<PictureReference>()->name;
                if (isBefore(*value.as<PictureReference>())) return;
                if (!name.empty() && std::find(names.begin(), names.end(), name) == names.end())
                    names.push_back(name);
            });
    }
    return names;
}

void Look::set(std::string_view name, std::string_view value) {
    LookParameter* parameter = parameterNamed(name);
    if (!parameter) {
        std::string known;
        for (const LookParameter& one : parameters_) known += (known.empty() ? "" : ", ") + one.name;
        throw LookError(0, "no parameter is called " + std::string(name) + "; " +
                               (known.empty() ? "the look has none" : "there is " + known));
    }
    const std::string before = parameter->value;
    const bool isSymbol = parameter->standard.starts_with('#') && !value.starts_with('#');
    parameter->value = (isSymbol ? "#" : "") + std::string(value);
    try {
        for (const LookStep& step : steps_) check({step.text, 0});
    } catch (const LookError& error) {
        parameter->value = before;
        throw LookError(0, parameter->name + ": " + error.what());
    }
}

bool Look::takesBefore() const {
    bool isTaken = false;
    for (const LookStep& step : steps_)
        for (CallNotation::Argument& argument : notationOf(step, kCheckedWidth, kCheckedHeight).arguments)
            visitPictures(argument.value,
                          [&](Value& value) { isTaken |= isBefore(*value.as<PictureReference>()); });
    return isTaken;
}

void Look::apply(ImageEngine& engine, Picture& picture, int32_t bands, const PictureFinder& find) const {
    picture = apply(engine, picture, picture, bands, find);
}

Picture Look::apply(ImageEngine& engine, const Picture& from, const Picture& to, int32_t bands,
                    const PictureFinder& find) const {
    const Picture before = takesBefore() ? copyOf(from, PixelOrder::BGRA) : Picture();
    const PictureFinder findAny = [&](const std::string& name) {
        return name == "$before" ? before : find ? find(name) : Picture();
    };
    LookRun run(engine, bands, from, to);
    for (const LookStep& step : steps_) {
        std::optional<ReadyCall> ready;
        std::string mistake;
        try {
            CallNotation call = notationOf(step, run.size().width, run.size().height);
            findPictures(call, findAny);
            ready.emplace(readyCall(call, run.size().width, run.size().height));
        } catch (const std::bad_alloc&) {
            throw;
        } catch (const std::exception& error) {
            mistake = error.what();
        }
        if (!ready) {
            run.runWaiting();
            throw LookError(step.line, mistake);
        }
        run.add(step.line, std::move(*ready));
    }
    return run.finish();
}

}  // namespace krl
