#include "host/MethodRegistry.h"

namespace krl::host {

void addToneMethods(MethodList& list) { list.group(""); }

}  // namespace krl::host
