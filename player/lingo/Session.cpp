#include "player/lingo/Session.h"

#include <optional>

#include "player/host/Compare.h"
#include "player/host/EmbeddedHost.h"
#include "player/host/HostError.h"
#include "player/host/Xtra.h"
#include "player/lingo/Interpreter.h"
#include "player/lingo/Performance.h"
#include "player/lingo/PlainValue.h"

namespace krl::player {

namespace {

/// Runs `work` and turns every error into a `ScriptError`.
template <class Work>
auto asScriptError(Work&& work) {
    try {
        return work();
    } catch (const ScriptError&) {
        throw;
    } catch (const Halt&) {
        throw ScriptError("halt, quit and abort end a script, and here is none");
    } catch (const std::bad_alloc&) {
        throw ScriptError("out of memory");
    } catch (const std::exception& error) {
        throw ScriptError(error.what());
    }
}

/// The image in a result: the value itself, the first of a list, or one under a property. Null if none.
const Value* imageIn(const Value& result) {
    if (result.is(Kind::Image)) return &result;
    if (const auto* list = result.as<ListObject>())
        return !list->items.empty() && list->items.front().is(Kind::Image) ? &list->items.front() : nullptr;
    if (const auto* properties = result.as<PropertyListObject>())
        for (const auto& entry : properties->entries)
            if (const Value* found = imageIn(entry.value)) return found;
    return nullptr;
}

std::string counted(int64_t number, const char* what) {
    return std::to_string(number) + ' ' + what + (number == 1 ? "" : "s");
}

}  // namespace

std::string LeakReport::text() const {
    const std::pair<int64_t, const char*> all[] = {
        {values, "value"}, {locks, "lock"}, {interfaces, "interface"}, {blocks, "block"}};
    std::string told;
    for (const auto& [number, what] : all)
        if (number != 0) told += (told.empty() ? "" : ", ") + counted(number, what);
    return told.empty() ? "nothing" : told;
}

struct Session::Parts {
    explicit Parts(SessionOptions given)
        : options(std::move(given)),
          host(options.memoryLimit),
          xtra(host, options.xtraFile.empty() ? builtInPlugIn() : loadPlugIn(options.xtraFile)),
          interpreter(host, xtra, options) {
        interpreter.pictures = options.pictures;
        host.heap.limitEachTo(options.valueLimit);
    }
    ~Parts() {
        letGo();
        // Instances must be released before their plug-in.
        host.heap.clear();
    }

    void letGo() {
        instance = Value();
        interpreter.close();
    }

    /// The instance for single calls, with its tables created.
    const Value& readyInstance() {
        if (!instance.isVoid()) return instance;
        instance = xtra.newInstance();
        send("krlImageCreateLookupTables",
             Value::symbol(host.symbols.symbol(options.threads == ThreadChoice::One ? "st" : "mt")));
        return instance;
    }

    /// Throws the method's own message if it fails.
    void send(const char* method, const Value& argument) {
        const Value result =
            xtra.call(instance, xtra.selector(host.symbols.identifier(method)), {&argument, 1});
        if (const std::string message = errorIn(result); !message.empty()) throw HostError(message);
    }

    /// Lists what was skipped because there is no stage.
    void reportSkipped() {
        std::string all;
        for (const auto& [name, times] : interpreter.skipped())
            all += (all.empty() ? "" : ", ") + name + (times > 1 ? " (" + counted(times, "time") + ')' : "");
        if (!all.empty()) writeLines(interpreter.alerts, "skipped without a stage: " + all + '\n');
    }

    std::string errorIn(const Value& result) {
        const auto* properties = result.as<PropertyListObject>();
        if (!properties) return "";
        const Value key = Value::symbol(host.symbols.symbol("error"));
        const auto* entry = findEntry(host.symbols, *properties, key);
        const auto* message = entry ? entry->value.as<StringObject>() : nullptr;
        return message ? message->text : "";
    }

    SessionOptions options;
    EmbeddedHost host;
    Xtra xtra;
    Interpreter interpreter;
    Value instance;
};

Session::Session(SessionOptions options)
    : parts_(asScriptError([&] { return std::make_unique<Parts>(std::move(options)); })) {}

Session::~Session() = default;

void Session::run(const std::filesystem::path& script, const std::vector<std::string>& arguments) {
    asScriptError([&] {
        Interpreter& interpreter = parts_->interpreter;
        interpreter.sandbox.setScriptFolder(script.parent_path());
        const LoadedScript& loaded = interpreter.load(scriptSource(script), script.stem().string());
        if (loaded.syntax->handlers.empty()) throw HostError(script.string() + ": expected a handler to run");
        interpreter.setMovieScript(loaded);
        interpreter.scriptFile = script.filename().string();
        const Value list = interpreter.heap.make<ListObject>();
        for (const std::string& argument : arguments)
            list.as<ListObject>()->items.push_back(interpreter.text(argument));
        Performance(interpreter, loaded).run(list, parts_->options.frames);
        parts_->reportSkipped();
    });
}

namespace {

/// Moves a picture to the heap while it is processed, and back in any case.
class BorrowedPicture {
public:
    BorrowedPicture(Heap& heap, Bitmap& picture) : picture_(picture) {
        heap.mustHold(picture.pixels.size() * sizeof(Pixel));
        value_ = heap.make<ImageObject>(std::move(picture));
    }
    ~BorrowedPicture() { picture_ = std::move(value_.as<ImageObject>()->bitmap); }
    BorrowedPicture(const BorrowedPicture&) = delete;
    BorrowedPicture& operator=(const BorrowedPicture&) = delete;

    const Value& value() const { return value_; }
    /// Replaces it with another image.
    void replaceBy(const Value& image) {
        Bitmap& pixels = value_.as<ImageObject>()->bitmap;
        auto metadata = std::move(pixels.metadata);
        pixels = image.as<ImageObject>()->bitmap;
        pixels.metadata = std::move(metadata);
    }

private:
    Bitmap& picture_;
    Value value_;
};

}  // namespace

CallOutcome Session::apply(Bitmap& picture, std::string_view call) {
    return asScriptError([&] {
        const Value& instance = parts_->readyInstance();
        BorrowedPicture borrowed(parts_->host.heap, picture);
        parts_->send("krlImageLoad", borrowed.value());
        Value result;
        try {
            result = parts_->interpreter.callOn(instance, "call", call);
        } catch (...) {
            parts_->send("krlImageQuit", Value());
            throw;
        }
        parts_->send("krlImageQuit", Value());
        CallOutcome outcome;
        outcome.error = parts_->errorIn(result);
        if (!result.isVoid()) outcome.shown = shownText(parts_->interpreter.style(), result);
        if (const Value* made = imageIn(result)) borrowed.replaceBy(*made);
        return outcome;
    });
}

void Session::define(const std::string& name, const std::string& text) {
    asScriptError([&] {
        Interpreter& interpreter = parts_->interpreter;
        interpreter.setMovieScript(
            interpreter.load(std::make_shared<const Source>(Source{name, text}), name));
    });
}

krl::Value Session::evaluate(std::string_view expression) {
    return asScriptError([&] {
        Interpreter& interpreter = parts_->interpreter;
        return plainValue(interpreter.symbols, interpreter.evaluateText("", expression));
    });
}

LeakReport Session::close() {
    parts_->letGo();
    const EmbeddedHost& host = parts_->host;
    return {host.heap.living(), host.locks(), host.references() + parts_->xtra.instances(), host.blocks()};
}

}  // namespace krl::player
