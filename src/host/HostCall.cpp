#include "host/HostCall.h"

namespace krl::host {

namespace {

ScriptValue wordsOf(const ValueHandle& handle) {
    return {{static_cast<int32_t>(handle.words[0]), static_cast<int32_t>(handle.words[1])}};
}

ValueHandle handleOf(const ScriptValue& value) {
    return {{static_cast<uint32_t>(value.words[0]), static_cast<uint32_t>(value.words[1])}};
}

constexpr SymbolId kNoSymbol = -1;

/// What `Op` gives; VOID where the host refuses, whatever it wrote.
template <class Op, class... Arguments>
ScriptValue given(HostInterface* service, Arguments... arguments) {
    ScriptValue value;
    return Op::call(service, arguments..., &value) == kHostOk ? value : ScriptValue{};
}

}  // namespace

ValueHandle HostCall::argument(size_t index) { return handleOf(raw(index)); }

CallCode HostCall::read(const ValueHandle& value, int32_t& out) {
    const ScriptValue words = wordsOf(value);
    return values::ValueToInteger::call(values(), &words, &out);
}

CallCode HostCall::read(const ValueHandle& value, double& out) {
    const ScriptValue words = wordsOf(value);
    return values::ValueToFloat::call(values(), &words, &out);
}

CallCode HostCall::read(const ValueHandle& value, Point& out) {
    const ScriptValue words = wordsOf(value);
    return values::ValueToPoint::call(values(), &words, &out);
}

CallCode HostCall::read(const ValueHandle& value, Colour& out) {
    const ScriptValue words = wordsOf(value);
    ColourRecord record;
    const HostStatus status = colours::ValueToColor::call(instance_.colours, &words, &record);
    out = record.colour();
    return status;
}

CallCode HostCall::readSymbol(const ValueHandle& value, SymbolId& out) {
    const ScriptValue words = wordsOf(value);
    return values::ValueToSymbol::call(values(), &words, &out);
}

SymbolId HostCall::symbol(const char* name) {
    SymbolId symbol = kNoSymbol;
    return values::InternSymbol::call(values(), name, &symbol) == kHostOk ? symbol : kNoSymbol;
}

int32_t HostCall::countElements(const ValueHandle& list) {
    const ScriptValue words = wordsOf(list);
    return lists::CountElements::call(instance_.lists, &words);
}

CallCode HostCall::element(const ValueHandle& list, int32_t index, ValueHandle& out) {
    const ScriptValue words = wordsOf(list);
    ScriptValue value;
    const HostStatus status = lists::GetElementByIndex::call(instance_.lists, &words, index, &value);
    out = handleOf(value);
    return status;
}

CallCode HostCall::propertyAt(const ValueHandle& list, int32_t index, ValueHandle& out) {
    const ScriptValue words = wordsOf(list);
    ScriptValue value;
    const HostStatus status = lists::GetPropertyByIndex::call(instance_.lists, &words, index, &value);
    out = handleOf(value);
    return status;
}

CallCode HostCall::elementUnder(const ValueHandle& list, const char* key, ValueHandle& out) {
    const ScriptValue words = wordsOf(list);
    ScriptValue keyValue = given<values::SymbolToValue>(values(), symbol(key));
    ScriptValue value;
    const HostStatus status = lists::GetElementByKey::call(instance_.lists, &words, &keyValue, &value);
    out = handleOf(value);
    values::ReleaseValue::call(values(), &keyValue);
    return status;
}

CallCode HostCall::release(const ValueHandle& value) {
    ScriptValue words = wordsOf(value);
    return values::ReleaseValue::call(values(), &words);
}

CallCode HostCall::describePicture(const ValueHandle& picture, ImageInfo& out) {
    const ScriptValue words = wordsOf(picture);
    const HostStatus status = images::QueryImage::call(images(), &words, &out);
    if (status != kHostOk) out = {};
    return status;
}

CallCode HostCall::lockPicture(const ValueHandle& picture, uint8_t*& out) {
    const ScriptValue words = wordsOf(picture);
    ImageLock lock;
    const HostStatus status = images::LockImage::call(images(), &words, &lock);
    out = lock.pixels;
    return status;
}

CallCode HostCall::unlockPicture(const ValueHandle& picture) {
    const ScriptValue words = wordsOf(picture);
    return images::UnlockImage::call(images(), &words);
}

CallCode HostCall::makePicture(int32_t width, int32_t height, ValueHandle& out) {
    ScriptValue made;
    const HostStatus status = images::CreateImage::call(images(), width, height, 32, 8, 0, &made);
    out = handleOf(made);
    return status;
}

void HostCall::addEntry(const char* key, const ScriptValue& value) { entries_[entryCount_++] = {key, value}; }

void HostCall::give(const char* key, double number) {
    addEntry(key, given<values::FloatToValue>(values(), number));
}

void HostCall::give(const char* key, Colour colour) {
    const ColourRecord record{colour.red(), colour.green(), colour.blue()};
    addEntry(key, given<colours::ColorToValue>(instance_.colours, &record));
}

void HostCall::giveSymbol(const char* key, const char* name) {
    addEntry(key, given<values::SymbolToValue>(values(), symbol(name)));
}

void HostCall::givePicture(const char* key, const ValueHandle& picture) { addEntry(key, wordsOf(picture)); }

CallCode HostCall::answerWithPicture(const char* key, const ValueHandle& picture) {
    ScriptValue result = given<lists::NewPropertyList>(instance_.lists), image = wordsOf(picture);
    append(result, "error", given<values::IntegerToValue>(values(), 0));
    append(result, key, image);
    if (HostStatus status = values::ReleaseValue::call(values(), &image)) {
        values::ReleaseValue::call(values(), &result);
        return status;
    }
    answerWith(result);
    return kHostOk;
}

void HostCall::beginPictureList() { answerWith(given<lists::NewList>(instance_.lists)); }

void HostCall::addToPictureList(const ValueHandle& picture) {
    ScriptValue given = wordsOf(picture);
    lists::AppendToList::call(instance_.lists, &result_, &given);
    values::ReleaseValue::call(values(), &given);
}

void HostCall::answerWith(const ScriptValue& value) {
    values::ReleaseValue::call(values(), &result_);
    result_ = value;
    replaced_ = true;
}

void HostCall::append(const ScriptValue& list, const char* key, const ScriptValue& value) {
    ScriptValue keyValue = given<values::SymbolToValue>(values(), symbol(key));
    lists::AppendProperty::call(instance_.lists, &list, &keyValue, &value);
    values::ReleaseValue::call(values(), &keyValue);
}

HostStatus HostCall::run() {
    const EngineBody manages = engineBody(method_);
    if (method_.isSilent()) return manages(*this).code;
    if (!method_.readsArguments()) internChoices();
    result_ = given<lists::NewPropertyList>(instance_.lists);
    errorKey_ = given<values::SymbolToValue>(values(), symbol("error"));
    if (method_.makesHostQuery()) players::GetItem::call(instance_.player, 1, &instance_.playerItem);
    if (!manages) return finish(Call(*this, method_, engine()).run());
    try {
        if (method_.engineFailureText() && !engine()) return finish(failure(method_.engineFailureText()));
        return finish(manages(*this));
    } catch (...) {
        return finish(failure(method_.failedText(), kHostOutOfMemory));
    }
}

void HostCall::internChoices() {
    size_t count = 0;
    for (const SymbolChoice& choice : method_.arguments().front().choices)
        choices_[count++] = symbol(choice.name);
}

HostStatus HostCall::finish(const Outcome& outcome) {
    if (!replaced_ && (withError_ || outcome.message)) appendError(outcome);
    values::ReleaseValue::call(values(), &errorKey_);
    for (size_t i = 0; i < entryCount_; ++i) {
        if (!outcome.message) append(result_, entries_[i].key, entries_[i].value);
        values::ReleaseValue::call(values(), &entries_[i].value);
    }
    info_.result = result_;
    return outcome.code;
}

void HostCall::appendError(const Outcome& outcome) {
    if (!outcome.message) {
        const ScriptValue zero = given<values::IntegerToValue>(values(), 0);
        lists::AppendProperty::call(instance_.lists, &result_, &errorKey_, &zero);
        return;
    }
    ScriptValue entry = given<values::StringToValue>(values(), outcome.message);
    lists::AppendProperty::call(instance_.lists, &result_, &errorKey_, &entry);
    values::ReleaseValue::call(values(), &entry);
}

}  // namespace krl::host
