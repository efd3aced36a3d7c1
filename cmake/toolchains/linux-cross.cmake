# Cross compilation for Linux on ARM with Debian's cross compilers, and qemu-user to run what was built. Included
# by a file that sets
#   ONDRIX_CROSS_TRIPLE  the triple of the cross tools
#   ONDRIX_CROSS_QEMU    the emulator
# ONDRIX_CROSS_CLANG builds with Clang, on the headers and libraries of the cross GCC.
set(CMAKE_SYSTEM_NAME Linux)

option(ONDRIX_CROSS_CLANG "Cross compile with Clang" OFF)
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ONDRIX_CROSS_CLANG)
if(ONDRIX_CROSS_CLANG)
  set(CMAKE_C_COMPILER clang)
  set(CMAKE_CXX_COMPILER clang++)
  set(CMAKE_C_COMPILER_TARGET ${ONDRIX_CROSS_TRIPLE})
  set(CMAKE_CXX_COMPILER_TARGET ${ONDRIX_CROSS_TRIPLE})
  # Those of this machine may not know the objects of another.
  set(CMAKE_NM ${ONDRIX_CROSS_TRIPLE}-nm)
  set(CMAKE_READELF ${ONDRIX_CROSS_TRIPLE}-readelf)
else()
  set(CMAKE_C_COMPILER ${ONDRIX_CROSS_TRIPLE}-gcc)
  set(CMAKE_CXX_COMPILER ${ONDRIX_CROSS_TRIPLE}-g++)
endif()

set(CMAKE_FIND_ROOT_PATH /usr/${ONDRIX_CROSS_TRIPLE})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

find_program(ONDRIX_CROSS_EMULATOR NAMES ${ONDRIX_CROSS_QEMU} ${ONDRIX_CROSS_QEMU}-static)
mark_as_advanced(ONDRIX_CROSS_EMULATOR)
if(ONDRIX_CROSS_EMULATOR)
  set(CMAKE_CROSSCOMPILING_EMULATOR ${ONDRIX_CROSS_EMULATOR} -L /usr/${ONDRIX_CROSS_TRIPLE})
endif()
