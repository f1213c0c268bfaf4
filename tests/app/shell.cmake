# The tray program's shell: icon drawing, status item, popover placement,
# control panel window and the start-up order, headless.
brenvik_add_gtest(brenvik_shell_tests
  SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/ShellTestMain.cpp
    ${CMAKE_CURRENT_LIST_DIR}/AppModelTest.cpp
    ${CMAKE_CURRENT_LIST_DIR}/ControlPanelControllerTest.cpp
    ${CMAKE_CURRENT_LIST_DIR}/PopoverPlacementTest.cpp
    ${CMAKE_CURRENT_LIST_DIR}/StatusItemControllerTest.cpp
    ${CMAKE_CURRENT_LIST_DIR}/TrayIconPainterTest.cpp
  LIBS brenvik_shell Qt6::Test)
target_include_directories(brenvik_shell_tests PRIVATE ${PROJECT_SOURCE_DIR})
