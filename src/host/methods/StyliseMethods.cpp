#include "host/MethodRegistry.h"

namespace krl::host {

void addStyliseMethods(MethodList& list) { list.group(""); }

}  // namespace krl::host
