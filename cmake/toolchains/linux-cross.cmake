# Cross compilation for Linux on ARM with Debian's cross compilers, and qemu-user to run what was built. Included
# by a file that sets
#   ONDRIX_CROSS_TRIPLE  the triple of the cross tools
#   ONDRIX_CROSS_QEMU    the emulator
# The compiler is Clang where it is installed, as in native builds, on the headers and libraries of the cross GCC.
# ONDRIX_CROSS_GCC takes GCC in any case.
set(CMAKE_SYSTEM_NAME Linux)

option(ONDRIX_CROSS_GCC "Cross compile with GCC where Clang is installed, too" OFF)
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ONDRIX_CROSS_GCC)
find_program(ONDRIX_CLANGXX clang++)
find_program(ONDRIX_CLANG clang)
mark_as_advanced(ONDRIX_CLANGXX ONDRIX_CLANG)
if(ONDRIX_CLANGXX AND ONDRIX_CLANG AND NOT ONDRIX_CROSS_GCC)
  set(CMAKE_C_COMPILER ${ONDRIX_CLANG})
  set(CMAKE_CXX_COMPILER ${ONDRIX_CLANGXX})
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
