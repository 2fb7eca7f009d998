# Objects compiled for one processor level must bring no code that another object also has: the linker keeps one copy, and
# an older processor would run it. So they define no weak symbols and no link-once code.
#   cmake -DTREE=<source> -DBUILD=<build> -DNM=<nm> -DOBJDUMP=<objdump> -P vector_objects.cmake
file(GLOB_RECURSE sources RELATIVE ${TREE} ${TREE}/frames/*_avx2.cpp ${TREE}/imaging/*_avx2.cpp ${TREE}/keying/*_avx2.cpp
     ${TREE}/frames/*_avx512.cpp ${TREE}/imaging/*_avx512.cpp ${TREE}/keying/*_avx512.cpp)
file(GLOB_RECURSE objects ${BUILD}/*_avx2.cpp.o ${BUILD}/*_avx2.cpp.obj ${BUILD}/*_avx512.cpp.o
     ${BUILD}/*_avx512.cpp.obj)
list(LENGTH sources wanted)
list(LENGTH objects found)
if(wanted EQUAL 0 OR found LESS wanted)
  message(FATAL_ERROR "${wanted} vector files in the tree, ${found} objects in the build")
endif()

set(bad 0)
foreach(object IN LISTS objects)
  execute_process(COMMAND ${NM} --defined-only -C ${object} OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
  execute_process(COMMAND ${OBJDUMP} -h -w ${object} OUTPUT_VARIABLE sections COMMAND_ERROR_IS_FATAL ANY)
  string(REGEX MATCHALL "[^\n]* [WwVvu] [^\n]*|[^\n]*, CODE, LINK_ONCE[^\n]*" findings "${symbols}\n${sections}")
  if(NOT symbols MATCHES " T ")
    list(APPEND findings "no code at all")
  endif()
  foreach(finding IN LISTS findings)
    message("${object}: ${finding}")
    set(bad 1)
  endforeach()
endforeach()
if(bad)
  message(FATAL_ERROR "vector objects share code with others")
endif()
message("${found} vector objects")
