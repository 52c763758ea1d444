# quarn_library(NAME SOURCES a.cpp b.cpp LINKS targets): the static library of one folder.
function(quarn_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_library(quarn_${name} STATIC ${ARG_SOURCES})
  target_link_libraries(quarn_${name} PUBLIC quarn_flags ${ARG_LINKS})
endfunction()

# How the files of the tests themselves are compiled: they run for a moment, and with the sanitizers it is the
# optimiser that takes most of the time of a build. (At levels above -O1 the compiler for Windows takes the
# copying of short wide texts for reading out of bounds.) Plain twins of kernels are worth -O1 everywhere.
if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang" AND NOT CMAKE_BUILD_TYPE STREQUAL "Debug")
  set(QUARN_TWIN_OPTIONS -O1)
  set(QUARN_TEST_OPTIONS -O1)
  if(QUARN_SANITIZE)
    set(QUARN_TEST_OPTIONS -O0)
  endif()
endif()

# quarn_test_sources(TARGET [OWN_HEADERS]): the same for all targets of test sources. Most of a file's compile time
# is the test framework's headers, which are compiled once, with quarn_test_support; OWN_HEADERS is for that target
# and for those whose libraries want other compiler flags.
function(quarn_test_sources target)
  cmake_parse_arguments(ARG "OWN_HEADERS" "" "" ${ARGN})
  target_compile_options(${target} PRIVATE ${QUARN_TEST_OPTIONS})
  if(ARG_OWN_HEADERS)
    target_precompile_headers(${target} PRIVATE <gtest/gtest.h> <map> <string> <vector>)
  else()
    target_precompile_headers(${target} REUSE_FROM quarn_test_support)
  endif()
endfunction()

# quarn_test(NAME SOURCES a_test.cpp [TWINS plain_twin.cpp] LINKS targets [TIMEOUT seconds]
# [OWN_HEADERS]): the test program of one folder; one entry in the list of tests.
function(quarn_test name)
  cmake_parse_arguments(ARG "OWN_HEADERS" "TIMEOUT" "SOURCES;TWINS;LINKS" ${ARGN})
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 120)
  endif()
  add_executable(${name}_tests ${ARG_SOURCES} ${ARG_TWINS})
  target_link_libraries(${name}_tests PRIVATE ${ARG_LINKS} GTest::gtest GTest::gtest_main)
  set(own_headers)
  if(ARG_OWN_HEADERS)
    set(own_headers OWN_HEADERS)
  endif()
  quarn_test_sources(${name}_tests ${own_headers})
  set_source_files_properties(${ARG_TWINS} PROPERTIES COMPILE_OPTIONS "${QUARN_TWIN_OPTIONS}"
    SKIP_PRECOMPILE_HEADERS ON)
  add_test(NAME ${name} COMMAND ${name}_tests)
  # For the sanitizer builds; other builds take no notice. Tests of lack of memory ask for more than there
  # is, which the allocator has to refuse as usual.
  set_tests_properties(${name} PROPERTIES TIMEOUT ${ARG_TIMEOUT} ENVIRONMENT
    "LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/lsan.supp:print_suppressions=0;ASAN_OPTIONS=allocator_may_return_null=1;UBSAN_OPTIONS=print_stacktrace=1;TSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/tsan.supp:allocator_may_return_null=1:die_after_fork=0")
endfunction()

# quarn_bench(NAME SOURCES a_bench.cpp LINKS targets): the benchmarks of one folder.
function(quarn_bench name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_executable(${name}_bench ${ARG_SOURCES})
  target_link_libraries(${name}_bench PRIVATE ${ARG_LINKS} benchmark::benchmark benchmark::benchmark_main)
endfunction()
