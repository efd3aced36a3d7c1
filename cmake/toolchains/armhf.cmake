# Linux on 32-bit ARM, hard-float, with NEON.
set(CMAKE_SYSTEM_PROCESSOR armv7l)
set(ONDRIX_CROSS_TRIPLE arm-linux-gnueabihf)
set(ONDRIX_CROSS_QEMU qemu-arm)
include(${CMAKE_CURRENT_LIST_DIR}/linux-cross.cmake)
