# The same with the standard library's threads, for programs.
set(krl_mingw_threads posix)
include(${CMAKE_CURRENT_LIST_DIR}/mingw-w64-i686.cmake)
