#pragma once

#include <cstdint>

#include "krlimage/engine.h"

#if defined(_WIN32) && !defined(_WIN64)
#define KRL_HOST_CALL __stdcall
#define KRL_HOST_CALL_VARIADIC __cdecl
#else
#define KRL_HOST_CALL
#define KRL_HOST_CALL_VARIADIC
#endif

/// The records passed between the host and the plug-in.
namespace krl::host {

/// The status that every operation returns: 0 for success.
using HostStatus = int32_t;

inline constexpr HostStatus kHostOk = 0;
inline constexpr HostStatus kHostOutOfMemory = static_cast<HostStatus>(0x80040002u);
inline constexpr HostStatus kHostCannotUnload = static_cast<HostStatus>(0x80040003u);
inline constexpr HostStatus kHostNoInterface = static_cast<HostStatus>(0x80040004u);
inline constexpr HostStatus kHostNoClass = static_cast<HostStatus>(0x80040005u);
inline constexpr HostStatus kHostTooOld = static_cast<HostStatus>(0x80040014u);

/// Identifier of a class or an interface, written `data1-data2-data3-data4`.
struct Identifier {
    uint32_t data1;
    uint16_t data2, data3;
    uint8_t data4[8];

    bool operator==(const Identifier&) const = default;
};
static_assert(sizeof(Identifier) == 16);

/// The host's value: two words that the plug-in copies and never interprets.
struct ScriptValue {
    int32_t words[2] = {0, 0};
};
static_assert(sizeof(ScriptValue) == 8);

/// A symbol; equal symbols have equal ids.
using SymbolId = int32_t;

/// A colour as the colour service writes it.
struct ColourRecord {
    uint8_t red = 0, green = 0, blue = 0;
    uint8_t kind = 1;

    Colour colour() const { return {red, green, blue}; }
};
static_assert(sizeof(ColourRecord) == 4);

/// The result of locking an image. The last word is private to the host.
struct ImageLock {
    uint8_t* pixels = nullptr;
    void* host = nullptr;
};

/// The host's record for one call of a method.
struct CallInfo {
    int32_t selector = 0;                    ///< index of the method in the message table, 0 for `new`
    ScriptValue result;                      ///< returned to the script
    const ScriptValue* arguments = nullptr;  ///< element 0 is `me`, element 1 the first argument
};

/// Any interface of the host: a table of operations whose first three are
/// `QueryInterface`, `AddRef` and `Release`.
struct HostInterface {
    void* const* operations;
};

}  // namespace krl::host
