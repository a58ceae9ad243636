#include "host/MethodRegistry.h"

namespace krl::host {

void addEdgeMethods(MethodList& list) { list.group(""); }

}  // namespace krl::host
