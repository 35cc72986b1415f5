# spcbase_layer(platform_text SOURCES a.cpp ... [LIBRARIES ICU::uc ...])
#
# One object library for each folder of spcbase/. The shared library and the tests' static library gather them.
function(spcbase_layer name)
  cmake_parse_arguments(arg "" "" "SOURCES;LIBRARIES" ${ARGN})
  add_library(spcbase_${name} OBJECT ${arg_SOURCES})
  target_include_directories(spcbase_${name} PUBLIC ${PROJECT_SOURCE_DIR})
  target_link_libraries(spcbase_${name} PRIVATE spcbase_warnings spcbase_sanitizers ${arg_LIBRARIES})
  spcbase_precompile(spcbase_${name})
  set_property(GLOBAL APPEND PROPERTY SPCBASE_LAYERS spcbase_${name})
  set_property(GLOBAL APPEND PROPERTY SPCBASE_LIBRARIES ${arg_LIBRARIES})
endfunction()

# Test code is compiled for quick building: optimising it, and under sanitizers above all, costs most of a build's time.
add_library(spcbase_quick_build INTERFACE)
target_compile_options(spcbase_quick_build INTERFACE $<$<NOT:$<CONFIG:Debug>>:-O0>)

# spcbase_test(foundation SOURCES a_test.cpp ... [LIBRARIES ...] [SHARDS n])
#
# One test program for each folder, tests/<folder>, known to CTest under the folder's name and label. A long one is run in
# shards and begun first, so that all processors have something to do.
function(spcbase_test name)
  cmake_parse_arguments(arg "" "SHARDS" "SOURCES;LIBRARIES" ${ARGN})
  add_executable(${name}_test ${arg_SOURCES})
  target_link_libraries(${name}_test PRIVATE
    spcbase_test_support spcbase_warnings spcbase_test_sanitizers spcbase_quick_build
    ${arg_LIBRARIES} GTest::gtest GTest::gmock)
  target_compile_definitions(${name}_test PRIVATE SPCBASE_TEST_DATA="${PROJECT_SOURCE_DIR}/tests/data")
  spcbase_precompile_test(${name}_test)
  set(command ${name}_test --gtest_shuffle --gtest_brief=1)
  if(NOT arg_SHARDS)
    add_test(NAME ${name} COMMAND ${command})
    set_tests_properties(${name} PROPERTIES LABELS ${name})
    return()
  endif()
  math(EXPR last "${arg_SHARDS} - 1")
  foreach(shard RANGE ${last})
    add_test(NAME ${name}_${shard} COMMAND ${command})
    set_tests_properties(${name}_${shard} PROPERTIES LABELS ${name}
      COST 100 ENVIRONMENT "GTEST_TOTAL_SHARDS=${arg_SHARDS};GTEST_SHARD_INDEX=${shard}")
  endforeach()
endfunction()
