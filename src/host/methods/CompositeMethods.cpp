#include "host/MethodRegistry.h"

namespace krl::host {

void addCompositeMethods(MethodList& list) { list.group(""); }

}  // namespace krl::host
