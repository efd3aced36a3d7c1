# Linux on 64-bit ARM.
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(ONDRIX_CROSS_TRIPLE aarch64-linux-gnu)
set(ONDRIX_CROSS_QEMU qemu-aarch64)
include(${CMAKE_CURRENT_LIST_DIR}/linux-cross.cmake)
