# Looks for operations that no reference test names: its object files must refer to the entry point or the reference.
#   cmake -D NM=<nm> -D SOURCE=<source tree> "-D OBJECTS=<object files>" -P referenceTests.cmake
cmake_minimum_required(VERSION 3.22)

set(named "")
foreach(object IN LISTS OBJECTS)
  execute_process(COMMAND ${NM} --undefined-only ${object} OUTPUT_VARIABLE symbols RESULT_VARIABLE status)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "cannot read ${object}")
  endif()
  string(REGEX MATCHALL "odx[A-Za-z0-9_]+" symbols "${symbols}")
  list(APPEND named ${symbols})
endforeach()

file(GLOB lists ${SOURCE}/src/frame/operations/*.def)
list(FILTER lists EXCLUDE REGEX "/frame\\.def$") # services of the remote processor
set(count 0)
foreach(list IN LISTS lists)
  file(STRINGS ${list} lines
    REGEX "^ODX_((OPERATION|INTERNAL)\\( *[0-9]+, [A-Za-z0-9_]+, [CV], C|VERSION\\([A-Za-z0-9_]+, [A-Za-z0-9_]+, written)")
  foreach(line IN LISTS lines)
    string(REGEX MATCH "\\(( *[0-9]+,)? *(odx[A-Za-z0-9_]+)," matched "${line}")
    set(name ${CMAKE_MATCH_2})
    math(EXPR count "${count} + 1")
    if(NOT name IN_LIST named AND NOT "${name}C" IN_LIST named)
      message(SEND_ERROR "no reference test names ${name}")
    endif()
  endforeach()
endforeach()
if(count EQUAL 0)
  message(FATAL_ERROR "the lists were not understood")
endif()
