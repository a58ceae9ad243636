#include "catalogue/DirectCall.h"

#include <algorithm>
#include <deque>

#include "catalogue/Call.h"
#include "catalogue/Letters.h"

namespace krl {

namespace {

constexpr CallCode kWrongKind = 1;

/// Lends the catalogue a tree of plain values. A handle is the address of a value, which the arguments or
/// this object own.
class DirectCaller : public Caller {
public:
    explicit DirectCaller(const std::vector<Value>& arguments) : arguments_(arguments) {}

    CallResult& result() { return result_; }

    ValueHandle argument(size_t index) override {
        return index < arguments_.size() ? handleOf(arguments_[index]) : ValueHandle{};
    }
    CallCode read(const ValueHandle& value, int32_t& out) override { return readAs(value, out); }
    CallCode read(const ValueHandle& value, double& out) override {
        if (const int32_t* whole = contentOf<int32_t>(value)) {
            out = *whole;
            return kCallOk;
        }
        return readAs(value, out);
    }
    CallCode read(const ValueHandle& value, Point& out) override { return readAs(value, out); }
    CallCode read(const ValueHandle& value, Colour& out) override { return readAs(value, out); }
    CallCode readSymbol(const ValueHandle& value, SymbolId& out) override {
        const Symbol* given = contentOf<Symbol>(value);
        if (!given) return kWrongKind;
        out = symbol(given->name.c_str());
        return kCallOk;
    }

    SymbolId symbol(const char* name) override {
        for (size_t i = 0; i < symbols_.size(); ++i)
            if (sameLetters(symbols_[i], name)) return static_cast<SymbolId>(i);
        symbols_.emplace_back(name);
        return static_cast<SymbolId>(symbols_.size() - 1);
    }

    int32_t countElements(const ValueHandle& list) override {
        if (const auto* plain = contentOf<ListValue>(list)) return static_cast<int32_t>(plain->size());
        if (const auto* keyed = contentOf<PropertyListValue>(list))
            return static_cast<int32_t>(keyed->size());
        return -1;
    }
    CallCode element(const ValueHandle& list, int32_t index, ValueHandle& out) override {
        if (index < 1 || index > countElements(list)) return kWrongKind;
        const auto place = static_cast<size_t>(index - 1);
        const auto* plain = contentOf<ListValue>(list);
        out = handleOf(plain ? (*plain)[place] : (*contentOf<PropertyListValue>(list))[place].second);
        return kCallOk;
    }
    CallCode propertyAt(const ValueHandle& list, int32_t index, ValueHandle& out) override {
        const auto* keyed = contentOf<PropertyListValue>(list);
        if (!keyed || index < 1 || index > countElements(list)) return kWrongKind;
        out = handleOf((*keyed)[static_cast<size_t>(index - 1)].first);
        return kCallOk;
    }
    CallCode elementUnder(const ValueHandle& list, const char* key, ValueHandle& out) override {
        const auto* keyed = contentOf<PropertyListValue>(list);
        const Value* found = keyed ? findProperty(*keyed, key) : nullptr;
        if (!found) return kWrongKind;
        out = handleOf(*found);
        return kCallOk;
    }
    CallCode release(const ValueHandle&) override { return kCallOk; }

    CallCode describePicture(const ValueHandle& picture, ImageInfo& out) override {
        const Picture* held = contentOf<Picture>(picture);
        if (!held) return kWrongKind;
        out = held->info;
        return kCallOk;
    }
    bool isRedFirst(const ValueHandle& picture) override {
        const Picture* held = contentOf<Picture>(picture);
        return held && held->order == PixelOrder::RGBA;
    }
    CallCode lockPicture(const ValueHandle& picture, uint8_t*& out) override {
        const Picture* held = contentOf<Picture>(picture);
        if (!held) return kWrongKind;
        out = held->pixels;
        return kCallOk;
    }
    CallCode unlockPicture(const ValueHandle&) override { return kCallOk; }
    CallCode makePicture(int32_t width, int32_t height, ValueHandle& out) override {
        if (width < 1 || height < 1 || int64_t{width} * height > INT32_MAX / 4) return kWrongKind;
        // Opaque white, as hosts make their pictures.
        made_.emplace_back(Picture::blank(width, height, 255));
        out = handleOf(made_.back());
        return kCallOk;
    }

    void give(const char* key, double number) override { result_.entries.emplace_back(key, number); }
    void give(const char* key, Colour colour) override { result_.entries.emplace_back(key, colour); }
    void giveSymbol(const char* key, const char* name) override {
        result_.entries.emplace_back(key, Symbol{name});
    }
    void givePicture(const char* key, const ValueHandle& picture) override {
        result_.entries.emplace_back(key, *contentOf<Picture>(picture));
    }
    CallCode answerWithPicture(const char* key, const ValueHandle& picture) override {
        givePicture(key, picture);
        return kCallOk;
    }
    void beginPictureList() override { result_.pictures.clear(); }
    void addToPictureList(const ValueHandle& picture) override {
        result_.pictures.emplace_back(*contentOf<Picture>(picture));
    }
    void leaveOutError() override { result_.withError = false; }

private:
    static ValueHandle handleOf(const Value& value) { return {{reinterpret_cast<uintptr_t>(&value), 0}}; }

    template <class Kind>
    static const Kind* contentOf(const ValueHandle& handle) {
        const auto* value = reinterpret_cast<const Value*>(handle.words[0]);
        return value ? value->as<Kind>() : nullptr;
    }

    template <class Kind>
    static CallCode readAs(const ValueHandle& value, Kind& out) {
        const Kind* content = contentOf<Kind>(value);
        if (!content) return kWrongKind;
        out = *content;
        return kCallOk;
    }

    const std::vector<Value>& arguments_;
    std::deque<Value> made_;
    std::vector<std::string> symbols_;
    CallResult result_;
};

/// Null for a success. A method that cannot fail has no text for a call that did not end.
const char* errorOf(const Outcome& outcome) {
    if (outcome.code == kCallCancelled) return "cancelled";
    if (outcome.message) return outcome.message;
    return outcome.code == kCallOutOfMemory ? "out of memory" : nullptr;
}

}  // namespace

const Picture* CallResult::firstPicture() const {
    if (!pictures.empty()) return pictures.front().as<Picture>();
    for (const auto& [key, value] : entries)
        if (const auto* picture = value.as<Picture>()) return picture;
    return nullptr;
}

CallResult callMethod(const Method& method, ImageEngine& engine, const std::vector<Value>& arguments) {
    DirectCaller caller(arguments);
    const Outcome outcome = method.managesTheEngine() ? failure("the engine is managed by its owner")
                                                      : Call(caller, method, &engine).run();
    CallResult result = std::move(caller.result());
    if (const char* error = errorOf(outcome)) {
        result = {};
        result.error = error;
        result.code = outcome.code;
    }
    return result;
}

void chooseBands(ImageEngine& engine, const Method& method, int32_t bands) {
    if (bands > 0) return engine.setThreadCount(bands);
    engine.configureExecution(method.resultDependsOnBands());
    const size_t pixels = engine.buffer() ? engine.buffer()->bytes() / sizeof(Pixel) : 0;
    if (pixels == 0) return;
    const auto most = static_cast<int32_t>(pixels / kLeastBandPixels);
    engine.setThreadCount(std::min(engine.getThreadCount(), most));
}

}  // namespace krl
