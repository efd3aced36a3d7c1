# Looks for symbols that object files of the library must not define.
#   cmake -D NM=<nm> "-D OBJECTS=<object files>" "-D FORBID=<kinds>" -P objects.cmake
# Kinds:
#   constructors  code that runs when the library is loaded
#   weak          functions of which the linker keeps one copy for all objects: it could keep the one that was
#                 compiled for a newer processor than the one that calls it
cmake_minimum_required(VERSION 3.22)

if(NOT OBJECTS)
  message(FATAL_ERROR "no object files")
endif()
foreach(object IN LISTS OBJECTS)
  execute_process(COMMAND ${NM} --defined-only ${object} OUTPUT_VARIABLE symbols RESULT_VARIABLE status)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "cannot read ${object}")
  endif()
  if("constructors" IN_LIST FORBID AND symbols MATCHES "(_GLOBAL__sub_I_[^\n]*|__cxx_global_var_init[^\n]*)")
    message(SEND_ERROR "${object} runs ${CMAKE_MATCH_1} when it is loaded")
  endif()
  if("weak" IN_LIST FORBID AND symbols MATCHES "[0-9a-f]+ [VWvwu] ([^\n]*)")
    message(SEND_ERROR "${object} defines ${CMAKE_MATCH_1} weakly")
  endif()
endforeach()
