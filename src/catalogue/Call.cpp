#include "catalogue/Call.h"

namespace krl {

CallCode Call::read(const ValueHandle& value, float& out) const {
    double wide = 0;
    const CallCode code = caller_.read(value, wide);
    out = static_cast<float>(wide);
    return code;
}

CallCode Call::element(const ValueHandle& list, int32_t index, HeldValue& out) const {
    ValueHandle value;
    const CallCode code = caller_.element(list, index, value);
    if (code == kCallOk) out.take(value);
    return code;
}

CallCode Call::elementUnder(const ValueHandle& list, const char* key, HeldValue& out) const {
    ValueHandle value;
    const CallCode code = caller_.elementUnder(list, key, value);
    if (code == kCallOk) out.take(value);
    return code;
}

CallCode Call::readColourList(const ValueHandle& list, ListKeys rule, std::vector<CurveKey>& out) const {
    const int32_t count = countElements(list);
    if (count < 0) return kCallUnsupported;
    out.reserve(static_cast<size_t>(count));
    for (int32_t i = 1; i <= count; ++i) {
        ValueHandle property;
        int32_t place = 0;
        double realPlace = 0;
        if (CallCode code = propertyAt(list, i, property)) return code;
        if (CallCode code = rule.real ? read(property, realPlace) : read(property, place)) return code;
        HeldValue entry(caller_);
        Colour colour;
        if (CallCode code = element(list, i, entry)) return code;
        if (CallCode code = read(*entry, colour)) return code;
        const double position = rule.real ? double(static_cast<float>(realPlace)) : place;
        out.push_back(
            {colour.red(), colour.green(), colour.blue(), static_cast<float>(position * rule.scale)});
    }
    return kCallOk;
}

Outcome Call::run() {
    Outcome outcome;
    try {
        outcome = perform();
    } catch (const Cancelled&) {
        outcome = failure(method_.failedText(), kCallCancelled);
    } catch (...) {
        outcome = failure(method_.failedText(), kCallOutOfMemory);
    }
    // What stays locked after a failure stays so for good: scripts can see it.
    if (outcome.message && method_.leavesLocksOnFailure())
        for (PictureLock& lock : locks_) lock.keep();
    locks_.clear();
    return outcome;
}

Outcome Call::perform() {
    if (method_.engineFailureText() && !engine_) return failure(method_.engineFailureText());
    if (method_.readsArguments()) {
        if (Outcome bad = readArguments(); bad.message) return bad;
    }
    if (!engine_ && !method_.runsWithoutEngine()) return failure(method_.failedText());
    if (method_.readsArguments()) {
        if (Outcome bad = lockSecondImages(); bad.message) return bad;
    }
    if (engine_) engine_->throwIfCancelled();
    return method_.body()(*this);
}

Outcome Call::readArguments() {
    const std::vector<Argument>& declared = method_.arguments();
    arguments_.resize(declared.size());
    size_t compared = 0;
    for (size_t i = 0; i < declared.size(); ++i) {
        if (Outcome bad = readArgument(i); bad.message) return bad;
        if (!declared[i].thenCompare && i + 1 != declared.size()) continue;
        if (Outcome bad = compare(compared, i + 1); bad.message) return bad;
        compared = i + 1;
    }
    return succeeded();
}

Outcome Call::readArgument(size_t index) {
    const Argument& declared = method_.arguments()[index];
    ArgumentValue& argument = arguments_[index];
    argument.value = raw(index);
    CallCode code = kCallOk;
    switch (declared.kind) {
        case ArgumentKind::Integer:
            code = read(argument.value, argument.integer);
            break;
        case ArgumentKind::Real:
            code = read(argument.value, argument.real);
            break;
        case ArgumentKind::Symbol:
            code = readSymbol(argument.value, argument.symbol);
            break;
        case ArgumentKind::Colour:
            code = read(argument.value, argument.colour);
            break;
        case ArgumentKind::Point:
            code = read(argument.value, argument.point);
            break;
        case ArgumentKind::ColourList:
            code = readColourList(argument.value, declared.listKeys, argument.keys);
            break;
        case ArgumentKind::SecondImage:
        case ArgumentKind::Value:
            break;
    }
    return code == kCallOk ? succeeded() : failure(method_.inputFailureText(declared), code);
}

Outcome Call::compare(size_t first, size_t last) {
    for (size_t i = first; i < last; ++i) {
        const Argument& declared = method_.arguments()[i];
        ArgumentValue& argument = arguments_[i];
        if (declared.check && !declared.check(argument)) return failure(declared.checkFailure);
        if (declared.kind != ArgumentKind::Symbol) continue;
        const SymbolChoice* found = nullptr;
        // Every candidate is interned, also past the one that is found: hosts see it.
        for (const SymbolChoice& choice : declared.choices)
            if (is(argument.symbol, choice.name) && !found) found = &choice;
        if (!found && declared.unknown.message) return failure(declared.unknown.message);
        argument.integer = found ? found->number : declared.unknown.number;
    }
    return succeeded();
}

Outcome Call::lockSecondImages() {
    locks_.reserve(arguments_.size());  // so that nothing fails between a lock and its owner
    for (size_t i = 0; i < arguments_.size(); ++i) {
        const Argument& declared = method_.arguments()[i];
        if (declared.kind != ArgumentKind::SecondImage) continue;
        ArgumentValue& argument = arguments_[i];
        caller_.describePicture(argument.value, argument.image.info);
        if (declared.imageTests.heightFailure && argument.image.info.height < 1)
            return failure(declared.imageTests.heightFailure);
        if (declared.imageTests.widthFailure && argument.image.info.width < 1)
            return failure(declared.imageTests.widthFailure);
        const bool usable = method_.isInert() || hasWholePixels(argument.image.info);
        if (!usable || !locks_.emplace_back(caller_, argument.value).held())
            return failure(method_.failedText());
        argument.image.pixels = locks_.back().pixels();
        argument.image.isRedFirst = caller_.isRedFirst(argument.value);
    }
    return succeeded();
}

Outcome runEffect(Call& call,
                  const std::function<Status(ImageEngine&, std::span<const ArgumentValue>)>& effect) {
    const Status status = effect(*call.engine(), call.arguments());
    return status == kStatusOk ? succeeded() : failure(call.method().failedText());
}

}  // namespace krl
