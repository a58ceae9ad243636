#include "host/MethodCall.h"

#include <new>

namespace krl::host {

HostStatus MethodCall::read(const ScriptValue& value, int32_t& out) const {
    return values::ValueToInteger::call(values(), &value, &out);
}

HostStatus MethodCall::read(const ScriptValue& value, double& out) const {
    return values::ValueToFloat::call(values(), &value, &out);
}

HostStatus MethodCall::read(const ScriptValue& value, float& out) const {
    double wide = 0;
    const HostStatus status = read(value, wide);
    out = static_cast<float>(wide);
    return status;
}

HostStatus MethodCall::read(const ScriptValue& value, Point& out) const {
    return values::ValueToPoint::call(values(), &value, &out);
}

HostStatus MethodCall::read(const ScriptValue& value, Colour& out) const {
    ColourRecord record;
    const HostStatus status = colours::ValueToColor::call(colours(), &value, &record);
    out = record.colour();
    return status;
}

HostStatus MethodCall::readSymbol(const ScriptValue& value, SymbolId& out) const {
    return values::ValueToSymbol::call(values(), &value, &out);
}

int32_t MethodCall::countElements(const ScriptValue& list) const {
    return lists::CountElements::call(lists(), &list);
}

HostStatus MethodCall::element(const ScriptValue& list, int32_t index, OwnedValue& out) const {
    ScriptValue value;
    const HostStatus status = lists::GetElementByIndex::call(lists(), &list, index, &value);
    if (status == kHostOk) *out.out() = value;
    return status;
}

HostStatus MethodCall::propertyAt(const ScriptValue& list, int32_t index, ScriptValue& out) const {
    return lists::GetPropertyByIndex::call(lists(), &list, index, &out);
}

HostStatus MethodCall::elementUnder(const ScriptValue& list, const char* key, OwnedValue& out) const {
    OwnedValue keyValue(values());
    values::SymbolToValue::call(values(), intern(key), keyValue.out());
    ScriptValue value;
    const HostStatus status = lists::GetElementByKey::call(lists(), &list, keyValue.get(), &value);
    if (status == kHostOk) *out.out() = value;
    return status;
}

HostStatus MethodCall::readColourList(const ScriptValue& list, ListKeys rule,
                                      std::vector<CurveKey>& out) const {
    const int32_t count = countElements(list);
    if (count < 0) return kHostNoInterface;
    out.reserve(static_cast<size_t>(count));
    for (int32_t i = 1; i <= count; ++i) {
        ScriptValue property;
        int32_t place = 0;
        double realPlace = 0;
        if (HostStatus status = propertyAt(list, i, property)) return status;
        if (HostStatus status = rule.real ? read(property, realPlace) : read(property, place)) return status;
        OwnedValue entry(values());
        Colour colour;
        if (HostStatus status = element(list, i, entry)) return status;
        if (HostStatus status = read(*entry, colour)) return status;
        const double position = rule.real ? double(static_cast<float>(realPlace)) : place;
        out.push_back(
            {colour.red(), colour.green(), colour.blue(), static_cast<float>(position * rule.scale)});
    }
    return kHostOk;
}

SymbolId MethodCall::intern(const char* name) const {
    SymbolId symbol = -1;
    values::InternSymbol::call(values(), name, &symbol);
    return symbol;
}

void MethodCall::addResult(const char* key, const ScriptValue& value) { entries_.emplace_back(key, value); }

void MethodCall::answerWith(ScriptValue value) {
    values::ReleaseValue::call(values(), &result_);
    result_ = value;
    replaced_ = true;
}

HostStatus MethodCall::run() {
    if (method_.isSilent()) return method_.body()(*this).code;
    lists::NewPropertyList::call(lists(), &result_);
    values::SymbolToValue::call(values(), intern("error"), &errorKey_);
    Outcome outcome;
    try {
        outcome = perform();
    } catch (...) {
        outcome = failure(method_.failedText(), kHostOutOfMemory);
    }
    // What stays locked after a failure stays so for good: scripts can see it.
    if (!outcome.message || !method_.leavesLocksOnFailure()) unlockSecondImages();
    return finish(outcome);
}

Outcome MethodCall::perform() {
    if (method_.makesHostQuery()) players::GetItem::call(instance_.player, 1, &instance_.playerItem);
    if (method_.engineFailureText() && !engine()) return failure(method_.engineFailureText());
    if (method_.readsArguments()) {
        if (Outcome bad = readArguments(); bad.message) return bad;
        if (Outcome bad = lockSecondImages(); bad.message) return bad;
    }
    if (!engine() && !method_.runsWithoutEngine()) return failure(method_.failedText());
    return method_.body()(*this);
}

Outcome MethodCall::readArguments() {
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

Outcome MethodCall::readArgument(size_t index) {
    const Argument& declared = method_.arguments()[index];
    ArgumentValue& argument = arguments_[index];
    argument.value = raw(index);
    HostStatus status = kHostOk;
    switch (declared.kind) {
        case ArgumentKind::Integer:
            status = read(argument.value, argument.integer);
            break;
        case ArgumentKind::Real:
            status = read(argument.value, argument.real);
            break;
        case ArgumentKind::Symbol:
            status = readSymbol(argument.value, argument.symbol);
            break;
        case ArgumentKind::Colour:
            status = read(argument.value, argument.colour);
            break;
        case ArgumentKind::Point:
            status = read(argument.value, argument.point);
            break;
        case ArgumentKind::ColourList:
            status = readColourList(argument.value, declared.listKeys, argument.keys);
            break;
        case ArgumentKind::SecondImage:
        case ArgumentKind::Value:
            break;
    }
    return status == kHostOk ? succeeded() : failure(method_.inputFailureText(declared), status);
}

Outcome MethodCall::compare(size_t first, size_t last) {
    for (size_t i = first; i < last; ++i) {
        const Argument& declared = method_.arguments()[i];
        ArgumentValue& argument = arguments_[i];
        if (declared.check && !declared.check(argument)) return failure(declared.checkFailure);
        if (declared.kind != ArgumentKind::Symbol) continue;
        argument.integer = declared.unknown.number;
        const char* message = declared.unknown.message;
        for (const SymbolChoice& choice : declared.choices) {
            if (!is(argument.symbol, choice.name)) continue;
            argument.integer = choice.number;
            message = nullptr;
            break;
        }
        if (message) return failure(message);
    }
    return succeeded();
}

Outcome MethodCall::lockSecondImages() {
    for (size_t i = 0; i < arguments_.size(); ++i) {
        const Argument& declared = method_.arguments()[i];
        if (declared.kind != ArgumentKind::SecondImage) continue;
        ArgumentValue& argument = arguments_[i];
        images::QueryImage::call(images(), &argument.value, &argument.image.info);
        if (declared.imageTests.heightFailure && argument.image.info.height < 1)
            return failure(declared.imageTests.heightFailure);
        if (declared.imageTests.widthFailure && argument.image.info.width < 1)
            return failure(declared.imageTests.widthFailure);
        ImageLock lock;
        images::LockImage::call(images(), &argument.value, &lock);
        locked_.push_back(argument.value);
        argument.image.pixels = lock.pixels;
    }
    return succeeded();
}

void MethodCall::unlockSecondImages() const {
    for (const ScriptValue& image : locked_) images::UnlockImage::call(images(), &image);
}

HostStatus MethodCall::finish(const Outcome& outcome) {
    if (!replaced_ && (withError_ || outcome.message)) appendError(outcome);
    values::ReleaseValue::call(values(), &errorKey_);
    for (const auto& [key, value] : entries_) {
        if (!outcome.message) {
            OwnedValue keyValue(values());
            values::SymbolToValue::call(values(), intern(key), keyValue.out());
            lists::AppendProperty::call(lists(), &result_, keyValue.get(), &value);
        }
        ScriptValue given = value;
        values::ReleaseValue::call(values(), &given);
    }
    info_.result = result_;
    return outcome.code;
}

void MethodCall::appendError(const Outcome& outcome) {
    ScriptValue entry;
    if (!outcome.message) {
        values::IntegerToValue::call(values(), 0, &entry);
        lists::AppendProperty::call(lists(), &result_, &errorKey_, &entry);
        return;
    }
    values::StringToValue::call(values(), outcome.message, &entry);
    lists::AppendProperty::call(lists(), &result_, &errorKey_, &entry);
    values::ReleaseValue::call(values(), &entry);
}

Outcome runEffect(MethodCall& call,
                  const std::function<Status(ImageEngine&, std::span<const ArgumentValue>)>& effect) {
    const Status status = effect(*call.engine(), call.arguments());
    return status == kStatusOk ? succeeded() : failure(call.method().failedText());
}

}  // namespace krl::host
