#pragma once

#include <string_view>
#include <vector>

#include "host/Method.h"

namespace krl::host {

/// Every method, in the order of the message table: element 0 is selector 1. Made once; read only,
/// for dispatch as for help, reference page, gallery and generated tests.
const std::vector<const Method*>& methods();

/// The method of that name, with or without its `krlImage` prefix, letter case aside; null when
/// there is none.
const Method* findMethod(std::string_view name);

/// Selector of a method, 1 to 112.
int32_t selectorOf(const Method& method);

/// Its line of the message table without the trailing comment: `krlImageQuit object me`, blanks and
/// tabs folded to one blank.
std::string signatureOf(const Method& method);

// The families of bindings, each at home in its file of `methods/`.
void addEngineMethods(MethodList& list);
void addInertMethods(MethodList& list);
void addToneMethods(MethodList& list);
void addColourMethods(MethodList& list);
void addHueMethods(MethodList& list);
void addFilmMethods(MethodList& list);
void addBlurMethods(MethodList& list);
void addEdgeMethods(MethodList& list);
void addPathBlurMethods(MethodList& list);
void addStyliseMethods(MethodList& list);
void addWarpMethods(MethodList& list);
void addCompositeMethods(MethodList& list);
void addGlowMethods(MethodList& list);
void addKeyMethods(MethodList& list);
void addDifferenceKeyMethods(MethodList& list);
void addAlphaMethods(MethodList& list);
void addGradientMethods(MethodList& list);
void addFlareMethods(MethodList& list);
void addBezierMethods(MethodList& list);
void addFieldMethods(MethodList& list);

}  // namespace krl::host
