# Looks for what object files of the library must not contain.
#   cmake -D NM=<nm> -D READELF=<readelf> "-D OBJECTS=<object files>" "-D FORBID=<kinds>" -P objects.cmake
# Kinds:
#   constructors  code that runs when the library is loaded
#   weak          functions of which the linker keeps one copy for all objects: it could keep the one that was
#                 compiled for a newer processor than the one that calls it
cmake_minimum_required(VERSION 3.22)

if(NOT OBJECTS)
  message(FATAL_ERROR "no object files")
endif()
foreach(object IN LISTS OBJECTS)
  execute_process(COMMAND ${NM} --defined-only ${object} OUTPUT_VARIABLE symbols RESULT_VARIABLE nm_status)
  execute_process(COMMAND ${READELF} -S -W ${object} OUTPUT_VARIABLE sections RESULT_VARIABLE readelf_status)
  if(NOT nm_status EQUAL 0 OR NOT readelf_status EQUAL 0 OR NOT sections MATCHES "\\.symtab")
    message(FATAL_ERROR "cannot read ${object}")
  endif()
  if("constructors" IN_LIST FORBID AND sections MATCHES "\\.(preinit_array|init_array|ctors)")
    message(SEND_ERROR "${object} runs code when it is loaded: .${CMAKE_MATCH_1}")
  endif()
  if("weak" IN_LIST FORBID AND symbols MATCHES "[0-9a-f]+ [VWvwu] ([^\n]*)")
    message(SEND_ERROR "${object} defines ${CMAKE_MATCH_1} weakly")
  endif()
endforeach()
