#include "host/MethodRegistry.h"

namespace krl::host {

void addColourMethods(MethodList& list) { list.group(""); }

}  // namespace krl::host
