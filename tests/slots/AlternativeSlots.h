#pragma once

/// The table of a host whose interfaces hold further operations between those that are used: every
/// slot differs from the usual one.
namespace krl::host::slots {

inline constexpr int kCreateInstance = 5;

inline constexpr int kAllocate = 7;
inline constexpr int kFree = 9;

inline constexpr int kInternSymbol = 20;
inline constexpr int kReleaseValue = 19;
inline constexpr int kValueToInteger = 12;
inline constexpr int kValueToSymbol = 5;
inline constexpr int kValueToFloat = 6;
inline constexpr int kValueToPoint = 14;
inline constexpr int kIntegerToValue = 8;
inline constexpr int kSymbolToValue = 3;
inline constexpr int kFloatToValue = 4;
inline constexpr int kStringToValue = 17;

inline constexpr int kValueToColor = 4;
inline constexpr int kColorToValue = 11;

inline constexpr int kNewList = 9;
inline constexpr int kAppendToList = 10;
inline constexpr int kCountElements = 3;
inline constexpr int kGetElementByIndex = 15;
inline constexpr int kNewPropertyList = 21;
inline constexpr int kAppendProperty = 5;
inline constexpr int kGetElementByKey = 6;
inline constexpr int kGetPropertyByIndex = 8;

inline constexpr int kCreateImage = 11;
inline constexpr int kLockImage = 3;
inline constexpr int kUnlockImage = 13;
inline constexpr int kQueryImage = 4;

inline constexpr int kPrintMessage = 18;

inline constexpr int kGetPlayer = 6;
inline constexpr int kGetPlayerSub = 9;
inline constexpr int kGetPlayerItem = 3;

inline constexpr int kGetApplicationItem = 10;
inline constexpr int kAddRegistryEntry = 4;
inline constexpr int kPutEntry = 7;

inline constexpr int kTableSize = 24;

}  // namespace krl::host::slots
