#include "host/MethodRegistry.h"

namespace krl::host {

void addFlareMethods(MethodList& list) { list.group(""); }

}  // namespace krl::host
