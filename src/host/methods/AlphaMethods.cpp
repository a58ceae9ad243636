#include "host/MethodRegistry.h"

namespace krl::host {

void addAlphaMethods(MethodList& list) { list.group(""); }

}  // namespace krl::host
