#include "host/MethodRegistry.h"

namespace krl::host {

void addGradientMethods(MethodList& list) { list.group(""); }

}  // namespace krl::host
