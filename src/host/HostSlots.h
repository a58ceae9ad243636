#pragma once

/// The slot of each host operation in its interface's table. To support a host whose interfaces have
/// additional operations, edit only this table.
#ifdef KRL_HOST_SLOTS
#include KRL_HOST_SLOTS
#else
namespace krl::host::slots {

// callback
inline constexpr int kCreateInstance = 3;

// allocator
inline constexpr int kAllocate = 3;
inline constexpr int kFree = 4;

// values
inline constexpr int kInternSymbol = 3;
inline constexpr int kReleaseValue = 4;
inline constexpr int kValueToInteger = 5;
inline constexpr int kValueToSymbol = 6;
inline constexpr int kValueToFloat = 7;
inline constexpr int kValueToPoint = 8;
inline constexpr int kIntegerToValue = 9;
inline constexpr int kSymbolToValue = 10;
inline constexpr int kFloatToValue = 11;
inline constexpr int kStringToValue = 12;

// colours
inline constexpr int kValueToColor = 3;
inline constexpr int kColorToValue = 4;

// lists
inline constexpr int kNewList = 3;
inline constexpr int kAppendToList = 4;
inline constexpr int kCountElements = 5;
inline constexpr int kGetElementByIndex = 6;
inline constexpr int kNewPropertyList = 7;
inline constexpr int kAppendProperty = 8;
inline constexpr int kGetElementByKey = 9;
inline constexpr int kGetPropertyByIndex = 10;

// images
inline constexpr int kCreateImage = 3;
inline constexpr int kLockImage = 4;
inline constexpr int kUnlockImage = 5;
inline constexpr int kQueryImage = 6;

// utils
inline constexpr int kPrintMessage = 3;

// playerSource, player
inline constexpr int kGetPlayer = 3;
inline constexpr int kGetPlayerSub = 3;
inline constexpr int kGetPlayerItem = 4;

// appInfo, registry cache, registry dictionary
inline constexpr int kGetApplicationItem = 3;
inline constexpr int kAddRegistryEntry = 3;
inline constexpr int kPutEntry = 3;

/// Large enough for every table of operations above.
inline constexpr int kTableSize = 16;

}  // namespace krl::host::slots
#endif
