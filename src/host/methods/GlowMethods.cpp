#include "host/MethodRegistry.h"

namespace krl::host {

void addGlowMethods(MethodList& list) { list.group(""); }

}  // namespace krl::host
