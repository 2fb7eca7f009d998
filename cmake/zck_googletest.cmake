# The target zck_gtest_main: GoogleTest with its main function. Debian's package brings libraries for the machine itself
# and the source, from which the libraries for Windows are built.
if(CMAKE_CROSSCOMPILING)
  set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
  add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
  add_library(zck_gtest_main INTERFACE)
  target_link_libraries(zck_gtest_main INTERFACE gmock gtest gtest_main)
else()
  find_package(GTest REQUIRED)
  add_library(zck_gtest_main INTERFACE)
  target_link_libraries(zck_gtest_main INTERFACE GTest::gmock GTest::gtest GTest::gtest_main)
endif()

# The headers that all test programs include, compiled once for each of their two levels of optimisation: by programs, since
# the flags are those of programs.
if(ZCK_PCH)
  file(CONFIGURE OUTPUT zck_test_pch.cpp CONTENT "")
  foreach(pch zck_test_pch zck_test_pch_optimised)
    add_executable(${pch} ${CMAKE_CURRENT_BINARY_DIR}/zck_test_pch.cpp)
    zck_compile(${pch})
    target_link_libraries(${pch} PRIVATE zck_gtest_main)
    target_precompile_headers(${pch} PRIVATE <gtest/gtest.h> <algorithm> <random> <string> <vector>)
  endforeach()
  target_compile_options(zck_test_pch PRIVATE -O0)
endif()
