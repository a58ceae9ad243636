#include "look/Look.h"

#include <algorithm>

#include "catalogue/Catalogue.h"
#include "catalogue/Letters.h"
#include "look/CallScope.h"
#include "look/Extent.h"

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

/// A call with everything in the place where it takes effect.
struct ReadyCall {
    const Method& method;
    Extent extent;
    std::vector<Value> arguments;
};

ReadyCall readyCall(const CallNotation& call, int32_t width, int32_t height) {
    const Method& method = methodNamed(call.name);
    std::vector<GivenArgument> given;
    for (const CallNotation::Argument& argument : call.arguments)
        given.push_back({argument.name, &argument.value});
    Extent extent = takeExtent(method, given);
    ReadyCall ready{method, std::move(extent), arrangeArguments(method, given, {width, height, {}})};
    checkArguments(method, ready.arguments);
    return ready;
}

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

void Look::addCall(const std::string& text, int32_t line) {
    const LookStep step{text, line};
    if (text.find_first_of("\r\n") != std::string::npos) throw LookError(line, "a call is one line");
    check(step);
    linkParameters(step);
    steps_.push_back(step);
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
    const Picture before = takesBefore() ? copyOf(picture) : Picture();
    const PictureFinder findAny = [&](const std::string& name) {
        return name == "$before" ? before : find ? find(name) : Picture();
    };
    for (const LookStep& step : steps_) {
        const int32_t width = picture.info.width, height = picture.info.height;
        CallResult result;
        std::string name;
        try {
            CallNotation call = notationOf(step, width, height);
            findPictures(call, findAny);
            const ReadyCall ready = readyCall(call, width, height);
            name = ready.method.shortName();
            result = callWithin(ready.extent, picture, [&] {
                const LoadedPicture loaded(engine, picture);
                chooseBands(engine, ready.method, bands);
                return callMethod(ready.method, engine, ready.arguments);
            });
        } catch (const std::bad_alloc&) {
            throw;
        } catch (const std::exception& error) {
            throw LookError(step.line, error.what());
        }
        if (!result.ok()) throw LookError(step.line, name + ": " + result.error).causedBy(result);
        if (const Picture* made = result.firstPicture()) picture = *made;
    }
}

}  // namespace krl
