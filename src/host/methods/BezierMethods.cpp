#include "host/MethodRegistry.h"

namespace krl::host {

void addBezierMethods(MethodList& list) { list.group(""); }

}  // namespace krl::host
