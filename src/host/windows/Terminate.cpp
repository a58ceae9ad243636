#include <cstdlib>

/// The runtime library's last words on an exception that nobody caught, which no host shows: without
/// them everything that spells out the names of types stays out of the library.
namespace __gnu_cxx {

void __verbose_terminate_handler();
void __verbose_terminate_handler() { std::abort(); }

}  // namespace __gnu_cxx
