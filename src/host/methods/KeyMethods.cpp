#include "host/MethodRegistry.h"

namespace krl::host {

void addKeyMethods(MethodList& list) { list.group(""); }

}  // namespace krl::host
