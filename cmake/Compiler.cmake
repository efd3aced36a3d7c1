# The compiler where nobody named one: Clang if it is installed, because its code for the SIMD kernels is faster.
if(NOT CMAKE_TOOLCHAIN_FILE AND NOT CMAKE_CXX_COMPILER AND NOT CMAKE_C_COMPILER AND NOT DEFINED ENV{CXX}
   AND NOT DEFINED ENV{CC})
  find_program(ONDRIX_CLANGXX clang++)
  find_program(ONDRIX_CLANG clang)
  mark_as_advanced(ONDRIX_CLANGXX ONDRIX_CLANG)
  if(ONDRIX_CLANGXX AND ONDRIX_CLANG)
    set(CMAKE_CXX_COMPILER ${ONDRIX_CLANGXX} CACHE FILEPATH "C++ compiler")
    set(CMAKE_C_COMPILER ${ONDRIX_CLANG} CACHE FILEPATH "C compiler")
  endif()
endif()
