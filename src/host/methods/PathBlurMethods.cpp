#include "host/MethodRegistry.h"

namespace krl::host {

void addPathBlurMethods(MethodList& list) { list.group(""); }

}  // namespace krl::host
