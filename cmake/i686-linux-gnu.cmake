# Compiles for 32-bit x86 with SSE2, which any 64-bit x86 Linux runs.
set(krl_processor i686)
include(${CMAKE_CURRENT_LIST_DIR}/linux-gnu.cmake)
