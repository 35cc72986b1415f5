# The report: what is on its page, and how a browser shows it.
target_sources(tools_test PRIVATE report_test.cpp report_page_reader.cpp report_parts_test.cpp report_plants.cpp)

add_executable(report_page report_page.cpp report_plants.cpp)
target_link_libraries(report_page PRIVATE
  spcbase_test_support spc_command spcbase_warnings spcbase_test_sanitizers spcbase_quick_build
  GTest::gtest)

find_package(Python3 REQUIRED COMPONENTS Interpreter)
add_test(NAME report_in_browser
  COMMAND ${Python3_EXECUTABLE} ${CMAKE_CURRENT_SOURCE_DIR}/report_in_browser
          $<TARGET_FILE:report_page> ${CMAKE_BINARY_DIR}/report)
set_tests_properties(report_in_browser PROPERTIES LABELS tools)
