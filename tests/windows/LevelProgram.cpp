#include <cstdint>
#include <cstdio>

/// Prints which functions the plug-in would select on this machine: its selection, with a table of one
/// function.
extern "C" {
int plainFunction();
int plainFunction() { return std::puts("plain"); }
int wideFunction();
int wideFunction() { return std::puts("wide"); }

extern void* krl_chosen_functions[];
extern void* const krl_wide_functions[];
extern const uint32_t krl_function_count;

void* krl_chosen_functions[] = {reinterpret_cast<void*>(plainFunction)};
void* const krl_wide_functions[] = {reinterpret_cast<void*>(wideFunction)};
const uint32_t krl_function_count = 1;
}

int main() { return reinterpret_cast<int (*)()>(krl_chosen_functions[0])() < 0; }
