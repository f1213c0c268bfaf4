# brenvik-status as a user runs it: golden output files and an end-to-end run
# against fake Codex CLI processes. SERIAL: it burns a core and reads the
# whole process table.
brenvik_add_gtest(status_command_tests
  SOURCES ${CMAKE_CURRENT_LIST_DIR}/StatusCommandTest.cpp
  LIBS Qt6::Core Qt6::Test
  SERIAL TIMEOUT 300)
target_compile_definitions(status_command_tests PRIVATE
  BRENVIK_STATUS_COMMAND="$<TARGET_FILE:brenvik-status>"
  BRENVIK_GOLDEN_DIR="${CMAKE_CURRENT_LIST_DIR}/golden")
add_dependencies(status_command_tests brenvik-status)
