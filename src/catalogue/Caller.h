#pragma once

#include <cstddef>
#include <cstdint>

#include "krlimage/engine.h"

/// Who calls a method: the one seam between the catalogue and the worlds that values come from. The plug-in
/// implements it with the values of its host, C, Python and the command line with a tree of plain values.
namespace krl {

/// What an operation of a caller answers: 0, or a code of the caller's own, which the call hands back.
using CallCode = int32_t;

inline constexpr CallCode kCallOk = 0;
inline constexpr CallCode kCallOutOfMemory = static_cast<CallCode>(0x80040002u);
/// The engine was cancelled.
inline constexpr CallCode kCallCancelled = static_cast<CallCode>(0x8004FFFFu);
inline constexpr CallCode kCallUnsupported = static_cast<CallCode>(0x80040004u);

/// A value of the caller's: two words that only the caller looks into.
struct ValueHandle {
    uintptr_t words[2] = {0, 0};
};

/// A symbol as the caller numbers it; equal symbols have equal ids.
using SymbolId = int32_t;

class Caller {
public:
    virtual ~Caller() = default;

    // Arguments and what is inside them. Elements are references of the reader's, to be released; the
    // property at an index is borrowed from its list. Indices count from 1.
    virtual ValueHandle argument(size_t index) = 0;
    virtual CallCode read(const ValueHandle& value, int32_t& out) = 0;
    virtual CallCode read(const ValueHandle& value, double& out) = 0;
    virtual CallCode read(const ValueHandle& value, Point& out) = 0;
    virtual CallCode read(const ValueHandle& value, Colour& out) = 0;
    virtual CallCode readSymbol(const ValueHandle& value, SymbolId& out) = 0;
    virtual SymbolId symbol(const char* name) = 0;
    /// Entries of a list, negative for a value that is no list.
    virtual int32_t countElements(const ValueHandle& list) = 0;
    virtual CallCode element(const ValueHandle& list, int32_t index, ValueHandle& out) = 0;
    virtual CallCode propertyAt(const ValueHandle& list, int32_t index, ValueHandle& out) = 0;
    /// The value under the symbol `key`; a code that is not 0 where there is none.
    virtual CallCode elementUnder(const ValueHandle& list, const char* key, ValueHandle& out) = 0;
    virtual CallCode release(const ValueHandle& value) = 0;

    // Pictures.
    virtual CallCode describePicture(const ValueHandle& picture, ImageInfo& out) = 0;
    /// Whether its pixels are RGBA, which methods take for a second picture if they treat every pixel alone.
    virtual bool isRedFirst(const ValueHandle&) { return false; }
    /// The pixels, at one place until `unlockPicture`.
    virtual CallCode lockPicture(const ValueHandle& picture, uint8_t*& out) = 0;
    virtual CallCode unlockPicture(const ValueHandle& picture) = 0;
    /// A new picture of 32 bits, alpha among them, whose reference is the reader's.
    virtual CallCode makePicture(int32_t width, int32_t height, ValueHandle& out) = 0;

    // The result: entries beside `error`, dropped if the call fails.
    virtual void give(const char* key, double number) = 0;
    virtual void give(const char* key, Colour colour) = 0;
    virtual void giveSymbol(const char* key, const char* name) = 0;
    /// Takes the reference over.
    virtual void givePicture(const char* key, const ValueHandle& picture) = 0;
    /// Makes a result of `error` and this picture, whose release is part of the call: what it answers comes
    /// back, and there is then no result yet.
    virtual CallCode answerWithPicture(const char* key, const ValueHandle& picture) = 0;
    /// Pictures that become the result in place of the usual one.
    virtual void beginPictureList() = 0;
    virtual void addToPictureList(const ValueHandle& picture) = 0;
    /// A success has no `error` entry.
    virtual void leaveOutError() = 0;
};

}  // namespace krl
