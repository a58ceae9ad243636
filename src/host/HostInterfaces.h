#pragma once

#include <type_traits>

#include "host/HostSlots.h"
#include "host/HostTypes.h"

/// The host interfaces that the plug-in uses. Each operation is a type with its slot and signature, so the
/// plug-in calls and a host implements the same declaration:
/// `values::InternSymbol::call(values, "error", &symbol)`.
namespace krl::host {

template <int Slot, class Signature>
struct Operation;

template <int Slot, class Result, class... Arguments>
struct Operation<Slot, Result(Arguments...)> {
    using Function = Result(KRL_HOST_CALL*)(HostInterface*, Arguments...);
    static constexpr int slot = Slot;

    /// Calls it on `target`; a null interface or operation counts as one that the host does not have.
    static Result call(HostInterface* target, Arguments... arguments) {
        if (!target || !target->operations || !target->operations[Slot]) return absent();
        return reinterpret_cast<Function>(target->operations[Slot])(target, arguments...);
    }

private:
    static Result absent() {
        if constexpr (std::is_same_v<Result, HostStatus>) return kHostNoInterface;
        if constexpr (!std::is_void_v<Result> && !std::is_same_v<Result, HostStatus>) return Result{};
    }
};

/// Operations of every interface.
namespace unknown {
using QueryInterface = Operation<0, HostStatus(const Identifier*, void**)>;
using AddRef = Operation<1, uint32_t()>;
using Release = Operation<2, uint32_t()>;
}  // namespace unknown

/// The host's service provider: services are obtained with `QueryInterface`.
namespace callback {
using CreateInstance = Operation<slots::kCreateInstance, HostStatus(const Identifier* classId,
                                                                    const Identifier* interfaceId, void**)>;
}  // namespace callback

namespace allocator {
using Allocate = Operation<slots::kAllocate, void*(uint32_t bytes)>;
using Free = Operation<slots::kFree, void(void* block)>;
}  // namespace allocator

/// Conversions between script values and C++ values. The caller owns a returned value and releases it with
/// `ReleaseValue`.
namespace values {
using InternSymbol = Operation<slots::kInternSymbol, HostStatus(const char*, SymbolId*)>;
using ReleaseValue = Operation<slots::kReleaseValue, HostStatus(ScriptValue*)>;
using ValueToInteger = Operation<slots::kValueToInteger, HostStatus(const ScriptValue*, int32_t*)>;
using ValueToSymbol = Operation<slots::kValueToSymbol, HostStatus(const ScriptValue*, SymbolId*)>;
using ValueToFloat = Operation<slots::kValueToFloat, HostStatus(const ScriptValue*, double*)>;
using ValueToPoint = Operation<slots::kValueToPoint, HostStatus(const ScriptValue*, Point*)>;
using IntegerToValue = Operation<slots::kIntegerToValue, HostStatus(int32_t, ScriptValue*)>;
using SymbolToValue = Operation<slots::kSymbolToValue, HostStatus(SymbolId, ScriptValue*)>;
using FloatToValue = Operation<slots::kFloatToValue, HostStatus(double, ScriptValue*)>;
using StringToValue = Operation<slots::kStringToValue, HostStatus(const char*, ScriptValue*)>;
}  // namespace values

namespace colours {
using ValueToColor = Operation<slots::kValueToColor, HostStatus(const ScriptValue*, ColourRecord*)>;
using ColorToValue = Operation<slots::kColorToValue, HostStatus(const ColourRecord*, ScriptValue*)>;
}  // namespace colours

/// Linear and property lists; indices count from 1. Appending adds a reference for the list.
/// An element is returned with a reference for the caller, a property key without.
namespace lists {
using NewList = Operation<slots::kNewList, HostStatus(ScriptValue*)>;
using AppendToList = Operation<slots::kAppendToList, HostStatus(const ScriptValue* list, const ScriptValue*)>;
/// Returns the count, negative for a value that is not a list.
using CountElements = Operation<slots::kCountElements, int32_t(const ScriptValue* list)>;
using GetElementByIndex =
    Operation<slots::kGetElementByIndex, HostStatus(const ScriptValue* list, int32_t, ScriptValue*)>;
using NewPropertyList = Operation<slots::kNewPropertyList, HostStatus(ScriptValue*)>;
using AppendProperty =
    Operation<slots::kAppendProperty,
              HostStatus(const ScriptValue* list, const ScriptValue* key, const ScriptValue*)>;
using GetElementByKey = Operation<slots::kGetElementByKey,
                                  HostStatus(const ScriptValue* list, const ScriptValue* key, ScriptValue*)>;
using GetPropertyByIndex =
    Operation<slots::kGetPropertyByIndex, HostStatus(const ScriptValue* list, int32_t, ScriptValue*)>;
}  // namespace lists

namespace images {
/// Width, height, depth, alpha depth and a word that is always 0.
using CreateImage =
    Operation<slots::kCreateImage, HostStatus(int32_t, int32_t, int32_t, int32_t, int32_t, ScriptValue*)>;
using LockImage = Operation<slots::kLockImage, HostStatus(const ScriptValue*, ImageLock*)>;
using UnlockImage = Operation<slots::kUnlockImage, HostStatus(const ScriptValue*)>;
using QueryImage = Operation<slots::kQueryImage, HostStatus(const ScriptValue*, ImageInfo*)>;
}  // namespace images

namespace utils {
/// Prints a format with arguments to the host's message window.
struct PrintMessage {
    using Function = HostStatus(KRL_HOST_CALL_VARIADIC*)(HostInterface*, const char* format, ...);
    static constexpr int slot = slots::kPrintMessage;

    template <class... Arguments>
    static HostStatus call(HostInterface* target, const char* format, Arguments... arguments) {
        if (!target || !target->operations || !target->operations[slot]) return kHostNoInterface;
        return reinterpret_cast<Function>(target->operations[slot])(target, format, arguments...);
    }
};
}  // namespace utils

/// The objects acquired for one call.
namespace players {
using GetPlayer = Operation<slots::kGetPlayer, HostStatus(HostInterface** player)>;
using GetSub = Operation<slots::kGetPlayerSub, HostStatus(HostInterface** sub)>;
using GetItem = Operation<slots::kGetPlayerItem, HostStatus(int32_t item, HostInterface** answer)>;
}  // namespace players

/// The services for registration.
namespace registry {
/// Item 5 is the application's name, item 6 its version, as text.
using GetApplicationItem =
    Operation<slots::kGetApplicationItem, HostStatus(int32_t item, char* buffer, int32_t bufferBytes)>;
using AddEntry = Operation<slots::kAddRegistryEntry,
                           HostStatus(HostInterface* entry, const Identifier* classId,
                                      const Identifier* interfaceId, HostInterface** dictionary)>;
using PutEntry =
    Operation<slots::kPutEntry, HostStatus(int32_t type, const void* value, int32_t size, const char* key)>;
}  // namespace registry

}  // namespace krl::host
