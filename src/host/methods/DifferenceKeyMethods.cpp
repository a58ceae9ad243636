#include "host/MethodRegistry.h"

namespace krl::host {

void addDifferenceKeyMethods(MethodList& list) { list.group(""); }

}  // namespace krl::host
