#include "player/host/Xtra.h"

#include <algorithm>
#include <bit>
#include <cstdio>
#include <mutex>
#include <new>

#include "player/host/HostError.h"

namespace krl::player {

using namespace host;

namespace {

std::mutex& objectMutex() {
    static std::mutex mutex;
    return mutex;
}

/// The content of the host's three words in an instance's head.
enum HostWord { kMaker, kReferences, kDestroy };

void*& word(HostInterface* instance, HostWord which) {
    return reinterpret_cast<InstanceHead*>(instance)->hostWords[which];
}

uintptr_t countedReferences(HostInterface* instance, intptr_t change) {
    const auto count =
        reinterpret_cast<uintptr_t>(word(instance, kReferences)) + static_cast<uintptr_t>(change);
    word(instance, kReferences) = std::bit_cast<void*>(count);
    return count;
}

std::string hexadecimal(HostStatus status) {
    char text[16];
    std::snprintf(text, sizeof(text), "0x%08X", static_cast<unsigned>(status));
    return text;
}

}  // namespace

Xtra::Xtra(EmbeddedHost& host, PlugInLibrary library) : host_(host), library_(std::move(library)) {
    const std::lock_guard lock(objectMutex());
    findClasses();
    registerClass();
    const RegistryDictionary* registered = host_.dictionary(scriptClass_, ids::kIMoaMmXScript);
    const auto found = registered ? registered->texts.find("msgTable") : decltype(registered->texts.end()){};
    if (!registered || found == registered->texts.end())
        throw HostError("the xtra registered no message table");
    table_.emplace(found->second);
}

void Xtra::findClasses() {
    ClassInfoRecord* records = nullptr;
    if (const HostStatus status = library_.getClassInfo(host_.allocator(), &records))
        throw HostError("the xtra did not report its classes: " + hexadecimal(status));
    const ClassInfoRecord* record = records;
    for (; !(record->classId == ids::kNone && record->interfaceId == ids::kNone); ++record) {
        if (record->interfaceId == ids::kIMoaRegister) registrationClass_ = record->classId;
        if (record->interfaceId == ids::kIMoaMmXScript) scriptClass_ = record->classId;
    }
    host_.free(records);
    if (registrationClass_ == ids::kNone || scriptClass_ == ids::kNone)
        throw HostError("the xtra has no scripting class that registers itself");
}

void Xtra::registerClass() {
    HostInterface* object = makeInterface(registrationClass_, ids::kIMoaRegister);
    const HostStatus status = RegisterOperation::call(object, host_.registryCache(), nullptr);
    unknown::Release::call(object);
    --instances_;
    if (status == kHostTooOld)
        throw HostError("the xtra needs a host newer than version " + host_.applicationVersion);
    if (status != kHostOk) throw HostError("the xtra cannot be registered: " + hexadecimal(status));
}

/// A zeroed record with its head filled and one reference, owned by the caller.
InstanceHead* Xtra::makeRecord(const Identifier& classId) {
    int32_t bytes = 0;
    CreateInstanceFunction create = nullptr;
    DestroyInstanceFunction destroy = nullptr;
    if (const HostStatus status = library_.getClassForm(&classId, &bytes, &create, &destroy))
        throw HostError("the xtra does not know its own class: " + hexadecimal(status));
    bytes = std::max(bytes, static_cast<int32_t>(sizeof(InstanceHead)));
    auto* record = static_cast<InstanceHead*>(host_.allocate(static_cast<uint32_t>(bytes)));
    if (!record) throw std::bad_alloc();
    static void* const operations[] = {reinterpret_cast<void*>(&queryInstance),
                                       reinterpret_cast<void*>(&addInstanceReference),
                                       reinterpret_cast<void*>(&releaseInstance)};
    record->operations = operations;
    record->callback = host_.provider();
    record->allocator = host_.allocator();
    auto* instance = reinterpret_cast<HostInterface*>(record);
    word(instance, kMaker) = this;
    word(instance, kDestroy) = reinterpret_cast<void*>(destroy);
    countedReferences(instance, 1);
    if (const HostStatus status = create(record)) {
        releaseInstance(instance);
        throw HostError("the xtra cannot make an instance: " + hexadecimal(status));
    }
    return record;
}

HostInterface* Xtra::makeInterface(const Identifier& classId, const Identifier& interfaceId) {
    InstanceHead* record = makeRecord(classId);
    void* object = nullptr;
    const HostStatus status = library_.getInterface(record, &classId, &interfaceId, &object);
    releaseInstance(reinterpret_cast<HostInterface*>(record));
    if (status != kHostOk || !object)
        throw HostError("the xtra did not provide its interface: " + hexadecimal(status));
    ++instances_;
    return static_cast<HostInterface*>(object);
}

void Xtra::letGo(HostInterface* object) {
    const std::lock_guard lock(objectMutex());
    unknown::Release::call(object);
    --instances_;
}

Value Xtra::newInstance() {
    auto instance = std::make_unique<XtraInstanceObject>(*this);
    {
        const std::lock_guard lock(objectMutex());
        instance->script = makeInterface(scriptClass_, ids::kIMoaMmXScript);
        host_.rethrowFailure();
    }
    // Outside the lock: if the heap is full, the instance is destroyed again, which takes the lock.
    return host_.heap.keep(std::move(instance));
}

Value Xtra::call(const Value& instance, int32_t selector, std::span<const Value> arguments) {
    const MethodSignature& method = methods()[static_cast<size_t>(selector)];
    std::vector<ScriptValue> words = {instance.words()};
    for (const Value& argument : arguments) words.push_back(argument.words());
    words.resize(1 + std::max(arguments.size(), method.arguments));
    CallInfo info;
    info.selector = selector;
    info.arguments = words.data();
    // The status only repeats the result, or signals that there is none.
    CallOperation::call(instance.as<XtraInstanceObject>()->script, &info);
    Value answer = Value::adopting(host_.heap, info.result);
    host_.rethrowFailure();
    return answer;
}

HostStatus KRL_HOST_CALL Xtra::queryInstance(HostInterface* self, const Identifier* id, void** out) {
    *out = nullptr;
    auto* record = reinterpret_cast<InstanceHead*>(self);
    const Xtra& maker = *static_cast<Xtra*>(word(self, kMaker));
    for (const Identifier* classId : {&maker.scriptClass_, &maker.registrationClass_})
        if (maker.library_.getInterface(record, classId, id, out) == kHostOk) return kHostOk;
    return kHostNoInterface;
}

uint32_t KRL_HOST_CALL Xtra::addInstanceReference(HostInterface* self) {
    return static_cast<uint32_t>(countedReferences(self, 1));
}

uint32_t KRL_HOST_CALL Xtra::releaseInstance(HostInterface* self) {
    const uintptr_t left = countedReferences(self, -1);
    if (left > 0) return static_cast<uint32_t>(left);
    auto* record = reinterpret_cast<InstanceHead*>(self);
    EmbeddedHost& owner = static_cast<Xtra*>(word(self, kMaker))->host_;
    reinterpret_cast<DestroyInstanceFunction>(word(self, kDestroy))(record);
    owner.free(record);
    return 0;
}

}  // namespace krl::player
