#include "host/MethodRegistry.h"

namespace krl::host {

void addFilmMethods(MethodList& list) { list.group(""); }

}  // namespace krl::host
