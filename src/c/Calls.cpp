#include <cstring>
#include <optional>
#include <string_view>

#include "c/Handles.h"
#include "c/Pictures.h"
#include "catalogue/Arguments.h"
#include "catalogue/Catalogue.h"
#include "catalogue/DirectCall.h"
#include "look/CallScope.h"
#include "look/Extent.h"

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
    if (!picture || order == picture->order) return;
    reorder(*picture);
    picture->order = order;
}

namespace {

const Method& methodNamed(std::string_view name) {
    const Method* method = catalogue().find(name);
    if (!method) throw Problem{KRL_NO_SUCH_METHOD, "no method is called " + std::string(name)};
    if (method->managesTheEngine())
        throw Problem{KRL_NOT_CALLABLE, method->shortName() + " manages the engine of a script"};
    return *method;
}

std::optional<Picture> loadedPicture(const Method& method, const krl_picture* picture) {
    if (!picture) {
        if (method.rewritesPicture())
            throw Problem{KRL_MISSING, method.shortName() + " works on a picture, got none"};
        return std::nullopt;
    }
    if (!isPicture(picture))
        throw Problem{KRL_BAD_PICTURE, method.shortName() + ": the picture has no pixels, a size that " +
                                           "cannot be, or rows shorter than their pixels"};
    return pictureOf(*picture);
}

/// Runs the method on pictures in the form that it takes; those of the caller have the outcome on return.
CallResult run(krl_engine& engine, const Method& method, const std::optional<Picture>& picture,
               const std::vector<Value>& arguments, Extent extent) {
    NativePictures pictures;
    if (extent.mask) extent.mask = *pictures.lend(*extent.mask).as<Picture>();
    std::vector<Value> native;
    for (size_t i = 0; i < arguments.size(); ++i)
        native.push_back(&method.arguments()[i] == method.changedPicture()
                             ? pictures.lendToChange(arguments[i])
                             : pictures.lend(arguments[i]));
    Picture own;
    if (picture)
        own = method.rewritesPicture() ? pictures.rewrite(*picture) : *pictures.lend(*picture).as<Picture>();
    chooseBands(engine.engine, method, engine.bands);
    return callWithin(extent, own, [&] {
        std::optional<LoadedPicture> loaded;
        if (picture) loaded.emplace(engine.engine, own);
        if (picture && engine.keepsMemory)
            engine.keptMemory.set(engine.engine.buffer()->bytes() * KRL_KEPT_PICTURES);
        return callMethod(method, engine.engine, native);
    });
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

void finish(krl_result& result, const Method& method, const std::optional<Picture>& picture,
            CallResult outcome) {
    if (!outcome.ok()) {
        result.code = codeOf(outcome.code);
        result.message = method.shortName() + ": " + outcome.error;
        if (result.code != KRL_CANCELLED) result.error = outcome.error;
    }
    result.value = treeOf(method, std::move(outcome), picture ? picture->order : PixelOrder::BGRA);
}

void call(krl_engine* engine, const krl_picture* picture, std::string_view name,
          std::vector<GivenArgument> given, krl_result& result) {
    if (!engine) throw Problem{KRL_BAD_USE, "there is no engine"};
    const Method& method = methodNamed(name);
    const std::optional<Picture> loaded = loadedPicture(method, picture);
    const Extent extent = takeExtent(method, given);
    ExampleSetting setting;
    if (loaded) setting = {loaded->info.width, loaded->info.height, {}};
    const std::vector<Value> arguments = arrangeArguments(method, given, setting);
    try {
        checkArguments(method, arguments);
    } catch (const ArgumentError&) {
        // The method refuses these while it reads them; no picture is loaded that it could reach.
        result.error = callMethod(method, engine->engine, arguments).error;
        throw;
    }
    finish(result, method, loaded, run(*engine, method, loaded, arguments, extent));
}

}  // namespace

}  // namespace krl::c

using krl::c::answer;
using krl::c::Problem;

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
    return answer(result, [&](krl_result& out) {
        if (!method) throw Problem{KRL_BAD_USE, "there is no method name"};
        if (!arguments && count > 0) throw Problem{KRL_BAD_USE, "there are no arguments"};
        std::vector<krl::GivenArgument> given;
        for (size_t i = 0; i < count; ++i)
            given.push_back(
                {arguments[i].name ? arguments[i].name : "", krl::c::valueOf(arguments[i].value)});
        krl::c::call(engine, picture, method, std::move(given), out);
    });
}

krl_code krl_apply(krl_engine* engine, const krl_picture* picture, const char* call, krl_result** result) {
    return answer(result, [&](krl_result& out) {
        if (!call) throw Problem{KRL_BAD_USE, "there is no call"};
        krl::ImageInfo size;
        if (krl::c::isPicture(picture)) size = krl::c::pictureOf(*picture).info;
        const krl::CallNotation notation =
            krl::readCallNotation(call, krl::callScope(size.width, size.height));
        std::vector<krl::GivenArgument> given;
        for (const krl::CallNotation::Argument& argument : notation.arguments)
            given.push_back({argument.name, &argument.value});
        krl::c::call(engine, picture, notation.name, std::move(given), out);
    });
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
