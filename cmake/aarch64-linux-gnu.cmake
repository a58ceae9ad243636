# Cross-compiles for 64-bit ARM, for qemu-user.
set(krl_processor aarch64)
include(${CMAKE_CURRENT_LIST_DIR}/linux-gnu.cmake)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64)
