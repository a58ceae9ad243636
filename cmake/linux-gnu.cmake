# Cross-compiles for Linux on another processor, `krl_processor`.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR ${krl_processor})
set(CMAKE_C_COMPILER ${krl_processor}-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER ${krl_processor}-linux-gnu-g++)
set(CMAKE_FIND_ROOT_PATH /usr/${krl_processor}-linux-gnu)
include(${CMAKE_CURRENT_LIST_DIR}/cross.cmake)
