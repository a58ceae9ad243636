#include "host/MethodRegistry.h"

namespace krl::host {

void addFieldMethods(MethodList& list) { list.group(""); }

}  // namespace krl::host
