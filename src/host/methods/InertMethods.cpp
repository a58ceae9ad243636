#include "host/MethodRegistry.h"

namespace krl::host {

void addInertMethods(MethodList& list) { list.group(""); }

}  // namespace krl::host
