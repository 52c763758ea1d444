# quarn_library(NAME SOURCES a.cpp b.cpp LINKS targets): the static library of one folder.
function(quarn_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_library(quarn_${name} STATIC ${ARG_SOURCES})
  target_link_libraries(quarn_${name} PUBLIC quarn_flags ${ARG_LINKS})
endfunction()

# quarn_test(NAME SOURCES a_test.cpp LINKS targets [TIMEOUT seconds]): the test program of one folder;
# one entry in the list of tests.
function(quarn_test name)
  cmake_parse_arguments(ARG "" "TIMEOUT" "SOURCES;LINKS" ${ARGN})
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 120)
  endif()
  add_executable(${name}_tests ${ARG_SOURCES})
  target_link_libraries(${name}_tests PRIVATE ${ARG_LINKS} GTest::gtest GTest::gtest_main)
  if(MINGW)
    # At higher levels the compiler takes the copying of short wide texts for reading out of bounds.
    target_compile_options(${name}_tests PRIVATE -O1)
  endif()
  # Most of a test file's compile time is the test framework's headers.
  target_precompile_headers(${name}_tests PRIVATE <gtest/gtest.h> <string> <vector>)
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
