# How every target of the project is compiled, and the few functions with which the folders declare their targets.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
find_package(Threads REQUIRED)

# zck_room(<name> SOURCES <file>... [LINKS <target>...])
# A room of the library: the static library zck_<name>. A file named *_avx2.cpp or *_avx512.cpp is compiled for that
# processor level; its functions are called only where the level was found.
function(zck_room name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_library(zck_${name} STATIC ${ARG_SOURCES})
  zck_compile(zck_${name})
  target_link_libraries(zck_${name} PUBLIC ${ARG_LINKS} Threads::Threads)
  foreach(source IN LISTS ARG_SOURCES)
    set(level "")
    if(source MATCHES "_avx2\\.cpp$")
      set(level -mavx2)
    elseif(source MATCHES "_avx512\\.cpp$")
      set(level -mavx512f -mavx512bw -mavx512dq -mavx512vl)
    endif()
    if(level)
      # GCC for Windows does not align the stack for wide spills, hence the unaligned moves.
      set_source_files_properties(${source} PROPERTIES COMPILE_OPTIONS
          "${level};$<$<BOOL:${MINGW}>:-Wa,-muse-unaligned-vector-move>")
    endif()
  endforeach()
endfunction()

# zck_headers(<name> [LINKS <target>...]): a room without code.
function(zck_headers name)
  cmake_parse_arguments(ARG "" "" "LINKS" ${ARGN})
  add_library(zck_${name} INTERFACE)
  target_link_libraries(zck_${name} INTERFACE ${ARG_LINKS})
endfunction()

# zck_test(<name> [OPTIMISED] SOURCES <file>... [LINKS <target>...] [LABELS <label>...])
# One GoogleTest program per folder: the target test_<name>, run by CTest as one test.
#
# Tests are compiled without optimisation: to compile them takes most of a build's time, to run them little. Those that walk
# over many pixels in code of their own keep the level of the preset: with OPTIMISED, or with the label `kernel`.
function(zck_test name)
  cmake_parse_arguments(ARG "OPTIMISED" "" "SOURCES;LINKS;LABELS" ${ARGN})
  if(NOT ARG_LABELS)
    set(ARG_LABELS unit)
  endif()
  add_executable(test_${name} ${ARG_SOURCES})
  zck_compile(test_${name})
  set(pch zck_test_pch_optimised)
  if(NOT ARG_OPTIMISED AND NOT kernel IN_LIST ARG_LABELS)
    set(pch zck_test_pch)
    target_compile_options(test_${name} PRIVATE -O0)
  endif()
  target_link_libraries(test_${name} PRIVATE ${ARG_LINKS} zck_gtest_main)
  if(ZCK_PCH)
    target_precompile_headers(test_${name} REUSE_FROM ${pch})
  endif()
  add_test(NAME ${name} COMMAND test_${name})
  if(CMAKE_CROSSCOMPILING)
    list(APPEND ARG_LABELS windows)
  endif()
  set_tests_properties(${name} PROPERTIES LABELS "${ARG_LABELS}" TIMEOUT 900)
endfunction()

# zck_library_beside(<target>): on Windows a program finds the library in its own folder.
function(zck_library_beside target)
  if(WIN32)
    add_custom_command(TARGET ${target} POST_BUILD
        COMMAND ${CMAKE_COMMAND} -E copy_if_different $<TARGET_FILE:zchromakey> $<TARGET_FILE_DIR:${target}>)
  endif()
endfunction()

# Flags that every target takes.
function(zck_compile target)
  target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/include)
  target_compile_options(${target} PRIVATE
      -Wall -Wextra -Wconversion -Wmissing-declarations -Werror
      # A fused multiply-add gives other bytes than a multiplication and an addition.
      -ffp-contract=off
      # The square root never reports to errno here, so that the compiler may use the instruction.
      -fno-math-errno)
endfunction()
