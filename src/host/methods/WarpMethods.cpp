#include "host/MethodRegistry.h"

namespace krl::host {

void addWarpMethods(MethodList& list) { list.group(""); }

}  // namespace krl::host
