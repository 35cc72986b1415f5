# Headers that nearly every source includes, compiled once for the library's and the command's sources and once for the
# tests'. Sources still include all they need: the linter compiles them without.
option(SPCBASE_PCH "Compile what most sources include once" ON)

set(precompiled_everywhere
  <algorithm> <array> <charconv> <chrono> <cmath> <functional> <limits> <map> <memory> <optional> <span> <string>
  <string_view> <utility> <variant> <vector>)

if(SPCBASE_PCH)
  file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/precompiled/library.cpp CONTENT "// Only its headers matter.\n")
  add_library(precompiled_headers OBJECT EXCLUDE_FROM_ALL ${PROJECT_BINARY_DIR}/precompiled/library.cpp)
  target_link_libraries(precompiled_headers PRIVATE spcbase_warnings spcbase_sanitizers)
  target_precompile_headers(precompiled_headers PRIVATE ${precompiled_everywhere})
endif()

# spcbase_precompile(TARGET): a library of ours that is compiled as all are. Not with g++ 12: it forgets that precompiled
# headers are the system's, and warns of copies inside its own std::string that cannot happen.
function(spcbase_precompile target)
  if(SPCBASE_PCH AND NOT CMAKE_CXX_COMPILER_ID STREQUAL GNU)
    target_precompile_headers(${target} REUSE_FROM precompiled_headers)
  endif()
endfunction()

# spcbase_precompile_alone(TARGET): one with options of its own, which the headers must be compiled with too. With g++ only
# for sanitizing, where nothing is optimised and so nothing warned of.
function(spcbase_precompile_alone target)
  if(SPCBASE_PCH AND (SPCBASE_SANITIZE OR NOT CMAKE_CXX_COMPILER_ID STREQUAL GNU))
    target_precompile_headers(${target} PRIVATE ${precompiled_everywhere})
  endif()
endfunction()

# spcbase_precompile_test(TARGET): a test program.
function(spcbase_precompile_test target)
  if(NOT SPCBASE_PCH)
    return()
  endif()
  if(NOT TARGET precompiled_test_headers)
    file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/precompiled/test.cpp CONTENT "int main() { return 0; }\n")
    add_executable(precompiled_test_headers EXCLUDE_FROM_ALL ${PROJECT_BINARY_DIR}/precompiled/test.cpp)
    target_link_libraries(precompiled_test_headers PRIVATE
      spcbase_test_support spcbase_warnings spcbase_test_sanitizers spcbase_quick_build GTest::gtest GTest::gmock)
    target_compile_definitions(precompiled_test_headers PRIVATE SPCBASE_TEST_DATA="${PROJECT_SOURCE_DIR}/tests/data")
    target_precompile_headers(precompiled_test_headers PRIVATE ${precompiled_everywhere}
      <filesystem> <fstream> <regex> <set> <sstream> <thread> <gmock/gmock.h> <gtest/gtest.h>)
  endif()
  target_precompile_headers(${target} REUSE_FROM precompiled_test_headers)
endfunction()
