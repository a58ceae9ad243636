#include "host/MethodRegistry.h"

namespace krl::host {

void addHueMethods(MethodList& list) { list.group(""); }

}  // namespace krl::host
