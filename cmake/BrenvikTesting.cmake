# brenvik_add_test(NAME <name> COMMAND <cmd...> [SERIAL] [PRIVATE_SESSION] [LABELS <labels...>]
#                  [TIMEOUT <s>])
#
# Every test runs through tests/support/isolated-env.sh: a private HOME,
# XDG_CONFIG_HOME and XDG_RUNTIME_DIR, so no test touches the user's settings
# or autostart folder, and the sanitizer options that keep system-library
# leaks out of the report. PRIVATE_SESSION runs it on a session bus and in a
# PID namespace of its own (tests/support/private-session.sh).
set(BRENVIK_ISOLATED_ENV "${PROJECT_SOURCE_DIR}/tests/support/isolated-env.sh")

function(brenvik_add_test)
  cmake_parse_arguments(ARG "SERIAL;PRIVATE_SESSION" "NAME;TIMEOUT" "COMMAND;LABELS" ${ARGN})
  if(ARG_PRIVATE_SESSION)
    list(PREPEND ARG_COMMAND ${PROJECT_SOURCE_DIR}/tests/support/private-session.sh)
  endif()
  add_test(NAME ${ARG_NAME} COMMAND ${BRENVIK_ISOLATED_ENV} ${ARG_COMMAND})
  set(env
    "QT_QPA_PLATFORM=offscreen"
    "ASAN_OPTIONS=detect_leaks=1:abort_on_error=0:strict_string_checks=1"
    "LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/support/lsan.supp:print_suppressions=0"
    "UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1"
    "BRENVIK_SOURCE_DIR=${PROJECT_SOURCE_DIR}"
    "BRENVIK_BINARY_DIR=${PROJECT_BINARY_DIR}")
  set_tests_properties(${ARG_NAME} PROPERTIES ENVIRONMENT "${env}")
  if(ARG_SERIAL)
    set_tests_properties(${ARG_NAME} PROPERTIES RUN_SERIAL TRUE)
  endif()
  if(ARG_LABELS)
    set_tests_properties(${ARG_NAME} PROPERTIES LABELS "${ARG_LABELS}")
  endif()
  if(ARG_TIMEOUT)
    set_tests_properties(${ARG_NAME} PROPERTIES TIMEOUT ${ARG_TIMEOUT})
  endif()
endfunction()

# brenvik_add_gtest(<name> SOURCES <files...> LIBS <targets...> [SERIAL] [PRIVATE_SESSION])
# One ctest entry per test binary: starting a sanitized Qt process per case
# would cost more than the cases themselves.
function(brenvik_add_gtest name)
  cmake_parse_arguments(ARG "SERIAL;PRIVATE_SESSION" "TIMEOUT" "SOURCES;LIBS;LABELS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_LIBS} GTest::gtest GTest::gtest_main brenvik_warnings)
  set(extra)
  foreach(flag SERIAL PRIVATE_SESSION)
    if(ARG_${flag})
      list(APPEND extra ${flag})
    endif()
  endforeach()
  if(ARG_TIMEOUT)
    list(APPEND extra TIMEOUT ${ARG_TIMEOUT})
  endif()
  if(ARG_LABELS)
    list(APPEND extra LABELS ${ARG_LABELS})
  endif()
  brenvik_add_test(NAME ${name} COMMAND $<TARGET_FILE:${name}> ${extra})
endfunction()
