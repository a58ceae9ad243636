#include "core/LookupTables.h"

namespace krl {

void LookupTables::build() {}

}  // namespace krl
