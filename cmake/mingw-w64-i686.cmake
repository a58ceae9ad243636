# Cross-compiles for 32-bit Windows: mingw-w64 with its runtime linked statically. The compiler variant with
# Win32 threads needs no thread library, whose imports old releases of Windows lack.
if(NOT krl_mingw_threads)
  set(krl_mingw_threads win32)
endif()
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(CMAKE_C_COMPILER i686-w64-mingw32-gcc-${krl_mingw_threads})
set(CMAKE_CXX_COMPILER i686-w64-mingw32-g++-${krl_mingw_threads})
set(CMAKE_RC_COMPILER i686-w64-mingw32-windres)
# The first folder, made by cmake/windows-libraries, has static libraries alone.
set(CMAKE_FIND_ROOT_PATH ${CMAKE_CURRENT_LIST_DIR}/../build/windows-libraries /usr/i686-w64-mingw32)
include(${CMAKE_CURRENT_LIST_DIR}/cross.cmake)
# Callers of this system align the stack to 4 bytes, vectors want it at 16.
set(CMAKE_CXX_FLAGS_INIT "-mstackrealign")
set(CMAKE_MODULE_LINKER_FLAGS_INIT "-static")
