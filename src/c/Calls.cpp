#include <cstring>
#include <optional>
#include <string_view>

#include "c/Handles.h"
#include "c/Pictures.h"
#include "catalogue/Arguments.h"
#include "catalogue/Catalogue.h"
#include "catalogue/DirectCall.h"
#include "catalogue/Notation.h"

/// Engines, calls and results of the C interface.
namespace krl::c {

namespace {

/// Ends a call with a code and words for people.
struct Problem {
    krl_code code;
    std::string message;
};

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

/// The picture of one call, in an engine that forgets it afterwards with its description.
class LoadedPicture {
public:
    LoadedPicture(ImageEngine& engine, const Picture& picture) : engine_(engine) {
        engine_.load(picture.pixels, picture.info);
    }
    ~LoadedPicture() {
        engine_.load(nullptr, {});
        engine_.unload();
    }
    LoadedPicture(const LoadedPicture&) = delete;
    LoadedPicture& operator=(const LoadedPicture&) = delete;

private:
    ImageEngine& engine_;
};

/// Runs the method on pictures in the form that it takes; those of the caller have the outcome on return.
CallResult run(krl_engine& engine, const Method& method, const std::optional<Picture>& picture,
               const std::vector<Value>& arguments) {
    NativePictures pictures;
    std::vector<Value> native;
    for (size_t i = 0; i < arguments.size(); ++i)
        native.push_back(&method.arguments()[i] == method.changedPicture()
                             ? pictures.lendToChange(arguments[i])
                             : pictures.lend(arguments[i]));
    std::optional<LoadedPicture> loaded;
    if (picture)
        loaded.emplace(engine.engine, method.rewritesPicture() ? pictures.rewrite(*picture)
                                                               : *pictures.lend(*picture).as<Picture>());
    if (picture && engine.keepsMemory)
        engine.keptMemory.set(engine.engine.buffer()->bytes() * KRL_KEPT_PICTURES);
    chooseBands(engine.engine, method, engine.bands);
    return callMethod(method, engine.engine, native);
}

void giveOrder(Value& value, PixelOrder order) {
    Picture* picture = value.as<Picture>();
    if (!picture || order == picture->order) return;
    reorder(*picture);
    picture->order = order;
}

krl_code codeOf(const CallResult& failed) {
    if (failed.code == kCallCancelled) return KRL_CANCELLED;
    return failed.code == kCallOutOfMemory ? KRL_OUT_OF_MEMORY : KRL_METHOD_FAILED;
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
        result.code = codeOf(outcome);
        result.message = method.shortName() + ": " + outcome.error;
        if (result.code != KRL_CANCELLED) result.error = outcome.error;
    }
    result.value = treeOf(method, std::move(outcome), picture ? picture->order : PixelOrder::BGRA);
}

void call(krl_engine* engine, const krl_picture* picture, std::string_view name,
          std::span<const GivenArgument> given, krl_result& result) {
    if (!engine) throw Problem{KRL_BAD_USE, "there is no engine"};
    const Method& method = methodNamed(name);
    const std::optional<Picture> loaded = loadedPicture(method, picture);
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
    finish(result, method, loaded, run(*engine, method, loaded, arguments));
}

/// A call as a text, taken apart: `name(arguments)` or a bare name.
class CallText {
public:
    explicit CallText(std::string_view text) {
        const size_t open = text.find('(');
        name_ = trimmed(text.substr(0, open));
        if (open == std::string_view::npos) return;
        const std::string_view rest = trimmed(text.substr(open + 1));
        if (rest.empty() || rest.back() != ')')
            throw Problem{KRL_BAD_TEXT, "expected ) at the end of " + std::string(text)};
        read(rest.substr(0, rest.size() - 1));
    }
    std::string_view name() const { return name_; }
    const std::vector<GivenArgument>& arguments() const { return arguments_; }

private:
    static std::string_view trimmed(std::string_view text) {
        constexpr const char* kBlanks = " \t\r\n";
        const size_t first = text.find_first_not_of(kBlanks);
        if (first == std::string_view::npos) return {};
        return text.substr(first, text.find_last_not_of(kBlanks) + 1 - first);
    }

    void read(std::string_view text) {
        list_ = readNotation("[" + std::string(text) + "]");
        if (const auto* values = list_.as<ListValue>()) {
            for (const Value& value : *values) arguments_.push_back({"", &value});
            return;
        }
        for (const auto& [key, value] : *list_.as<PropertyListValue>()) {
            const Symbol* name = key.as<Symbol>();
            if (!name) throw Problem{KRL_BAD_TEXT, "expected #name: value, got " + writeNotation(key)};
            arguments_.push_back({name->name, &value});
        }
    }

    std::string_view name_;
    Value list_;
    std::vector<GivenArgument> arguments_;
};

/// Carries out `work(result)`; what it throws becomes the result's code and message.
template <class Work>
void collect(krl_result& result, Work&& work) {
    try {
        work(result);
    } catch (const Problem& problem) {
        result.code = problem.code;
        result.message = problem.message;
    } catch (const ArgumentError& error) {
        result.code = codeOf(error.fault());
        result.message = error.what();
    } catch (const NotationError& error) {
        result.code = KRL_BAD_TEXT;
        result.message = error.what();
    }
}

/// The same for a caller, who may not care for the result.
template <class Work>
krl_code answer(krl_result** out, Work&& work) noexcept {
    if (out) *out = nullptr;
    return guarded<krl_code>(KRL_OUT_OF_MEMORY, [&] {
        auto result = std::make_unique<krl_result>();
        collect(*result, work);
        const krl_code code = result->code;
        if (out) *out = result.release();
        return code;
    });
}

}  // namespace

}  // namespace krl::c

using krl::c::answer;
using krl::c::Problem;

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
        krl::c::call(engine, picture, method, given, out);
    });
}

krl_code krl_apply(krl_engine* engine, const krl_picture* picture, const char* call, krl_result** result) {
    return answer(result, [&](krl_result& out) {
        if (!call) throw Problem{KRL_BAD_USE, "there is no call"};
        const krl::c::CallText text(call);
        krl::c::call(engine, picture, text.name(), text.arguments(), out);
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
