#include "host/MethodRegistry.h"

namespace krl::host {

void addBlurMethods(MethodList& list) { list.group(""); }

}  // namespace krl::host
