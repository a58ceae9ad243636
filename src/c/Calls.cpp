#include <cstring>
#include <optional>
#include <string_view>

#include "c/Handles.h"
#include "c/Pictures.h"
#include "catalogue/Arguments.h"
#include "catalogue/Catalogue.h"
#include "catalogue/DirectCall.h"
#include "look/CallScope.h"
#include "look/FusedCalls.h"
#include "look/PictureMemory.h"
#include "look/Placement.h"

/// Engines, calls and results of the C interface.
namespace krl::c {

krl_code codeOf(ArgumentFault fault) {
    switch (fault) {
        case ArgumentFault::NoSuchArgument:
            return KRL_NO_SUCH_ARGUMENT;
        case ArgumentFault::TooMany:
            return KRL_TOO_MANY;
        case ArgumentFault::GivenTwice:
            return KRL_GIVEN_TWICE;
        case ArgumentFault::Missing:
            return KRL_MISSING;
        case ArgumentFault::WrongKind:
            return KRL_WRONG_KIND;
        case ArgumentFault::NoSuchChoice:
            return KRL_NO_SUCH_CHOICE;
    }
    return KRL_BAD_USE;
}

krl_code codeOf(CallCode failure) {
    if (failure == kCallCancelled) return KRL_CANCELLED;
    return failure == kCallOutOfMemory ? KRL_OUT_OF_MEMORY : KRL_METHOD_FAILED;
}

void giveOrder(Value& value, PixelOrder order) {
    Picture* picture = value.as<Picture>();
    if (!picture) return;
    const Picture before = *picture;
    picture->order = order;
    copyPixels(before, *picture);
}

namespace {

const Method& methodNamed(std::string_view name) {
    const Method* method = catalogue().find(name);
    if (!method) throw Problem{KRL_NO_SUCH_METHOD, "no method is called " + std::string(name)};
    if (method->managesTheEngine())
        throw Problem{KRL_NOT_CALLABLE, method->shortName() + " manages the engine of a script"};
    return *method;
}

/// The pictures of a caller; `from` is null for a call in place.
std::optional<Route> routeOf(const Method& method, const krl_picture* from, const krl_picture* to) {
    if (!from && !to) {
        if (method.rewritesPicture())
            throw Problem{KRL_MISSING, method.shortName() + " works on a picture, got none"};
        return std::nullopt;
    }
    return requireRoute(from, to, method.shortName() + ": ");
}

/// Copies of the pictures in `value` that share memory with `target`.
void separate(Value& value, const Picture& target) {
    if (auto* picture = value.as<Picture>()) {
        if (sharesMemory(*picture, target)) *picture = copyOf(*picture);
    } else if (auto* list = value.as<ListValue>()) {
        for (Value& item : *list) separate(item, target);
    } else if (auto* properties = value.as<PropertyListValue>()) {
        for (auto& entry : *properties) separate(entry.second, target);
    }
}

/// Lets a call into another picture write that one, whatever is read from the same memory.
void separate(Route& route, ReadyCall& call) {
    if (route.isInPlace()) return;
    route.from = route.apartFrom();
    if (!call.method.rewritesPicture()) return;
    for (Value& argument : call.arguments) separate(argument, route.to);
    if (call.extent.mask && sharesMemory(*call.extent.mask, route.to))
        call.extent.mask = copyOf(*call.extent.mask);
}

/// Runs the method on pictures in the form that it takes; those of the caller have the outcome on return.
CallResult runWhole(krl_engine& engine, const ReadyCall& call, const std::optional<Route>& route) {
    const Method& method = call.method;
    NativePictures pictures;
    Extent extent = call.extent;
    if (extent.mask) extent.mask = *pictures.lend(*extent.mask).as<Picture>();
    std::vector<Value> native;
    for (size_t i = 0; i < call.arguments.size(); ++i)
        native.push_back(&method.arguments()[i] == method.changedPicture()
                             ? pictures.lendToChange(call.arguments[i])
                             : pictures.lend(call.arguments[i]));
    Picture own;
    if (route && (method.rewritesPicture() || !route->isInPlace()))
        own = pictures.rewrite(route->to, route->from);
    else if (route)
        own = *pictures.lend(route->to).as<Picture>();
    return callWithin(extent, own, [&] {
        std::optional<LoadedPicture> loaded;
        if (route) loaded.emplace(engine.engine, own);
        chooseBands(engine.engine, method, engine.bands);
        if (route && engine.keepsMemory)
            engine.keptMemory.set(engine.engine.buffer()->bytes() * KRL_KEPT_PICTURES);
        return callMethod(method, engine.engine, native);
    });
}

CallResult run(krl_engine& engine, ReadyCall& call, std::optional<Route>& route) {
    if (!route) return runWhole(engine, call, route);
    separate(*route, call);
    const bool isDirect = route->isInPlace() && isNative(route->to);
    if (isDirect || !canFuse(call, route->from, route->to)) return runWhole(engine, call, route);
    return runFused(engine.engine, engine.bands, {&call, 1}, route->from, route->to).result;
}

/// The entries as a property list, or the list of pictures.
Value treeOf(const Method& method, CallResult outcome, PixelOrder order) {
    for (Value& picture : outcome.pictures) giveOrder(picture, order);
    if (method.makesPictureList() && outcome.ok()) return std::move(outcome.pictures);
    PropertyListValue entries;
    for (auto& [key, value] : outcome.entries) {
        giveOrder(value, order);
        entries.emplace_back(Symbol{key}, std::move(value));
    }
    return entries;
}

void finish(krl_result& result, const Method& method, PixelOrder order, CallResult outcome) {
    if (!outcome.ok()) {
        result.code = codeOf(outcome.code);
        result.message = method.shortName() + ": " + outcome.error;
        if (result.code != KRL_CANCELLED) result.error = outcome.error;
    }
    result.value = treeOf(method, std::move(outcome), order);
}

/// A method's name and what is given for its arguments.
struct WrittenCall {
    std::string_view name;
    std::vector<GivenArgument> given;
};

/// `from` is null for a call in place.
void call(krl_engine* engine, const krl_picture* from, const krl_picture* to, WrittenCall written,
          krl_result& result) {
    if (!engine) throw Problem{KRL_BAD_USE, "there is no engine"};
    const Method& method = methodNamed(written.name);
    std::optional<Route> route = routeOf(method, from, to);
    Extent extent = takeExtent(method, written.given);
    const std::optional<Placement> placement = takePlacement(method, written.given);
    ExampleSetting setting;
    if (route) setting = {route->to.info.width, route->to.info.height, {}};
    ReadyCall ready{method, std::move(extent), arrangeArguments(method, written.given, setting)};
    try {
        checkArguments(method, ready.arguments);
    } catch (const ArgumentError&) {
        // The method refuses these while it reads them; no picture is loaded that it could reach.
        result.error = callMethod(method, engine->engine, ready.arguments).error;
        throw;
    }
    if (placement && route)
        placePictures(method, *placement, route->to.info.width, route->to.info.height, ready.arguments);
    const PixelOrder order = route ? route->to.order : PixelOrder::BGRA;
    finish(result, method, order, run(*engine, ready, route));
}

krl_code callMethodOf(krl_engine* engine, const krl_picture* from, const krl_picture* to, const char* method,
                      const krl_argument* arguments, size_t count, krl_result** result) {
    return answer(result, [&](krl_result& out) {
        if (!method) throw Problem{KRL_BAD_USE, "there is no method name"};
        if (!arguments && count > 0) throw Problem{KRL_BAD_USE, "there are no arguments"};
        WrittenCall written{method, {}};
        for (size_t i = 0; i < count; ++i)
            written.given.push_back(
                {arguments[i].name ? arguments[i].name : "", valueOf(arguments[i].value)});
        call(engine, from, to, std::move(written), out);
    });
}

krl_code callText(krl_engine* engine, const krl_picture* from, const krl_picture* to, const char* text,
                  krl_result** result) {
    return answer(result, [&](krl_result& out) {
        if (!text) throw Problem{KRL_BAD_USE, "there is no call"};
        ImageInfo size;
        if (isPicture(to)) size = pictureOf(*to).info;
        const CallNotation notation = readCallNotation(text, callScope(size.width, size.height));
        WrittenCall written{notation.name, {}};
        for (const CallNotation::Argument& argument : notation.arguments)
            written.given.push_back({argument.name, &argument.value});
        call(engine, from, to, std::move(written), out);
    });
}

}  // namespace

}  // namespace krl::c

int32_t krl_result_line(const krl_result* result) { return result ? result->line : 0; }

krl_engine* krl_engine_new(int32_t bands) {
    if (bands < 0 || bands > KRL_MOST_BANDS) return nullptr;
    return krl::c::guarded<krl_engine*>(nullptr, [&] {
        auto made = std::make_unique<krl_engine>();
        made->engine.allocateTables();
        made->engine.buildTables();
        made->bands = bands;
        return made.release();
    });
}

krl_code krl_engine_keep_memory(krl_engine* engine, int32_t keep) {
    if (!engine || keep < 0 || keep > 1) return KRL_BAD_USE;
    engine->keepsMemory = keep == 1;
    if (!engine->keepsMemory) engine->keptMemory.set(0);
    return KRL_OK;
}

void krl_engine_free(krl_engine* engine) { delete engine; }

void krl_engine_cancel(krl_engine* engine) {
    if (engine) engine->engine.cancel();
}

void krl_engine_resume(krl_engine* engine) {
    if (engine) engine->engine.resume();
}

krl_code krl_call(krl_engine* engine, const krl_picture* picture, const char* method,
                  const krl_argument* arguments, size_t count, krl_result** result) {
    return krl::c::callMethodOf(engine, nullptr, picture, method, arguments, count, result);
}

krl_code krl_apply(krl_engine* engine, const krl_picture* picture, const char* call, krl_result** result) {
    return krl::c::callText(engine, nullptr, picture, call, result);
}

krl_code krl_call_into(krl_engine* engine, const krl_picture* from, const krl_picture* to, const char* method,
                       const krl_argument* arguments, size_t count, krl_result** result) {
    return krl::c::callMethodOf(engine, krl::c::given(from), to, method, arguments, count, result);
}

krl_code krl_apply_into(krl_engine* engine, const krl_picture* from, const krl_picture* to, const char* call,
                        krl_result** result) {
    return krl::c::callText(engine, krl::c::given(from), to, call, result);
}

void krl_result_free(krl_result* result) { delete result; }

krl_code krl_result_code(const krl_result* result) { return result ? result->code : KRL_OUT_OF_MEMORY; }

const char* krl_result_message(const krl_result* result) {
    return result ? result->message.c_str() : krl_code_text(KRL_OUT_OF_MEMORY);
}

const char* krl_result_error(const krl_result* result) { return result ? result->error.c_str() : ""; }

const krl_value* krl_result_value(const krl_result* result) {
    return result ? krl::c::handleOf(&result->value) : nullptr;
}
